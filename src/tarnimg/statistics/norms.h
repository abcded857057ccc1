#pragma once

namespace statistics {

/** One of three for each norm; the number is that of the parameter "mode". */
template <class Call> struct ByNorm {
    Call l1;
    Call l2;
    Call inf;

    constexpr Call of(int i_mode) const { return i_mode == 0 ? l1 : i_mode == 1 ? l2 : inf; }
};

} // namespace statistics
