#pragma once

#include "cPipeline.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <tarnflow/cGraphError.h>

class cDfpNode;
class cGraph;
class cStation;

/**
 * Builds a graph from its text form: looks up names, puts in variables, makes stations, writes parameters,
 * makes links.
 *
 * Everything is tried and every error kept, so that a user sees them all at once.
 */
class cPipelineBuilder {
public:
    /** @param i_variables values for ${name} */
    cPipelineBuilder(cGraph& io_graph, const QMap<QString, QString>& i_variables);

    /** The most frames that each source makes; 0: no limit. Before `build`. */
    void setLimit(qint64 i_frames) { m_limit = i_frames; }
    /** Builds into the graph, which is empty before, and checks it. @return whether it can be launched */
    bool build(const cPipeline& i_pipeline);
    /** The first half of it: stations, parameters and links, of which none is asked whether it can work. */
    bool assemble(const cPipeline& i_pipeline);
    /** In the order of the text. */
    QList<cDiagnostic> getErrors() const;

    /** Adds errors that were found in the graph later, each with the place in the text that it is about. */
    void report(const QList<cGraphError>& i_errors);

private:
    struct Scope {
        const cPipeline& text;
        cGraph& graph;
        bool inner; ///< a subgraph, in which "in." and "out." are its own ports
    };
    /** What a chain's element stands for. */
    struct Place {
        QString path; ///< node, or node.port; empty if there is none
        QString boundary; ///< "in" or "out" for the graph's own port, then `path` is its name
        cSourcePos pos;
    };

    void buildScope(const Scope& i_scope);
    void buildGraphs(const Scope& i_scope);
    QString buildStation(const Scope& i_scope, const cElement& i_element);
    QString findIdentifier(const cElement& i_element, const QString& i_text);
    void writeParams(
        const Scope& i_scope, const cElement& i_element, const QString& i_identifier, cDfpNode& i_node);
    void writeParam(const Scope& i_scope, const cDfpNode& i_node, const QString& i_key, const cWord& i_value,
        const cSourcePos& i_pos);
    Place findReference(const Scope& i_scope, const cElement& i_element);
    void buildLink(const Scope& i_scope, const Place& i_from, const Place& i_to);
    void checkStations();

    QString resolve(const cWord& i_word);
    void error(const cSourcePos& i_pos, const QString& i_message, const QString& i_help = QString());
    void error(const cSourcePos& i_pos, const cGraphError& i_error);
    cDiagnostic locate(const cGraphError& i_error) const;

    cGraph& m_graph;
    const QMap<QString, QString> m_variables;
    qint64 m_limit = 0;
    QString m_file;
    QHash<QString, cSourcePos> m_places; ///< of nodes and parameters, by path
    QList<cDiagnostic> m_errors;
};
