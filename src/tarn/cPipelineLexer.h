#pragma once

#include "cPipeline.h"

/** One token of a graph text. */
struct cToken {
    enum EKind { Word, Bang, Open, Close, NewLine, End };
    EKind kind = End;
    cWord word; ///< of a Word; of every other kind only `pos` is set

    const cSourcePos& getPos() const { return word.pos; }
};

/** Cuts a graph text into tokens: words with their quoting undone, '!', '{', '}' and line ends. Comments are
 * gone. */
class cPipelineLexer {
public:
    cPipelineLexer(const QString& i_text, const QString& i_file, QList<cDiagnostic>& io_errors);

    /** All tokens; the last one is `End`. */
    QList<cToken> run();

private:
    QChar peek(int i_ahead = 0) const;
    void advance();
    void skipComment();
    cToken readWord();
    void readDoubleQuotes(cWord& io_word);
    void readSingleQuotes(cWord& io_word);
    void readVariable(cWord& io_word);
    void error(const cSourcePos& i_pos, const QString& i_message, const QString& i_help = QString());

    const QString m_text;
    const QString m_file;
    QList<cDiagnostic>& m_errors;
    int m_index = 0;
    cSourcePos m_pos;
};
