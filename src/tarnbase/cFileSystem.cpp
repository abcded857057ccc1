#include <tarnbase/cFileSystem.h>

#include <QString>

QString cFileSystem::extractExtension(const QString& i_path)
{
    const int dot = i_path.lastIndexOf(QLatin1Char('.'));
    return dot > i_path.lastIndexOf(QLatin1Char('/')) ? i_path.mid(dot + 1) : QString();
}
