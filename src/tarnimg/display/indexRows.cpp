// Indices of a gradient's components, a vector at a time. Compiled once for every instruction set; all give
// the same bytes.
#include "display/indexRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "display/indexRows.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#include "conversion/loadAsDouble-inl.h"
#include "display/definedRow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace display {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

template <bool Amount> struct Index {
    IndexScale scale;

    template <class D64, class T> HWY_INLINE void operator()(D64 d, const T* i_source, quint8* o_target) const
    {
        auto index
            = hn::Mul(hn::Sub(conversion::HWY_NAMESPACE::loadAsDouble(d, i_source), hn::Set(d, scale.low)),
                hn::Set(d, scale.slope));
        if constexpr (Amount)
            index = hn::Min(hn::Abs(index), hn::Set(d, 127.0));
        else
            index = hn::Max(hn::Min(index, hn::Set(d, 255.0)), hn::Zero(d));
        storeAsBytes(d, index, o_target);
    }
};

template <bool Amount, class T>
void indexRow(const T* i_source, quint8* o_target, std::size_t i_count, const IndexScale& i_scale)
{
    definedRow(i_source, o_target, i_count, Index<Amount> {i_scale});
}

} // namespace

const IndexTable& indices()
{
    static constexpr IndexTable s_indices {
        {indexRow<false, qint16>, indexRow<false, qint32>}, {indexRow<true, qint16>, indexRow<true, qint32>}};
    return s_indices;
}

} // namespace HWY_NAMESPACE
} // namespace display
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace display {

HWY_EXPORT(indices);

const IndexTable& indexTable() { return HWY_DYNAMIC_DISPATCH(indices)(); }

IndexScale::IndexScale(const cDblRange& i_range) : low(i_range.getLow()), slope(255.0 / i_range.getLength())
{
}

} // namespace display
#endif // HWY_ONCE
