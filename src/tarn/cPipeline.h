#pragma once

#include "cDiagnostic.h"

#include <QList>
#include <QString>
#include <optional>
#include <vector>

/** A stretch of a word: as it stands, in quotes, or the name of a variable. */
struct cWordPiece {
    enum EKind { Plain, Quoted, Variable };
    EKind kind = Plain;
    QString text; ///< without quotes and escapes; of a variable its name
    cSourcePos pos;
};

/** What stands between two blanks. */
struct cWord {
    QList<cWordPiece> pieces;
    cSourcePos pos;

    /** Its text as it was written but for blanks in quotes; for messages. */
    QString toString() const;
    /** All pieces are plain. */
    bool isPlain() const;
};

/** "key=value" */
struct cArgument {
    QString key;
    cWord value;
    cSourcePos pos;
};

/** One place of a chain: a new station, or a reference to one that stands elsewhere. */
struct cElement {
    enum EKind { Station, Reference };
    EKind kind = Station;
    cSourcePos pos;

    cWord station; ///< identifier or a suffix of it
    std::optional<cWord> main; ///< the word after the identifier: the station's main parameter
    QList<cArgument> arguments; ///< "name" among them

    QString node; ///< of a reference: the path of the node
    QString port; ///< of a reference: empty if the port is left open
};

/** Elements linked one to the next. */
struct cChain {
    QList<cElement> elements;
};

/** A graph as it was written. Names are not looked up yet and variables not put in. */
struct cPipeline {
    QString file; ///< for messages
    QString name; ///< of a subgraph
    cSourcePos pos;
    std::vector<cChain> chains;
    std::vector<cPipeline> graphs;
};

/** A pipeline and what is wrong with its text; it can be built if there are no errors. */
struct cParsedPipeline {
    cPipeline pipeline;
    QList<cDiagnostic> errors; ///< in the order of the text, the first 50
};

namespace host {

/**
 * Reads the text form of a graph:
 *
 *     files in/img*.png ! boxFilter maskSize=5,5 name=b ! save out/{stem}.png    b. ! view
 *
 * Words are separated by blanks. Stations are linked by a '!' that stands alone. After a station's identifier
 * (or a unique suffix of it) may come one word for its main parameter, then key=value, among them name=x. A
 * word "x." or "x.port" refers to a station that is named elsewhere, before or after; it stands first or last
 * in its chain. Any other word begins a new chain, and so does a new line, unless the line starts or the one
 * before ends with '!'.
 *
 * "..." keeps blanks, with the escapes \" \\ \$ \n \t; '...' keeps everything. ${name} stands for a value
 * that is given when the graph is built, also in "...". '#' at the start of a word makes the rest of the line
 * a comment. A word can be quoted in part: path="my files"/img*.png. Quoted characters never act as '=', '!',
 * '.', '#', '{' or '}'.
 *
 * "graph name { ... }" is a graph within the graph. Inside, "in.x" and "out.y" are its own ports.
 */
cParsedPipeline parsePipeline(const QString& i_text, const QString& i_file);

/** The text of a pipeline, one chain in a line. Read again it gives the same pipeline, apart from the places.
 */
QString printPipeline(const cPipeline& i_pipeline);

} // namespace host
