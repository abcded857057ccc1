#pragma once

#include <QtGlobal>

class QString;
class cConsole;

/** How far a run has got, with its rate and the time left: drawn over on a terminal, else a line per
 * interval. */
class cProgress {
public:
    static constexpr qint64 s_redraw = 100; ///< milliseconds between two drawings on a terminal
    static constexpr qint64 s_interval = 10000; ///< milliseconds between two lines elsewhere

    explicit cProgress(cConsole& io_console);

    /** @param i_now milliseconds since the start of the run */
    void update(qint64 i_now, qint64 i_done, qint64 i_total, qint64 i_failed);
    /** Takes the drawn line away. */
    void finish();

    static QString format(qint64 i_now, qint64 i_done, qint64 i_total, qint64 i_failed);

private:
    cConsole& m_console;
    qint64 m_last;
};
