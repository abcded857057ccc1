#include "graphErrors.h"

#include <algorithm>
#include <vector>

namespace {
constexpr int s_listed = 12;

/** How many letters must be put in, left out or exchanged to make one text of the other. */
int editDistance(const QString& i_a, const QString& i_b)
{
    std::vector<int> row(std::size_t(i_b.size()) + 1);
    for (std::size_t column = 0; column < row.size(); ++column)
        row[column] = int(column);
    for (const QChar letter : i_a) {
        int diagonal = row[0]++;
        for (std::size_t column = 1; column < row.size(); ++column) {
            const int exchanged = diagonal + (i_b.at(int(column) - 1).toLower() != letter.toLower());
            diagonal = row[column];
            row[column] = std::min({exchanged, row[column] + 1, row[column - 1] + 1});
        }
    }
    return row.back();
}
} // namespace

bool graphErrors::fail(
    cGraphError* o_error, const QString& i_place, const QString& i_message, const QString& i_help)
{
    if (o_error)
        *o_error = {i_place, i_message, i_help};
    return false;
}

QString graphErrors::quoted(const QString& i_text) { return QLatin1Char('"') + i_text + QLatin1Char('"'); }

QString graphErrors::suggest(const QString& i_text, const QStringList& i_candidates, const QString& i_what)
{
    if (i_candidates.isEmpty())
        return QString();
    QString nearest;
    int smallest = std::max(2, i_text.size() / 3) + 1;
    for (const QString& candidate : i_candidates) {
        const int distance = editDistance(i_text, candidate);
        if (distance < smallest) {
            smallest = distance;
            nearest = candidate;
        }
    }
    if (!nearest.isEmpty())
        return QStringLiteral("did you mean %1?").arg(quoted(nearest));
    QStringList listed = i_candidates.mid(0, s_listed);
    if (listed.size() < i_candidates.size())
        listed.append(QStringLiteral("..."));
    return QStringLiteral("%1: %2").arg(i_what, listed.join(QStringLiteral(", ")));
}
