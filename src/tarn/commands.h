#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class cOptions;
class cPortBase;
class cStation;

enum class EExit;

namespace host {

/** The whole command: the words after the program's name. Results on standard output, everything else on
 * standard error. */
EExit runTarn(const QStringList& i_words);

/** One command each; the words after its name. */
EExit runCommand(const QStringList& i_words);
EExit checkCommand(const QStringList& i_words);
EExit convertCommand(const QStringList& i_words);
EExit listCommand(const QStringList& i_words);
EExit inspectCommand(const QStringList& i_words);
EExit showCommand(const QStringList& i_words);

/** Whether a command draws text, for which it needs a QGuiApplication. */
bool drawsText(const QStringList& i_words);

/** Writes to standard output, in UTF-8. */
void print(const QString& i_text);
/** Writes "tarn <command>: error: message" and the help in its second line, if it has one; for the caller to
 * return. */
EExit refuse(const QString& i_command, const QString& i_message);

/**
 * Reads the words after a command's name.
 *
 * @return the exit code if that ends the command: the words are wrong, or --help has printed the usage
 */
std::optional<EExit> readWords(const QString& i_command, const QStringList& i_words, cOptions& io_options,
    QString (*i_usage)(const cOptions&));

/** What an input takes or an output gives, such as "image: UInt8 of 1 channel, RGB24" or "number". */
QString describeValues(const cPortBase& i_port);
/** Everything about a station: words from its registration, the rest from the live object. */
QString describeStation(const QString& i_identifier, cStation& i_station);

} // namespace host
