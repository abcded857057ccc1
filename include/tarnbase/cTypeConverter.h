#pragma once

#include <tarnbase/cTypeConverterBase.h>

/**
 * How an A becomes a B. Whoever brings a converter specialises this, fully or in part, with
 *
 *     static bool convert(const A& i_source, B& o_target);
 *
 * which returns false and leaves the target for a value that has no counterpart.
 */
template <class A, class B> struct cValueConversion;

/** A value is always its own counterpart. */
template <class T> struct cValueConversion<T, T> {
    static bool convert(const T& i_source, T& o_target)
    {
        o_target = i_source;
        return true;
    }
};

/** The converter from A to B; a static object made with true registers the pair. */
template <class A, class B> class TARNBASE_EXPORT cTypeConverter : public cTypeConverterBase {
public:
    explicit cTypeConverter(bool i_register = false) : cTypeConverterBase(i_register, typeid(A), typeid(B)) {}

    bool convert(void* o_target, const void* i_source) const override
    {
        return cValueConversion<A, B>::convert(*static_cast<const A*>(i_source), *static_cast<B*>(o_target));
    }
    cTypeConverterBase* clone() const override { return new cTypeConverter(false); }
    const std::type_info& getTypeInfoSrc() const override { return typeid(A); }
    const std::type_info& getTypeInfoDst() const override { return typeid(B); }
};
