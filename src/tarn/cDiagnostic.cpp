#include "cDiagnostic.h"

#include <QVector>
#include <algorithm>

QString cDiagnostic::toString() const
{
    QString text = QStringLiteral("%1:%2:%3: error: ").arg(file).arg(pos.line).arg(pos.column) + message;
    if (!help.isEmpty())
        text += QStringLiteral("\n  help: ") + help;
    return text;
}

namespace host {
namespace {

/** Insertions, deletions, substitutions and swaps of neighbours that lead from one word to the other. */
int editDistance(const QString& a, const QString& b)
{
    QVector<int> before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (int j = 0; j <= b.size(); ++j)
        last[j] = j;
    for (int i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int cost = a[i - 1] == b[j - 1] ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + cost});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

/** Words longer than any name; comparing them would only cost time. */
constexpr int s_longestName = 64;
constexpr int s_mostListed = 12;

} // namespace

QString nearest(const QString& i_word, const QStringList& i_candidates)
{
    if (i_word.size() > s_longestName)
        return {};
    const QString word = i_word.toLower();
    int best = std::max(1, int(word.size()) / 3) + 1;
    QString result;
    for (const QString& candidate : i_candidates) {
        const QString other = candidate.toLower().left(s_longestName);
        // An identifier may be meant by its last part.
        const int distance
            = std::min(editDistance(word, other), editDistance(word, other.mid(other.lastIndexOf(u'/') + 1)));
        if (distance < best) {
            best = distance;
            result = candidate;
        }
    }
    return result;
}

QString suggest(const QString& i_word, const QStringList& i_candidates)
{
    const QString near = nearest(i_word, i_candidates);
    if (!near.isEmpty())
        return QStringLiteral("did you mean '%1'?").arg(near);
    if (i_candidates.isEmpty())
        return {};
    QString known = i_candidates.mid(0, s_mostListed).join(QStringLiteral(", "));
    if (i_candidates.size() > s_mostListed)
        known += QStringLiteral(", ...");
    return QStringLiteral("known: ") + known;
}

} // namespace host
