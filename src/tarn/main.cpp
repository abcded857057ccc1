#include "cFileFormat.h"
#include "cRunner.h"
#include "commands.h"
#include "hostStations.h"

#include <QGuiApplication>
#include <QTextCodec>
#include <cstdio>
#include <exception>
#include <tarnbase/cTracer.h>

namespace {

/** Libraries note in Qt's debug log that they come and go; that is nothing for a user's standard error. */
void passWarnings(QtMsgType i_type, const QMessageLogContext&, const QString& i_text)
{
    if (i_type != QtDebugMsg && i_type != QtInfoMsg)
        std::fprintf(stderr, "%s\n", qUtf8Printable(i_text));
}

// The first of these notes is written while libraries are loaded, before anything else of this program runs.
// The sanitizers' run-time is not up yet at that time.
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
void installEarly() { qInstallMessageHandler(passWarnings); }
__attribute__((section(".preinit_array"), used)) void (*s_installEarly)() = installEarly;
#endif

void passFatal(QtMsgType i_type, const QMessageLogContext&, const QString& i_text)
{
    if (i_type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qUtf8Printable(i_text));
}

#ifdef __SANITIZE_ADDRESS__
/** What the font library keeps until the end is not ours; the leak checker asks for such places by this name.
 */
extern "C" __attribute__((visibility("default"), used)) const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}
#endif

/**
 * Most commands draw nothing. Those that do draw text into pictures, for which no screen is needed. The
 * application lives until the process ends.
 */
QCoreApplication* makeApplication(int& io_count, char** io_words)
{
    QStringList words;
    for (int i = 1; i < io_count; ++i)
        words.append(QString::fromLocal8Bit(io_words[i]));
    if (!host::drawsText(words))
        return new QCoreApplication(io_count, io_words);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // It warns of places that a desktop session would have.
    const QtMessageHandler before = qInstallMessageHandler(passFatal);
    auto* application = new QGuiApplication(io_count, io_words);
    qInstallMessageHandler(before);
    return application;
}

} // namespace

int main(int i_count, char** i_words)
{
    qInstallMessageHandler(passWarnings);
    // File names and messages are UTF-8 whatever the locale says: in the plain "C" one names would not
    // survive.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    static QCoreApplication* const s_application = makeApplication(i_count, i_words);
    Q_UNUSED(s_application)
    // The trace goes through the console, if at all.
    for (cTracer* channel : {&cTracer::cerr, &cTracer::cout})
        channel->setState(channel->getState() & ~QFlags<cTracer::ETracerState>(cTracer::ToDebugLog));
    host::registerFileFormats();
    host::registerStations();
    try {
        return int(host::runTarn(QCoreApplication::arguments().mid(1)));
    } catch (const std::exception& error) {
        return int(host::refuse(QString(), QString::fromLocal8Bit(error.what())));
    }
}
