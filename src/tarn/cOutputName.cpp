#include "cOutputName.h"

#include "cDiagnostic.h"

#include <QStringList>
#include <algorithm>

namespace {

const QStringList& placeholders()
{
    static const QStringList s_names {
        QStringLiteral("stem"), QStringLiteral("index"), QStringLiteral("stamp"), QStringLiteral("port")};
    return s_names;
}

QString withoutFolders(QString i_text) { return i_text.replace(u'/', u'_').remove(QChar(0)); }

constexpr int s_indexDigits = 4;

} // namespace

QString cOutputName::set(const QString& i_pattern)
{
    std::vector<Piece> pieces;
    const auto add = [&pieces](QChar c) {
        if (pieces.empty() || pieces.back().kind != Text)
            pieces.push_back({Text, QString()});
        pieces.back().text.append(c);
    };
    for (int i = 0; i < i_pattern.size(); ++i) {
        const QChar c = i_pattern[i];
        if (c != u'{' && c != u'}') {
            add(c);
            continue;
        }
        if (i + 1 < i_pattern.size() && i_pattern[i + 1] == c) {
            add(c);
            ++i;
            continue;
        }
        const int end = c == u'{' ? i_pattern.indexOf(u'}', i) : -1;
        if (end < 0)
            return QStringLiteral("a brace stands alone in '%1', expected {stem}, {index}, {stamp} or {port}")
                .arg(i_pattern);
        const QString name = i_pattern.mid(i + 1, end - i - 1);
        const int kind = placeholders().indexOf(name);
        if (kind < 0) {
            const QString near = host::nearest(name, placeholders());
            return QStringLiteral(
                       "unknown placeholder, expected {stem}, {index}, {stamp} or {port}, found {%1}")
                       .arg(name)
                + (near.isEmpty() ? QString() : QStringLiteral(" (did you mean {%1}?)").arg(near));
        }
        pieces.push_back({EKind(Stem + kind), QString()});
        i = end;
    }
    m_pieces = std::move(pieces);
    return {};
}

QString cOutputName::make(const Frame& i_frame) const
{
    QString path;
    for (const Piece& piece : m_pieces) {
        switch (piece.kind) {
        case Text:
            path += piece.text;
            break;
        case Stem:
            path += withoutFolders(i_frame.stem);
            break;
        case Index:
            path += QStringLiteral("%1").arg(i_frame.index, s_indexDigits, 10, QChar(u'0'));
            break;
        case Stamp:
            path += QString::number(i_frame.stamp);
            break;
        case Port:
            path += withoutFolders(i_frame.port);
            break;
        }
    }
    return path;
}

bool cOutputName::isVarying() const
{
    return std::any_of(m_pieces.begin(), m_pieces.end(), [](const Piece& i_piece) {
        return i_piece.kind == Stem || i_piece.kind == Index || i_piece.kind == Stamp;
    });
}
