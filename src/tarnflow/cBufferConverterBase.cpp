#include <tarnflow/cBufferConverterBase.h>

#include <tarnbase/cTracer.h>
#include <tarnbase/cTypeConverterBase.h>
#include <tarnflow/cPortBase.h>

cBufferConverterBase::cBufferConverterBase(const cTypeConverterBase* i_converter)
    : m_converter(i_converter->clone())
{
}

cBufferConverterBase::~cBufferConverterBase() = default;

const std::type_info& cBufferConverterBase::getTypeInfoSrc() const { return m_converter->getTypeInfoSrc(); }

bool cBufferConverterBase::convertValue(void* o_target, const void* i_source) const noexcept
{
    try {
        if (m_converter->convert(o_target, i_source))
            return true;
    } catch (...) {
        // Whatever it was, the receiver gets no value; the line below says so.
    }
    cTracer::cerr << "A value of type " << cPortBase::getTypeName(m_converter->getTypeInfoSrc())
                  << " has no counterpart of type " << cPortBase::getTypeName(m_converter->getTypeInfoDst())
                  << cTracer::end();
    return false;
}
