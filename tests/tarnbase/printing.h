// How a failing test shows Qt's texts.
#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& i_text, std::ostream* o_stream)
{
    *o_stream << '"' << i_text.toStdString() << '"';
}
inline void PrintTo(const QStringList& i_list, std::ostream* o_stream)
{
    *o_stream << '[' << i_list.join(QLatin1String(" | ")).toStdString() << ']';
}
