#pragma once

#include <tarnbase/export.h>

#include <QMetaType>

#include <cmath>

/** A complex number; in memory the real part followed by the imaginary part, so that arrays of it are pixel
 * rows. */
template <class T> class TARNBASE_EXPORT cComplex {
public:
    constexpr cComplex() = default;
    constexpr cComplex(T i_real, T i_imaginary) : m_real(i_real), m_imaginary(i_imaginary) {}

    constexpr T getReal() const { return m_real; }
    constexpr T getImaginary() const { return m_imaginary; }
    /** The magnitude, without overflow on the way. */
    T getAbs() const { return std::hypot(m_real, m_imaginary); }
    /** The angle in radians, from -pi to pi. */
    T getArg() const { return std::atan2(m_imaginary, m_real); }
    /** The principal natural logarithm; of 0 it is minus infinity. */
    cComplex log() const { return cComplex(std::log(getAbs()), getArg()); }

    constexpr cComplex& operator*=(T i_factor)
    {
        m_real *= i_factor;
        m_imaginary *= i_factor;
        return *this;
    }

    friend constexpr bool operator==(const cComplex&, const cComplex&) = default;

private:
    T m_real {};
    T m_imaginary {};
};

using cFltComplex = cComplex<float>;
using cDblComplex = cComplex<double>;

Q_DECLARE_METATYPE(cComplex<float>)
Q_DECLARE_METATYPE(cComplex<double>)
