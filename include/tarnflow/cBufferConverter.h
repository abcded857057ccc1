#pragma once

#include <tarnflow/cBufferConverterBase.h>
#include <tarnflow/cBufferT.h>

template <class T> class cOPort;

/** Makes buffers of type T; they live in a pool of its own, as large as that of an output of T. */
template <class T> class TARNFLOW_EXPORT cBufferConverter : public cBufferConverterBase {
public:
    explicit cBufferConverter(const cTypeConverterBase* i_converter)
        : cBufferConverterBase(i_converter),
          m_port(nullptr, QString(), defaultPoolSize<T>)
    {
    }

    cBuffer* convert(cBuffer* i_source) override
    {
        if (!i_source)
            return nullptr;
        cBufferT<T>* target = m_port.getFreeBuffer(true);
        if (target && convertValue(&target->m_value, i_source->getData())) {
            target->setStamp(i_source->getStamp());
        } else if (target) {
            target->releaseAndUnrefBufferAtPort();
            target = nullptr;
        }
        i_source->releaseAndUnrefBufferAtPort();
        return target;
    }

    cOPortBase* getPool() override { return &m_port; }

private:
    cOPort<T> m_port;
};

#include <tarnflow/valuePorts.h>
