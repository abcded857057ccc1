#pragma once

#include <customipp/types.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

/** The movers from their definitions, one pixel at a time: src has the channels of the source, dst of the
 * destination. */
namespace oracle {

struct Copy {
    /** Whether an interleaved image of more channels than the other one is given by one of its channels. */
    static constexpr bool oneChannel = false;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        for (int c = 0; c < DstChannels; ++c)
            o_dst[c] = i_src[c];
    }
};

struct CopyChannel {
    static constexpr bool oneChannel = true;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        constexpr int common = SrcChannels < DstChannels ? SrcChannels : DstChannels;
        for (int c = 0; c < common; ++c)
            o_dst[c] = i_src[c];
    }
};

struct Dup {
    static constexpr bool oneChannel = false;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        for (int c = 0; c < DstChannels; ++c)
            o_dst[c] = i_src[0];
    }
};

struct Convert {
    static constexpr bool oneChannel = false;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        for (int c = 0; c < DstChannels; ++c) {
            if constexpr (std::is_floating_point_v<D>) {
                o_dst[c] = D(i_src[c]);
            } else {
                const int64_t value = i_src[c], most = std::numeric_limits<D>::max();
                o_dst[c] = D(value < 0 ? 0 : value > most ? most : value);
            }
        }
    }

    /** A float in a rounding mode. */
    template <class D> static D rounded(float i_value, int i_mode)
    {
        if (std::isnan(i_value))
            return std::numeric_limits<D>::lowest();
        const double whole = i_mode == 0 ? std::trunc(double(i_value))
            : i_mode == 1                ? std::nearbyint(double(i_value))
                                         : std::round(double(i_value));
        if (whole <= double(std::numeric_limits<D>::lowest()))
            return std::numeric_limits<D>::lowest();
        if (whole >= double(std::numeric_limits<D>::max()))
            return std::numeric_limits<D>::max();
        return D(whole);
    }
};

struct RGBToGray {
    static constexpr bool oneChannel = false;
    template <class S, int SrcChannels, class D, int DstChannels> static void pixel(const S* i_src, D* o_dst)
    {
        o_dst[0] = D((299 * int(i_src[0]) + 587 * int(i_src[1]) + 114 * int(i_src[2])) / 1000);
    }
};

} // namespace oracle
