#include "cJsonLines.h"

#include "cValueForm.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

QString cJsonLines::complain(int i_line, const QByteArray& i_text, int i_at, const QString& i_message) const
{
    return QStringLiteral("%1:%2:%3: %4")
        .arg(m_name)
        .arg(i_line)
        .arg(QString::fromUtf8(i_text.left(std::max(i_at, 0))).size() + 1)
        .arg(i_message);
}

QString cJsonLines::describe(const Entry& i_entry, const cJsonProblem& i_problem) const
{
    const int at = host::jsonElement(i_entry.text, i_entry.start, i_problem.path);
    return complain(i_entry.line, i_entry.text, at, i_problem.toString());
}

QString cJsonLines::read(const QString& i_path, const QString& i_key, const QString& i_port)
{
    const bool input = i_path == QLatin1String("-");
    m_name = input ? QStringLiteral("standard input") : i_path;
    m_key = i_key;
    m_port = i_port;
    m_anyPort = i_port.isEmpty();
    m_entries.clear();
    QFile file(i_path);
    if (!(input ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly)))
        return QStringLiteral("%1: %2").arg(m_name, file.errorString());
    const QList<QByteArray> lines = file.readAll().split('\n');
    if (file.error() != QFileDevice::NoError)
        return QStringLiteral("%1: %2").arg(m_name, file.errorString());
    for (int i = 0; i < lines.size(); ++i) {
        const QString problem = readLine(i + 1, lines[i]);
        if (!problem.isEmpty())
            return problem;
    }
    if (m_entries.isEmpty())
        return m_anyPort ? QStringLiteral("%1: holds no value, expected one in each line").arg(m_name)
                         : QStringLiteral("%1: no line has the port \"%2\"").arg(m_name, i_port);
    return {};
}

QString cJsonLines::readLine(int i_line, const QByteArray& i_text)
{
    if (i_text.trimmed().isEmpty())
        return {};
    // In an array, because a document alone is no bare value.
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson('[' + i_text + ']', &error);
    if (error.error != QJsonParseError::NoError || document.array().size() != 1) {
        const bool several = error.error == QJsonParseError::NoError;
        const int at = several ? 0 : std::min(error.offset - 1, i_text.size());
        return complain(i_line, i_text, at,
            QStringLiteral("expected one JSON value, found %1")
                .arg(several ? QStringLiteral("several, or a comma at the end")
                             : QStringLiteral("an error in it (%1)").arg(error.errorString())));
    }
    const int start = int(std::find_if_not(i_text.begin(), i_text.end(), [](char c) {
        return strchr(" \t\r", c) != nullptr;
    }) - i_text.begin());
    Entry entry {
        i_line, m_entries.isEmpty() ? 0 : m_entries.last().stamp + 1, document.array().at(0), i_text, start};
    if (entry.value.isObject()) {
        const std::optional<QString> problem = readObject(entry, entry.value);
        if (!problem)
            return {};
        if (!problem->isEmpty())
            return *problem;
    } else if (!m_anyPort) {
        return {};
    }
    if (!m_entries.isEmpty() && entry.stamp <= m_entries.last().stamp)
        return complain(i_line, i_text, std::max(host::jsonMember(i_text, start, "stamp"), 0),
            QStringLiteral("expected a stamp above %1, the one of line %2, found %3")
                .arg(m_entries.last().stamp)
                .arg(m_entries.last().line)
                .arg(entry.stamp));
    m_entries.append(entry);
    return {};
}

std::optional<QString> cJsonLines::readObject(Entry& io_entry, const QJsonValue& i_object)
{
    const QJsonObject object = i_object.toObject();
    const int start = io_entry.start;
    const QString port = object.value(QLatin1String("port")).toString();
    if (m_anyPort && m_entries.isEmpty())
        m_port = port;
    if (port != m_port) {
        if (!m_anyPort)
            return std::nullopt;
        return complain(io_entry.line, io_entry.text,
            std::max(host::jsonMember(io_entry.text, start, "port"), 0),
            QStringLiteral("the value is of port \"%1\", those before are of \"%2\"; choose with port=")
                .arg(port, m_port));
    }
    if (!object.contains(m_key))
        return complain(io_entry.line, io_entry.text, start,
            QStringLiteral("expected the key \"%1\", found %2")
                .arg(m_key,
                    object.isEmpty()
                        ? QStringLiteral("none")
                        : QStringLiteral("\"%1\"").arg(object.keys().join(QStringLiteral("\", \"")))));
    const QJsonValue stamp = object.value(QLatin1String("stamp"));
    if (!stamp.isUndefined()) {
        // Doubles hold integers up to here, one by one.
        constexpr double most = 9007199254740992.0;
        const double number = stamp.toDouble(0.5);
        if (number != std::floor(number) || std::fabs(number) > most)
            return complain(io_entry.line, io_entry.text, host::jsonMember(io_entry.text, start, "stamp"),
                QStringLiteral("expected an integer as stamp, found %1").arg(host::jsonText(stamp)));
        io_entry.stamp = qint64(number);
    }
    io_entry.value = object.value(m_key);
    io_entry.start = std::max(host::jsonMember(io_entry.text, start, m_key.toUtf8()), start);
    return QString();
}
