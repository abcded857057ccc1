#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>
#include <tarnflow/cGraphError.h>
#include <tarnimg/cImg.h>

class cDfpNode;
class cStation;

/** What stations of this library tell the host beyond their ports and parameters. */
class cHostStation {
public:
    virtual ~cHostStation() = default;

    /**
     * Looks at the parameters before the run starts, when all links are made: what cannot work is refused
     * here, not at the first frame. Called from the thread that builds the graph.
     */
    virtual QList<cGraphError> checkParams() = 0;
    /**
     * Makes the station part of a rehearsal, see cRehearsal: whatever it would read comes from its like in
     * the graph that is to run, and whatever leaves the graph is swallowed. A source gives one frame, with
     * the stamp 0: what its like has for i_stamp. Called once, when all links are made and in place of
     * `checkParams`.
     */
    virtual void rehearse(cHostStation& io_like, qint64 i_stamp) = 0;
    /** A graph in which the station can be tried; empty if its ports say it all. */
    virtual QString getExample() const { return {}; }
};

/** A source of frames that stand in files. All members may be called from any thread while the graph runs. */
class cFrameSource {
public:
    virtual ~cFrameSource() = default;

    /** The file of a stamp; empty if the source has no such stamp. */
    virtual QString getFile(qint64 i_stamp) const = 0;
    /** How many different files there are. */
    virtual int getFileCount() const = 0;
    /** Whether the source reads this file. */
    virtual bool reads(const QString& i_absolutePath) const = 0;
    /** Frames that the source will have made at its end. */
    virtual qint64 getTotal() const = 0;
    /** Frames that are done, those that failed among them. */
    virtual qint64 getDone() const = 0;
    /**
     * The image of a frame before the graph starts, invalid if it cannot be read. It is kept for the run, so
     * that no file is read twice.
     */
    virtual cImg readAhead(qint64 i_stamp) = 0;
    /** Ends after so many frames; 0: no limit. Before the graph starts. */
    virtual void setLimit(qint64 i_frames) = 0;
};

namespace host {

/** The sources from which a node's frames come, along all links backwards, those of its first input first. */
QList<cFrameSource*> sourcesOf(const cDfpNode& i_node);

/**
 * The file that gives a frame its name: of the sources that have the stamp the one with the most files, the
 * first of equals. (A single dark frame that goes with every picture names none of them.) Empty if there is
 * none.
 */
QString nameGivingFile(const QList<cFrameSource*>& i_sources, qint64 i_stamp);

/** The port or parameter of the station that one of its misfits is about; empty for the station itself. */
QString nameWithin(const cGraphError& i_misfit, const cStation& i_station);
/** Whether the misfit is a parameter's value. */
bool isAboutParam(const cGraphError& i_misfit, const cStation& i_station);

/** Registers the stations of this library with their words. Once; later calls do nothing. */
void registerStations();

} // namespace host
