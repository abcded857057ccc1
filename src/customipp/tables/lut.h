#pragma once

#include "../checks.h"
#include "../rows.h"
#include "../taggedState.h"
#include "lutTable.h"

#include <customipp/types.h>

#include <cstring>
#include <tuple>

/** Pixels through tables: the spec structure, which holds one whole table for each channel, and the calls. */
namespace customipp {

inline constexpr uint32_t lutMagic = 0x4C555431;

/** At an aligned place in the caller's memory; the tables follow. */
struct alignas(memoryAlignment) LutSpecification {
    SpecificationTag tag;
    /** Whether one table serves all channels. */
    bool oneTable;

    template <class T> T* tables() { return reinterpret_cast<T*>(this + 1); }
    template <class T> const T* tables() const { return reinterpret_cast<const T*>(this + 1); }
};

/** The tables are as many as the channels, unless one serves all. */
template <class T> struct LutMove {
    Rows<const T> src;
    Rows<T> dst;
    Extent extent; ///< In lanes
    const T* tables;
};
template <class T> using LutKernel = void (*)(const LutMove<T>&);

struct LutKernels {
    std::tuple<LutKernel<Ipp8u>, LutKernel<Ipp16u>, LutKernel<Ipp16s>> oneTable;
    LutKernel<Ipp8u> threeTables;
    LutKernel<Ipp8u> fourTables;

    template <class T> LutKernel<T> of(int tables) const
    {
        if constexpr (sizeof(T) == 1)
            if (tables > 1)
                return tables == 3 ? threeTables : fourTables;
        return std::get<LutKernel<T>>(oneTable);
    }
};

inline IppStatus checkLut(IppiInterpolationType interpolation, IppChannels channels)
{
    if (channels != ippC1 && channels != ippC3 && channels != ippC4)
        return ippStsChannelErr;
    if (interpolation != ippNearest && interpolation != ippLinear && interpolation != ippCubic)
        return ippStsInterpolationErr;
    return ippStsNoErr;
}

inline IppStatus checkLevelCounts(const int* levels, int channels)
{
    for (int c = 0; c < channels; ++c)
        if (levels[c] < 2)
            return ippStsLUTNofLevelsErr;
    return ippStsNoErr;
}

inline IppStatus runLutSize(IppiInterpolationType interpolation, IppDataType dataType, IppChannels channels,
    IppiSize roi, const int* levels, int* size)
{
    if (size)
        *size = 0;
    if (const IppStatus status = checkArguments({levels, size}, roi, {}))
        return status;
    const IppStatus legal = checkLut(interpolation, channels);
    if (legal == ippStsChannelErr)
        return legal;
    if (dataType != ipp8u && dataType != ipp16u && dataType != ipp16s)
        return ippStsDataTypeErr;
    if (legal)
        return legal;
    if (const IppStatus status = checkLevelCounts(levels, channels))
        return status;
    const int64_t table = dataType == ipp8u ? 256 : 65536 * 2;
    *size = int(withAlignment(int64_t(sizeof(LutSpecification)) + channels * table));
    return ippStsNoErr;
}

template <class T, class L>
IppStatus runLutInit(IppiInterpolationType interpolation, IppChannels channels, IppiSize roi,
    const L* const* values, const L* const* levels, const int* counts, IppiLUT_Spec* memory)
{
    const bool isCountable = channels == ippC1 || channels == ippC3 || channels == ippC4;
    if (const IppStatus status = checkArguments({values, levels, counts, memory}, {1, 1}, {}))
        return status;
    for (int c = 0; c < (isCountable ? channels : 0); ++c)
        if (!values[c] || !levels[c])
            return ippStsNullPtrErr;
    if (const IppStatus status = checkArguments({}, roi, {}))
        return status;
    if (const IppStatus status = checkLut(interpolation, channels))
        return status;
    if (const IppStatus status = checkLevelCounts(counts, channels))
        return status;

    auto* specification = aligned<LutSpecification>(memory);
    T* const tables = specification->tables<T>();
    specification->oneTable = true;
    for (int c = 0; c < channels; ++c) {
        T* const table = tables + c * tableLength<T>;
        fillTable<T>({levels[c], values[c], counts[c], interpolation}, table);
        specification->oneTable
            = specification->oneTable && std::memcmp(table, tables, tableLength<T> * sizeof(T)) == 0;
    }
    specification->tag = {lutMagic, dataTypeOf<T>, channels};
    return ippStsNoErr;
}

template <class T, int Channels>
IppStatus runLut(
    const LutKernels& kernels, Rows<const T> src, Rows<T> dst, IppiSize roi, const IppiLUT_Spec* memory)
{
    if (const IppStatus status = checkArguments({src.first, dst.first, memory}, roi, {src.step, dst.step}))
        return status;
    constexpr int pixel = Channels * int(sizeof(T));
    if (const IppStatus status = checkStrictSteps(roi.width, {{src.step, pixel, 1}, {dst.step, pixel, 1}}))
        return status;
    const auto* specification = aligned<LutSpecification>(memory);
    if (specification->tag != SpecificationTag {lutMagic, dataTypeOf<T>, Channels})
        return ippStsBadArgErr;
    kernels.of<T>(specification->oneTable ? 1 : Channels)(
        {src, dst, extentOf(roi, Channels, src, dst), specification->tables<T>()});
    return ippStsNoErr;
}

} // namespace customipp
