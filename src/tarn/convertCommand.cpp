#include "cConsole.h"
#include "cDiagnostic.h"
#include "cFileFormat.h"
#include "cOptions.h"
#include "cOutputName.h"
#include "cRunner.h"
#include "commands.h"
#include "filePatterns.h"
#include "formats/fileBytes.h"
#include "imageConversion.h"
#include "rangeOption.h"

#include <QFileInfo>
#include <QHash>
#include <QTextStream>
#include <optional>
#include <unistd.h>

namespace host {
namespace {

const QString s_name = QStringLiteral("convert");

cOptions makeOptions()
{
    return cOptions({
        {QStringLiteral("--type"), QStringLiteral("TYPE"),
            QStringLiteral("the pixel type of the output; without it the pixels stay as they are")},
        {QStringLiteral("--range"), QStringLiteral("LOW,HIGH"),
            QStringLiteral("the input's values that --type stretches onto the range of the type")},
        {QStringLiteral("--quiet"), QString(), QStringLiteral("failures only"), QStringLiteral("-q")},
    });
}

QString usage(const cOptions& i_options)
{
    return QStringLiteral("usage: tarn convert [options] INPUT... OUTPUT\n\n") + i_options.usage()
        + QStringLiteral(
            "\nAn input is a file, a folder, a pattern with *, ? and [...], or '-' for a list on standard "
            "input. The\nextension of the output chooses its format; several inputs need {stem} or {index} "
            "in its "
            "name:\n"
            "  tarn convert scan.tif scan.npy\n"
            "  tarn convert --type UInt8 --range 0,4095 'raw/*.png' out/{stem}.png\n\n"
            "Without --type nothing is changed: a format that cannot hold the pixels is refused. With it the "
            "range\n"
            "(of the file, else of its type, -1 to 1 for floats) is stretched onto that of the type, and "
            "values\n"
            "outside are cut; a float type keeps the values. What was done is told.\n\n"
            "types: %1\nread:  %2\nwritten: %3\n\n"
            "exit codes: 0 all good, 1 some inputs failed, 2 bad usage\n")
              .arg(typeNames().join(QStringLiteral(", ")), readableExtensions().join(QStringLiteral(", ")),
                  writableExtensions().join(QStringLiteral(", ")));
}

struct Task {
    QStringList inputs;
    cOutputName output;
    cImgType::ImageTypes type = cImgType::Invalid; ///< `Invalid`: as it is
    std::optional<cDblRange> range;
};

QString readType(const cOptions& i_options, Task& o_task)
{
    if (i_options.has(QStringLiteral("--type"))) {
        const QString name = i_options.get(QStringLiteral("--type"));
        o_task.type = typeFromName(name);
        if (o_task.type == cImgType::Invalid)
            return QStringLiteral("unknown pixel type, found '%1'\n").arg(name)
                + (nearest(name, typeNames()).isEmpty()
                        ? QStringLiteral("known: ") + typeNames().join(QStringLiteral(", "))
                        : suggest(name, typeNames()));
    }
    const QString wrong = readRangeOption(i_options, o_task.range);
    if (!wrong.isEmpty())
        return wrong;
    if (o_task.range && o_task.type == cImgType::Invalid)
        return QStringLiteral("--range needs --type, which says onto which values to stretch\n"
                              "with the input's own type the values are stretched within it");
    return {};
}

QString readInputs(const QStringList& i_words, Task& o_task)
{
    for (const QString& word : i_words) {
        if (word == QLatin1String("-")) {
            QTextStream input(stdin);
            input.setCodec("UTF-8");
            o_task.inputs += readFileList(input);
            continue;
        }
        const cExpansion expansion = expandPattern(word);
        if (!expansion.error.isEmpty())
            return expansion.error;
        o_task.inputs += expansion.files;
    }
    return o_task.inputs.isEmpty() ? QStringLiteral("no file is named on standard input") : QString();
}

QString readOutput(const QString& i_pattern, Task& o_task)
{
    const QString error = o_task.output.set(i_pattern);
    if (!error.isEmpty())
        return error;
    if (!canWrite(i_pattern)) {
        const QString extension = QFileInfo(i_pattern).suffix();
        return QStringLiteral(
            "unknown format of the output '%1', expected one of the extensions %2, found %3")
            .arg(i_pattern, writableExtensions().join(QStringLiteral(", ")),
                extension.isEmpty() ? QStringLiteral("none") : QStringLiteral("'.%1'").arg(extension));
    }
    if (o_task.inputs.size() > 1 && !o_task.output.isVarying())
        return QStringLiteral("%1 inputs would be written to the one file '%2'\n")
                   .arg(o_task.inputs.size())
                   .arg(i_pattern)
            + QStringLiteral("put {stem} or {index} into the name");
    return {};
}

/** Converts file by file, and keeps what there is to tell at the end. */
class cConverter {
public:
    cConverter(const Task& i_task, cConsole& io_console, bool i_quiet)
        : m_task(i_task),
          m_console(io_console),
          m_quiet(i_quiet)
    {
        for (const QString& input : m_task.inputs)
            m_inputs.insert(QFileInfo(input).absoluteFilePath(), input);
    }

