#pragma once

#include <QString>
#include <QStringList>

class QTextStream;

namespace host {

/**
 * Whether a name comes before another in the order that people expect: runs of digits count as numbers
 * ("img2" before "img10"), letters by their code, and among equals the shorter run of digits first ("img1"
 * before "img01").
 */
bool naturalLess(const QString& a, const QString& b);

/** What a file pattern stands for. */
struct cExpansion {
    QStringList
        files; ///< in natural order for a folder or a wildcard; a name is in it whether it exists or not
    QString error; ///< why the pattern stands for nothing; else empty
};

/**
 * Files for a pattern: a file's name; a folder (its files that can be read, without those of folders in it);
 * a path in which
 * '*', '?' and [...] stand for any text, any character, any of some characters, in folders' names too;
 * several of these separated by ','. What exists under the very name of a pattern is taken for that. Hidden
 * files are found by name only.
 */
cExpansion expandPattern(const QString& i_pattern);

/** The names in a list of one per line; empty lines are passed over. */
QStringList readFileList(QTextStream& io_stream);

} // namespace host
