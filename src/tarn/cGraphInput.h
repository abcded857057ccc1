#pragma once

#include "cOptions.h"

#include <QMap>

class cConsole;
class cGraph;

/** The graph that the words of a command give: its text or its file, the variables in it, the limit of
 * frames.
 */
class cGraphInput {
public:
    /** What a command has to declare for it. */
    static QList<cOptions::Spec> options();

    /** Reads the text. @return what is wrong, for `refuse`; empty if nothing is */
    QString read(const cOptions& i_options, const QString& i_command);
    /**
     * Builds the graph, checks and rehearses it. What is wrong is written, each error with its place.
     * @return whether the graph can run
     */
    bool build(cGraph& io_graph, cConsole& io_console) const;

private:
    QString readText(const cOptions& i_options, const QString& i_command);
    QString readVariables(const QStringList& i_definitions);

    QString m_text;
    QString m_name; ///< what messages call it
    QMap<QString, QString> m_variables;
    qint64 m_limit = 0;
};
