#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <ostream>

// How GoogleTest prints values of Qt.

inline void PrintTo(const QString& i_text, std::ostream* o_stream)
{
    *o_stream << '"' << i_text.toStdString() << '"';
}

inline void PrintTo(const QStringList& i_list, std::ostream* o_stream)
{
    PrintTo(i_list.join(QStringLiteral("\", \"")), o_stream);
}

inline void PrintTo(const QSize& i_size, std::ostream* o_stream)
{
    *o_stream << i_size.width() << 'x' << i_size.height();
}
