#pragma once

#include <QList>
#include <tarnflow/cBuffer.h>
#include <tarnflow/cValueText.h>

/** A buffer that holds one value of type T, at first the default one. */
template <class T> class TARNFLOW_EXPORT cBufferT : public cBuffer {
public:
    explicit cBufferT(cOPortBase* i_parent) : cBuffer(i_parent), m_asList({this}) {}

    QString getAuditText() const override
    {
        QString text;
        QTextStream stream(&text);
        cValueText<T>::write(stream, m_value);
        stream.flush();
        return text;
    }
    void recycled() override {}
    void* getData() override { return &m_value; }
    const std::type_info& getTypeInfo() const override { return typeid(T); }

    /** The value may be written as long as the writer is the only holder. */
    T& getValue() { return m_value; }
    const T& getValue() const { return m_value; }
    void setValue(const T& i_value) { m_value = i_value; }

    /** This buffer as a list of one, made once, so that a delivery allocates nothing. */
    const QList<cBufferT<T>*>& asTypedList() const { return m_asList; }

    T m_value {};

private:
    const QList<cBufferT<T>*> m_asList;
};

#include <tarnflow/valueTypes.h>

#define TARNFLOW_DECLARE(T) extern template class TARNFLOW_EXPORT cBufferT<T>;
TARNFLOW_VALUE_TYPES(TARNFLOW_DECLARE)
#undef TARNFLOW_DECLARE
