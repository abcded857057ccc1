#include "fateTable.h"

#include <QStringList>
#include <algorithm>

namespace host {
namespace {

struct Column {
    const char* title;
    quint64 cFates::*count;
    bool always;
};
constexpr Column s_columns[] = {
    {"arrived", &cFates::arrived, true},
    {"used", &cFates::used, true},
    {"unseen", &cFates::unseen, false},
    {"incomplete", &cFates::incomplete, false},
    {"refused", &cFates::refused, false},
    {"gated", &cFates::gated, false},
    {"lost", &cFates::lost, false},
    {"failed", &cFates::failed, false},
    {"ignored", &cFates::ignored, false},
    {"discarded", &cFates::discarded, false},
    {"waiting", &cFates::waiting, false},
};

/** Of an output only the frames sent and the results lost are counted. */
bool isUnused(const cPortFates& i_port)
{
    return i_port.output ? i_port.fates.lost > 0 : !i_port.fates.isAllUsed();
}

} // namespace

bool isAnyUnused(const QList<cPortFates>& i_fates)
{
    return std::any_of(i_fates.begin(), i_fates.end(), isUnused);
}

QString fateTable(const QList<cPortFates>& i_fates, bool i_all)
{
    QList<cPortFates> listed;
    for (const cPortFates& port : i_fates)
        if (isUnused(port) || (i_all && !port.output))
            listed.append(port);
    QList<Column> columns;
    for (const Column& column : s_columns) {
        const bool counted = std::any_of(listed.begin(), listed.end(),
            [&](const cPortFates& i_port) { return i_port.fates.*column.count > 0; });
        if (column.always || counted)
            columns.append(column);
    }
    QList<QStringList> rows;
    rows.append(QStringList {QStringLiteral("port")});
    for (const Column& column : qAsConst(columns))
        rows.first().append(QString::fromLatin1(column.title));
    for (const cPortFates& port : qAsConst(listed)) {
        QStringList row {
            port.node + u'.' + port.port + (port.output ? QStringLiteral(" (output)") : QString())};
        for (const Column& column : qAsConst(columns)) {
            const bool told
                = !port.output || column.count == &cFates::arrived || column.count == &cFates::lost;
            row.append(told ? QString::number(port.fates.*column.count) : QStringLiteral("-"));
        }
        rows.append(row);
    }
    int width = 0;
    for (const QStringList& row : qAsConst(rows))
        width = std::max(width, int(row.first().size()));
    QStringList lines;
    for (const QStringList& row : qAsConst(rows)) {
        QString line = row.first().leftJustified(width);
        for (int i = 1; i < row.size(); ++i)
            line += QStringLiteral("  ") + row[i].rightJustified(std::max(7, int(rows.first()[i].size())));
        lines.append(line);
    }
    return lines.join(u'\n');
}

} // namespace host
