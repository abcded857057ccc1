#pragma once

#include <QMutex>
#include <QString>
#include <cstdio>

/** Standard error, shared by all threads: whole lines, and at its end one line of progress that is drawn
 * over. */
class cConsole {
public:
    /** @param i_terminal whether a line can be drawn over */
    cConsole(std::FILE* i_file, bool i_terminal);

    bool isTerminal() const { return m_terminal; }
    /** Writes a text and a line end, above the line of progress. */
    void writeLine(const QString& i_text);
    /** Replaces the line of progress; an empty text takes it away. Only on a terminal. */
    void setProgress(const QString& i_text);

private:
    void put(const QString& i_text);

    QMutex m_mutex; ///< guards what follows, and the file
    std::FILE* m_file;
    const bool m_terminal;
    QString m_progress;
};
