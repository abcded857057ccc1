#pragma once

#include <tarnbase/cDataValObj.h>
#include <tarnbase/cTracer.h>
#include <tarnbase/cTypeConverterBase.h>

#include <QVariant>

// The members of cDataRefObj and cDataValObj. The library holds them for the common types; only a source that
// makes entries of a type of its own includes this. The type needs ==, a default value and
// Q_DECLARE_METATYPE.

template <class T>
cDataRefObj<T>::cDataRefObj(T& io_data, quint32 i_flags)
    : cDataRefObj(io_data, i_flags,
        "ERROR: cDataRefObj<D>::cDataRefObj(D &i_data, uint32 flags): no attribute defined for", true)
{
}

template <class T>
cDataRefObj<T>::cDataRefObj(T& io_data, quint32 i_flags, const char* i_complaint, bool i_bound)
    : cObj(cObjType::findType(typeid(T))),
      m_data(&io_data)
{
    connectChangedSignal(nullptr, nullptr, false, Qt::UniqueConnection);
    if (*getObjType().getTypeInfo() == typeid(void))
        cTracer::cerr << i_complaint << typeid(T).name() << cTracer::end();
    setFlags(QFlags<EObjFlag>(QFlag(int(i_flags))));
    setBound(i_bound);
}

template <class T> cDataRefObj<T>::~cDataRefObj() = default;

template <class T> cObj* cDataRefObj<T>::clone() const
{
    cObj* const copy = new cDataValObj<T>(*m_data, 0);
    copyProps(*copy);
    return copy;
}

template <class T> bool cDataRefObj<T>::read(const cObj* i_source, T& o_value)
{
    if (i_source == nullptr || i_source->isVoid() || i_source->isContainer())
        return false;
    if (i_source->getAs(typeid(T), &o_value))
        return true;
    if (const auto* const same = dynamic_cast<const cDataRefObj<T>*>(i_source)) {
        o_value = *same->m_data;
        return true;
    }
    return false;
}

template <class T> bool cDataRefObj<T>::assign(const cObj* i_source)
{
    T value {};
    if (!read(i_source, value))
        return false;
    if (!(value == *m_data)) {
        *m_data = value;
        fireChangedSignal();
    }
    return true;
}

template <class T> bool cDataRefObj<T>::isEqual(const cObj* i_other) const
{
    T value {};
    return read(i_other, value) && value == *m_data;
}

template <class T> bool cDataRefObj<T>::isNotEqual(const cObj* i_other) const { return !isEqual(i_other); }

template <class T> QVariant cDataRefObj<T>::toVariant() const
{
    return getFormat() != nullptr ? QVariant(toString(true)) : QVariant::fromValue(*m_data);
}

template <class T> void cDataRefObj<T>::fromVariant(const QVariant& i_variant)
{
    const int type = qMetaTypeId<T>();
    QVariant variant = i_variant;
    if (variant.userType() == type || variant.convert(type))
        *m_data = *static_cast<const T*>(variant.constData());
    else
        *m_data = T();
}

template <class T> void* cDataRefObj<T>::getData() const { return m_data; }

template <class T> bool cDataRefObj<T>::getAs(const std::type_info& i_type, void* o_target) const
{
    const cTypeConverterBase* const converter = cTypeConverterBase::getTypeConverter(typeid(T), i_type);
    return converter != nullptr && converter->convert(o_target, m_data);
}

template <class T> bool cDataRefObj<T>::setFrom(const std::type_info& i_type, const void* i_source)
{
    const cTypeConverterBase* const converter = cTypeConverterBase::getTypeConverter(i_type, typeid(T));
    if (converter == nullptr)
        return false;
    const T before = *m_data;
    if (!converter->convert(m_data, i_source))
        return false;
    if (!(before == *m_data))
        fireChangedSignal();
    return true;
}

// The base keeps the address of m_value only, which is filled after it.
template <class T>
cDataValObj<T>::cDataValObj(const T& i_data, quint32 i_flags)
    : cDataRefObj<T>(m_value, i_flags,
        "ERROR:cDataValObj<D>::cDataValObj(const D &i_data,uint32 i_flags): no attribute defined for", false),
      m_value(i_data)
{
}

template <class T> cDataValObj<T>::~cDataValObj() = default;

template <class T> cObj* cDataValObj<T>::clone() const
{
    cObj* const copy = new cDataValObj<T>(m_value, 0);
    this->copyProps(*copy);
    return copy;
}
