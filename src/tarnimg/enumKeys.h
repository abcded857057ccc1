#pragma once

#include <QMetaEnum>
#include <QStringList>

/** The keys of an enumeration in the order of their declaration. */
template <class E> QStringList enumKeys()
{
    const auto keys = QMetaEnum::fromType<E>();
    QStringList list;
    for (int i = 0; i < keys.keyCount(); ++i)
        list.append(QString::fromLatin1(keys.key(i)));
    return list;
}
