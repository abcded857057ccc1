#include "cFileFormat.h"
#include "cRunner.h"
#include "commands.h"
#include "hostStations.h"

#include <QCoreApplication>
#include <QTextCodec>
#include <exception>
#include <tarnbase/cTracer.h>

int main(int i_count, char** i_words)
{
    // File names and messages are UTF-8 whatever the locale says: in the plain "C" one names would not survive.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QCoreApplication application(i_count, i_words);
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
