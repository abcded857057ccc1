#include "cDiagnostic.h"
#include "cOptions.h"
#include "cRunner.h"
#include "commands.h"

#include <algorithm>
#include <memory>
#include <tarnflow/cStation.h>

namespace host {
namespace {

QString usageOfList(const cOptions& i_options)
{
    return QStringLiteral("usage: tarn list [TEXT]\n\nThe stations whose identifier or summary has the text, "
                          "or all.\n\n")
        + i_options.usage();
}

QString usageOfInspect(const cOptions& i_options)
{
    return QStringLiteral("usage: tarn inspect STATION\n\n"
                          "Everything about a station, which is named by its identifier or the unique end "
                          "of one.\n\n")
        + i_options.usage();
}

} // namespace

EExit listCommand(const QStringList& i_words)
{
    const QString name = QStringLiteral("list");
    cOptions options;
    if (const auto end = readWords(name, i_words, options, usageOfList))
        return *end;
    if (options.getRest().size() > 1)
        return refuse(
            name, QStringLiteral("expected one text to look for, found %1").arg(options.getRest().size()));
    const QString text = options.getRest().value(0);
    QStringList found;
    int width = 0;
    const QStringList identifiers = cStation::getIdentifiers();
    for (const QString& id : identifiers)
        if (id.contains(text, Qt::CaseInsensitive)
            || cStation::getInfo(id).summary.contains(text, Qt::CaseInsensitive)) {
            found.append(id);
            width = std::max(width, int(id.size()));
        }
    if (found.isEmpty())
        return refuse(name,
            QStringLiteral("no station has '%1' in its identifier or summary\n").arg(text)
                + suggest(text, identifiers));
    QString lines;
    for (const QString& id : qAsConst(found)) {
        const QString summary = cStation::getInfo(id).summary;
        lines += (summary.isEmpty() ? id : id.leftJustified(width) + QStringLiteral("  ") + summary) + u'\n';
    }
    print(lines);
    return EExit::Good;
}

EExit inspectCommand(const QStringList& i_words)
{
    const QString name = QStringLiteral("inspect");
    cOptions options;
    if (const auto end = readWords(name, i_words, options, usageOfInspect))
        return *end;
    if (options.getRest().size() != 1)
        return refuse(name,
            QStringLiteral("expected one station, found %1\n'tarn list' names them")
                .arg(options.getRest().size()));
    const QString& text = options.getRest().first();
    const QStringList found = cStation::resolveIdentifier(text);
    if (found.isEmpty())
        return refuse(name,
            QStringLiteral("unknown station, found '%1'\n").arg(text)
                + suggest(text, cStation::getIdentifiers()));
    if (found.size() > 1)
        return refuse(name,
            QStringLiteral("the station '%1' is ambiguous, expected one of: %2\nwrite more of the identifier")
                .arg(text, found.join(QStringLiteral(", "))));
    const std::unique_ptr<cStation> station(cStation::create(found.first()));
    print(describeStation(found.first(), *station));
    return EExit::Good;
}

} // namespace host
