// Pixels through tables.
#include "lut.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tables/lut.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "../pointwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace customipp {
namespace HWY_NAMESPACE {
namespace {

/**
 * A table of bytes as 16 vectors of 16 entries each, repeated over the vector.
 *
 * An instruction looks up bytes by the lowest 4 bits of an index, and gives 0 where its highest bit is set.
 * From an index below 128, 16 is subtracted again and again until it is negative, and stays so: the lookups
 * in the rows 0 to index / 16 are summed. So that the sum is the entry, each row but the first is kept as its
 * difference from the row before; sum and difference are both the exclusive or. The other half of the table
 * goes the same way with the highest bit of the index turned over.
 */
struct ByteTable : PlainOperation {
    using D = hn::ScalableTag<uint8_t>;
    hn::Vec<D> rows[16];

    HWY_INLINE explicit ByteTable(const uint8_t* table)
    {
        const hn::Full128<uint8_t> d16;
        for (size_t row = 0; row < 16; ++row) {
            auto entries = hn::LoadU(d16, table + 16 * row);
            if (row % 8 != 0)
                entries = hn::Xor(entries, hn::LoadU(d16, table + 16 * (row - 1)));
            HWY_ALIGN uint8_t copy[16];
            hn::Store(entries, d16, copy);
            rows[row] = hn::LoadDup128(D(), copy);
        }
    }

    HWY_INLINE hn::Vec<D> operator()(D d, hn::Vec<D> v) const
    {
        const hn::RebindToSigned<D> dSigned;
        const auto lower = hn::BitCast(dSigned, v);
        const auto upper = hn::Xor(lower, hn::Set(dSigned, -128));
        return hn::Xor(half<0>(d, lower), half<8>(d, upper));
    }

private:
    template <size_t First, class V> HWY_INLINE hn::Vec<D> half(D d, V index) const
    {
        const hn::RebindToSigned<D> dSigned;
        auto sum = entry(d, rows[First], index);
        for (size_t row = First + 1; row < First + 8; ++row) {
            index = hn::SaturatedSub(index, hn::Set(dSigned, 16));
            sum = hn::Xor(sum, entry(d, rows[row], index));
        }
        return sum;
    }

    template <class V> static HWY_INLINE hn::Vec<D> entry(D d, hn::Vec<D> row, V index)
    {
#if !HWY_ARCH_X86 // there the bits between do not matter
        index = hn::And(index, hn::Set(hn::DFromV<V>(), int8_t(-128 + 15)));
#endif
        return hn::TableLookupBytesOr0(row, hn::BitCast(d, index));
    }
};

void oneByteTable(const LutMove<uint8_t>& move)
{
    UnaryLoop<uint8_t> {move.src, move.dst, move.extent}(ByteTable(move.tables));
}

/** The rest of a row, pixel by pixel. */
template <int Channels>
HWY_INLINE void mapPixels(const uint8_t* src, uint8_t* dst, size_t from, size_t lanes, const uint8_t* tables)
{
    for (size_t i = from; i < lanes; i += Channels)
        for (size_t c = 0; c < Channels; ++c)
            dst[i + c] = tables[256 * c + src[i + c]];
}

void threeByteTables(const LutMove<uint8_t>& move)
{
    const ByteTable::D d;
    const ByteTable red(move.tables), green(move.tables + 256), blue(move.tables + 512);
    const size_t step = 3 * hn::Lanes(d);
    for (size_t y = 0; y < move.extent.rows; ++y) {
        const uint8_t* src = move.src.row(y);
        uint8_t* dst = move.dst.row(y);
        size_t i = 0;
        for (; i + step <= move.extent.lanes; i += step) {
            hn::Vec<ByteTable::D> r, g, b;
            hn::LoadInterleaved3(d, src + i, r, g, b);
            hn::StoreInterleaved3(red(d, r), green(d, g), blue(d, b), d, dst + i);
        }
        mapPixels<3>(src, dst, i, move.extent.lanes, move.tables);
    }
}

void fourByteTables(const LutMove<uint8_t>& move)
{
    const ByteTable::D d;
    const ByteTable red(move.tables), green(move.tables + 256), blue(move.tables + 512),
        alpha(move.tables + 768);
    const size_t step = 4 * hn::Lanes(d);
    for (size_t y = 0; y < move.extent.rows; ++y) {
        const uint8_t* src = move.src.row(y);
        uint8_t* dst = move.dst.row(y);
        size_t i = 0;
        for (; i + step <= move.extent.lanes; i += step) {
            hn::Vec<ByteTable::D> r, g, b, a;
            hn::LoadInterleaved4(d, src + i, r, g, b, a);
            hn::StoreInterleaved4(red(d, r), green(d, g), blue(d, b), alpha(d, a), d, dst + i);
        }
        mapPixels<4>(src, dst, i, move.extent.lanes, move.tables);
    }
}

/** Rows may lie at odd addresses. */
template <class T> void oneWordTable(const LutMove<T>& move)
{
    const T* const origin = move.tables - std::numeric_limits<T>::lowest();
    for (size_t y = 0; y < move.extent.rows; ++y) {
        const T* src = move.src.row(y);
        T* dst = move.dst.row(y);
        for (size_t x = 0; x < move.extent.lanes; ++x) {
            T pixel;
            hwy::CopyBytes<sizeof(T)>(src + x, &pixel);
            hwy::CopyBytes<sizeof(T)>(origin + pixel, dst + x);
        }
    }
}

constexpr LutKernels s_kernels {
    {oneByteTable, oneWordTable<uint16_t>, oneWordTable<int16_t>}, threeByteTables, fourByteTables};
} // namespace

const LutKernels& lutKernels() { return s_kernels; }
} // namespace HWY_NAMESPACE
} // namespace customipp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace customipp {
namespace {
HWY_EXPORT(lutKernels);
const LutKernels& kernelsLut() { return HWY_DYNAMIC_DISPATCH(lutKernels)(); }
} // namespace
} // namespace customipp
#include "../entryPoints.h"
#include <customipp/lut.def>
#endif // HWY_ONCE
