#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/** A place in a text; both numbers count from 1, columns count characters. */
struct cSourcePos {
    int line = 1;
    int column = 1;
};

/** What is wrong with a graph text, where, and how to mend it. */
struct cDiagnostic {
    QString file;
    cSourcePos pos;
    QString message; ///< "station.port: what is wrong, what was expected, what was found"
    QString help; ///< how to mend it; may be empty

    /** "file:line:column: error: message", and a second line "  help: ..." if there is help. No newline at
     * the end. */
    QString toString() const;
};

namespace host {

/** The candidate that was probably meant by a misspelt word, or an empty string if none is near. */
QString nearest(const QString& i_word, const QStringList& i_candidates);

/** "did you mean 'x'?", else "known: a, b, c" (cut after some), else nothing: help for a name that is not
 * known. */
QString suggest(const QString& i_word, const QStringList& i_candidates);

} // namespace host
