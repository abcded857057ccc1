#pragma once

#include <memory>
#include <tarnflow/export.h>
#include <typeinfo>

class cBuffer;
class cOPortBase;
class cTypeConverterBase;

/**
 * Turns the buffers of a link into buffers of the type that its receiver takes.
 *
 * Belongs to a link; several threads may send through it at once.
 */
class TARNFLOW_EXPORT cBufferConverterBase : public std::enable_shared_from_this<cBufferConverterBase> {
public:
    /** Keeps a clone of the value converter. */
    explicit cBufferConverterBase(const cTypeConverterBase* i_converter);
    virtual ~cBufferConverterBase();
    cBufferConverterBase(const cBufferConverterBase&) = delete;
    cBufferConverterBase& operator=(const cBufferConverterBase&) = delete;

    /**
     * A buffer with the converted value and the same stamp, with one reference for the caller. The reference
     * to the source is given back in every case.
     * @return null for a null source, when the pool gave no buffer, or when the value has no counterpart.
     */
    virtual cBuffer* convert(cBuffer* i_source) = 0;
    /** The type of the values that come in. */
    virtual const std::type_info& getTypeInfoSrc() const;
    /** The pool of the converted buffers. */
    virtual cOPortBase* getPool() = 0;

protected:
    /** False for a value that has no counterpart, or when the conversion threw. */
    bool convertValue(void* o_target, const void* i_source) const noexcept;

private:
    std::unique_ptr<cTypeConverterBase> m_converter;
};
