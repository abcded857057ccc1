#pragma once

#include <tarnbase/export.h>

#include <typeinfo>

/**
 * Turns a value of one type into a value of another.
 *
 * Converters hold no state and serve any number of threads. The registry may be used from any thread. Of
 * several converters for one pair of types the first that was registered answers, until it is destroyed:
 * whoever keeps a converter that belongs to somebody else takes a clone.
 */
class TARNBASE_EXPORT cTypeConverterBase {
public:
    cTypeConverterBase(bool i_register, const std::type_info& i_from, const std::type_info& i_to);
    cTypeConverterBase(const cTypeConverterBase&) = delete;
    cTypeConverterBase& operator=(const cTypeConverterBase&) = delete;
    /** Takes the converter out of the registry, if it is there. */
    virtual ~cTypeConverterBase();

    /**
     * Reads an object of the source type and writes one of the target type.
     *
     * @return false, with the target as it was, for a value that has no counterpart
     */
    virtual bool convert(void* o_target, const void* i_source) const = 0;
    /** A new converter of the same kind that is not registered; the caller owns it. */
    virtual cTypeConverterBase* clone() const = 0;
    virtual const std::type_info& getTypeInfoSrc() const;
    virtual const std::type_info& getTypeInfoDst() const;

    /** The converter of a pair of types, null if there is none. */
    static cTypeConverterBase* getTypeConverter(const std::type_info& i_from, const std::type_info& i_to);

private:
    const std::type_info& m_from;
    const std::type_info& m_to;
};
