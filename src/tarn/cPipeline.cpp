#include "cPipeline.h"

#include <algorithm>

QString cWord::toString() const
{
    QString text;
    for (const cWordPiece& piece : pieces)
        text += piece.kind == cWordPiece::Variable ? QStringLiteral("${%1}").arg(piece.text) : piece.text;
    return text;
}

bool cWord::isPlain() const
{
    return std::all_of(pieces.begin(), pieces.end(),
        [](const cWordPiece& i_piece) { return i_piece.kind == cWordPiece::Plain; });
}
