#pragma once

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <tarnflow/cGraphError.h>
#include <vector>

class cFrameSource;
class cGraph;
class cPortBase;
class cStation;
struct cPipeline;

/**
 * Tries a graph on a few pixels before it runs, to find what its text alone does not tell: which pixel types
 * reach which station, and whether the values of parameters fit them.
 *
 * An output declares no type of its own, so the stations themselves are asked: a second graph of the same
 * text computes a small part of the first frame. Its sources take what they give from those of the graph that
 * is to run, its sinks swallow, and its trace is silent. Only a misfit counts (cStation::noteMisfit), which
 * would meet each frame of these types. What fails for any other reason, or is not reached, says nothing.
 */
class cRehearsal {
public:
    /** The graph is built and checked, and does not run. It was built from this pipeline with these
     * variables.
     */
    cRehearsal(const cGraph& i_graph, const cPipeline& i_pipeline, const QMap<QString, QString>& i_variables);

    /**
     * The misfits that every frame meets. Files of different types are all asked, until one of them works:
     * one bad file is for the run to name. The first frame gets a second, and the search for other types
     * another one, apart from the file or the step that is under way then; what has not been found out by
     * then is no misfit.
     */
    QList<cGraphError> run();

private:
    /** The pixel types that all sources together give for a stamp; null if a file cannot be read. */
    QString kindsOf(qint64 i_stamp);
    /** Reads the files of a stamp; false if one cannot be read. */
    bool readAhead(qint64 i_stamp);
    /** Stamps from which on the files come in the same combinations again. */
    qint64 countStamps() const;
    QList<cGraphError> rehearse(qint64 i_stamp) const;
    /** A misfit with the file in which it was met, and what to do about it. */
    cGraphError explain(const cGraphError& i_misfit, const cStation& i_station, qint64 i_stamp) const;

    const cGraph& m_graph;
    const cPipeline& m_pipeline;
    const QMap<QString, QString> m_variables;
    std::vector<cFrameSource*> m_sources; ///< of which frames are wanted
    QHash<QString, QString> m_kinds; ///< of files; empty for one that cannot be read
};
