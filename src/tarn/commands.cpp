#include "commands.h"

#include "cDiagnostic.h"
#include "cOptions.h"
#include "cRunner.h"

#include <cstdio>

namespace host {
namespace {

struct Command {
    const char* name;
    const char* purpose;
    EExit (*run)(const QStringList&);
};
constexpr Command s_commands[] = {
    {"run", "run a graph, from a file or given in one line", &runCommand},
    {"check", "tell what keeps a graph from working, without running it", &checkCommand},
    {"convert", "files into other formats and pixel types", &convertCommand},
    {"list", "the stations there are, one in a line", &listCommand},
    {"inspect", "everything about a station", &inspectCommand},
    {"show", "an image of any pixel type as a picture for the eye", &showCommand},
};

QString usage()
{
    QString text = QStringLiteral("usage: tarn <command> ...\n\n");
    for (const Command& command : s_commands)
        text += QStringLiteral("  %1  %2\n")
                    .arg(QString::fromLatin1(command.name).leftJustified(8),
                        QString::fromLatin1(command.purpose));
    return text
        + QStringLiteral("\nexample:  tarn run -e 'files in/*.png ! abs ! save out/{stem}.png'\n"
                         "'tarn <command> --help' tells more.\n");
}

} // namespace

void print(const QString& i_text)
{
    const QByteArray bytes = i_text.toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

EExit refuse(const QString& i_command, const QString& i_message)
{
    const QString who = i_command.isEmpty() ? QStringLiteral("tarn") : QStringLiteral("tarn ") + i_command;
    QString text = who + QStringLiteral(": error: ") + i_message.section(u'\n', 0, 0) + u'\n';
    const QString help = i_message.section(u'\n', 1);
    if (!help.isEmpty())
        text += QStringLiteral("  help: ") + help + u'\n';
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
    return EExit::BadUsage;
}

std::optional<EExit> readWords(const QString& i_command, const QStringList& i_words, cOptions& io_options,
    QString (*i_usage)(const cOptions&))
{
    const QString problem = io_options.parse(i_words);
    if (!problem.isEmpty())
        return refuse(i_command, problem);
    if (!io_options.has(QStringLiteral("--help")))
        return {};
    print(i_usage(io_options));
    return EExit::Good;
}

EExit runTarn(const QStringList& i_words)
{
    if (i_words.isEmpty()) {
        const QByteArray bytes = usage().toUtf8();
        std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
        return EExit::BadUsage;
    }
    const QString& name = i_words.first();
    if (name == QLatin1String("--help") || name == QLatin1String("-h") || name == QLatin1String("help")) {
        print(usage());
        return EExit::Good;
    }
    if (name == QLatin1String("--version")) {
        print(QStringLiteral("tarn " TARN_VERSION "\n"));
        return EExit::Good;
    }
    QStringList names;
    for (const Command& command : s_commands) {
        names.append(QString::fromLatin1(command.name));
        if (name == names.last())
            return command.run(i_words.mid(1));
    }
    return refuse(
        QString(), QStringLiteral("unknown command, found '%1'\n").arg(name) + suggest(name, names));
}

} // namespace host