    EExit run()
    {
        int failed = 0;
        for (int i = 0; i < m_task.inputs.size(); ++i) {
            try {
                convert(i);
            } catch (const std::exception& error) {
                ++failed;
                const QString text = QString::fromLocal8Bit(error.what());
                const QString help = text.section(u'\n', 1);
                m_console.writeLine(
                    QStringLiteral("%1: error: %2").arg(m_task.inputs[i], text.section(u'\n', 0, 0))
                    + (help.isEmpty() ? QString() : QStringLiteral("\n  help: ") + help));
            }
        }
        if (!m_quiet)
            report(failed);
        return failed ? EExit::SomeFailed : EExit::Good;
    }

private:
    /** What was done to some of the images. */
    struct Done {
        QString text;
        int files;
        quint64 outside;
    };

    void convert(int i_index)
    {
        const QString& input = m_task.inputs[i_index];
        const QString output = m_task.output.make(
            {QFileInfo(input).completeBaseName(), quint64(i_index), i_index, QStringLiteral("img")});
        const QString place = QFileInfo(output).absoluteFilePath();
        if (m_inputs.contains(place))
            raise(QStringLiteral("%1 is an input and is not written over").arg(output));
        if (m_written.contains(place))
            raise(QStringLiteral("%1 was written from %2 already\nput {index} into the name")
                      .arg(output, m_written[place]));
        const cImg image = readImage(input);
        const unsigned pages = countPages(input, image);
        cConvertedImage converted {image, {}, 0};
        if (m_task.type != cImgType::Invalid)
            converted = convertImage(image, m_task.type, m_task.range);
        try {
            writeImage(output, converted.image);
        } catch (const std::exception& error) {
            const QString help = canHold(output, converted.image)
                ? QString()
                : QStringLiteral("\nchoose one of these, or a --type that the format can hold");
            raise(QStringLiteral("%1: %2").arg(output, QString::fromLocal8Bit(error.what())) + help);
        }
        m_written.insert(place, input);
        if (pages > 1 && !m_quiet)
            m_console.writeLine(
                QStringLiteral("%1: the first of %2 pages is converted").arg(input).arg(pages));
        if (!converted.text.isEmpty())
            note(converted.text, converted.outside);
    }

    void note(const QString& i_text, quint64 i_outside)
    {
        for (Done& done : m_done)
            if (done.text == i_text) {
                ++done.files;
                done.outside += i_outside;
                return;
            }
        m_done.append({i_text, 1, i_outside});
    }

    void report(int i_failed)
    {
        const int all = m_task.inputs.size();
        for (const Done& done : qAsConst(m_done)) {
            QString line = done.text;
            if (all > 1)
                line += (done.files == 1 ? QStringLiteral(": 1 file")
                                         : QStringLiteral(": %1 files").arg(done.files));
            if (done.outside)
                line += done.outside == 1
                    ? QStringLiteral("; 1 value lay outside and was cut")
                    : QStringLiteral("; %1 values lay outside and were cut").arg(done.outside);
            m_console.writeLine(line);
        }
        if (all > 1)
            m_console.writeLine(QStringLiteral("%1 of %2 files converted, %3 failed")
                                    .arg(all - i_failed)
                                    .arg(all)
                                    .arg(i_failed));
    }

    const Task& m_task;
    cConsole& m_console;
    const bool m_quiet;
    QHash<QString, QString> m_inputs; ///< by their absolute paths
    QHash<QString, QString> m_written; ///< the inputs by the absolute paths of their outputs
    QList<Done> m_done;
};

} // namespace

EExit convertCommand(const QStringList& i_words)
{
    cOptions options = makeOptions();
    if (const auto end = readWords(s_name, i_words, options, usage))
        return *end;
    const QStringList& words = options.getRest();
    if (words.size() < 2)
        return refuse(s_name,
            QStringLiteral("expected an input and an output, found %1\n'tarn convert --help' tells more")
                .arg(words.size()));
    Task task;
    QString problem = readType(options, task);
    if (problem.isEmpty())
        problem = readInputs(words.mid(0, words.size() - 1), task);
    if (problem.isEmpty())
        problem = readOutput(words.last(), task);
    if (!problem.isEmpty())
        return refuse(s_name, problem);
    cConsole console(stderr, isatty(STDERR_FILENO));
    return cConverter(task, console, options.has(QStringLiteral("--quiet"))).run();
}

} // namespace host
