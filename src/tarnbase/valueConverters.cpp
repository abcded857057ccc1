// The conversions among bool, numbers and texts, and of each common type to itself.
//
// A value that the target cannot hold is refused. Fractions are cut on the way to an integer, precision is
// lost on the way from double to float: both are what a user expects of a parameter.
#include "textForm.h"

#include <tarnbase/cTypeConverter.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <type_traits>
#include <utility>

template <class A, class B>
requires(std::is_arithmetic_v<A>&&
             std::is_arithmetic_v<B> && !std::is_same_v<A, B>) struct cValueConversion<A, B> {
    static bool convert(const A& i_source, B& o_target)
    {
        using Limits = std::numeric_limits<B>;
        if constexpr (std::is_same_v<B, bool>) {
            o_target = i_source != A(0);
        } else if constexpr (std::is_floating_point_v<A> && std::is_integral_v<B>) {
            const double value = std::trunc(double(i_source));
            if (!(value >= double(Limits::min()) && value <= double(Limits::max())))
                return false;
            o_target = B(value);
        } else if constexpr (std::is_same_v<A, double> && std::is_same_v<B, float>) {
            if (std::isfinite(i_source) && std::fabs(i_source) > double(Limits::max()))
                return false;
            o_target = B(i_source);
        } else if constexpr (std::is_integral_v<B>) {
            if (qint64(i_source) < qint64(Limits::min()) || qint64(i_source) > qint64(Limits::max()))
                return false;
            o_target = B(i_source);
        } else {
            o_target = B(i_source);
        }
        return true;
    }
};

template <class A>
requires std::is_arithmetic_v<A>
struct cValueConversion<A, QString> {
    static bool convert(const A& i_source, QString& o_target)
    {
        o_target = textForm::toText(i_source);
        return true;
    }
};

template <class B>
requires std::is_arithmetic_v<B>
struct cValueConversion<QString, B> {
    static bool convert(const QString& i_source, B& o_target)
    {
        return textForm::fromText(i_source, o_target, nullptr);
    }
};

namespace {

template <class A, class B> struct Registered {
    cTypeConverter<A, B> converter {true};
};

template <class A, class... B> struct Conversions : Registered<A, B>... {
};

template <class... T> struct AmongEachOther : Conversions<T, T...>... {
};

const AmongEachOther<bool, int, unsigned int, unsigned char, unsigned short, float, double, QString>
    s_scalars;

const Registered<QStringList, QStringList> s_strings;
const Registered<QColor, QColor> s_colour;
const Registered<QSize, QSize> s_size;
const Registered<c2DPoint<int>, c2DPoint<int>> s_point;
const Registered<cRect<int>, cRect<int>> s_rect;
const Registered<cRange<double>, cRange<double>> s_range;
const Registered<cMatrix<int>, cMatrix<int>> s_intMatrix;
const Registered<cMatrix<float>, cMatrix<float>> s_floatMatrix;

} // namespace
