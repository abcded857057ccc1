#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QVector>
#include <optional>

struct cJsonProblem;

/**
 * A file of values, one JSON value in a line.
 *
 * A line is the value itself, or an object that holds it under a key, with or without a "stamp" and a "port";
 * other keys are passed over, and so are empty lines. A value without a stamp has the one that follows the
 * stamp before; the first has 0. Stamps ascend.
 */
class cJsonLines {
public:
    struct Entry {
        int line; ///< from 1
        qint64 stamp;
        QJsonValue value;
        QByteArray text; ///< of the line
        int start; ///< where the value begins in it, in bytes
    };

    /**
     * @param i_path "-" reads standard input
     * @param i_key under which an object holds the value
     * @param i_port reads only lines with this "port"; if it is empty, all lines have the same one, or none
     * @return what is wrong, with its place "file:line:column" in the file; empty if nothing is
     */
    QString read(const QString& i_path, const QString& i_key, const QString& i_port);

    const QVector<Entry>& getEntries() const { return m_entries; }
    /** What is wrong with an entry's value, with its place. */
    QString describe(const Entry& i_entry, const cJsonProblem& i_problem) const;

private:
    QString readLine(int i_line, const QByteArray& i_text);
    /** Takes value and stamp; what is wrong, or nothing for a line of another port. */
    std::optional<QString> readObject(Entry& io_entry, const QJsonValue& i_object);
    QString complain(int i_line, const QByteArray& i_text, int i_at, const QString& i_message) const;

    QString m_name; ///< of the file, for messages
    QString m_key;
    QString m_port;
    bool m_anyPort = true; ///< no port was asked for
    QVector<Entry> m_entries;
};
