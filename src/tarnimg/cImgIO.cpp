#include <tarnimg/cImgIO.h>

#include <tarnbase/cFileSystem.h>
#include <tarnbase/cTracer.h>
#include <tarnimg/cImageTypeFactory.h>

#include <QFileInfo>
#include <QImage>

namespace {

QSharedPointer<cImgIO> findHandler(const QString& i_path, cImgIO::EFileIOFlag i_flag)
{
    const QString extension = cFileSystem::extractExtension(i_path).toLower();
    for (const cImgIO* handler : qAsConst(cImgIO::getImgIOSet())) {
        if (!handler->getFlags().testFlag(i_flag) || !handler->getFilter().contains(extension))
            continue;
        if (QSharedPointer<cImgIO> clone {handler->clone()})
            return clone;
    }
    return {};
}

QString allKnownFiles(const QList<const cImgIO*>& i_handlers, const QStringList& i_additional)
{
    QString text = QStringLiteral("All known Files (");
    for (const cImgIO* handler : i_handlers)
        text += handler->getFilter() + u' ';
    for (const QString& entry : i_additional)
        text += entry.section(u';', 0, 0) + u' ';
    return text.trimmed() + QStringLiteral(");;");
}

} // namespace

cImgIO::cImgIO(const QString& i_name, const QString& i_filter, QFlags<EFileIOFlag> i_flags)
    : m_name(i_name),
      m_filter(i_filter),
      m_flags(i_flags)
{
}

cImgIO::~cImgIO() = default;

cImg cImgIO::openImg(const QString& i_path, const cMapObj&) { return cImg::fromQImage(QImage(i_path)); }

cImg cImgIO::openImgFromMemory(const char*, unsigned, const cMapObj&) { return cImg(); }

bool cImgIO::writeImg(const QString& i_path, const cImg& i_image, const cObj*)
{
    bool ok = i_image.isValid();
    cImg image = i_image;
    if (!image.isKindOf(cImgType::RGB32) && !image.isKindOf(cImgType::RGB24)
        && !image.isKindOf(cImgType::UInt8)) {
        cTracer::cout << "Unsupported image type(" << image.getImgType().getName()
                      << "). File is converted to 8 bit." << cTracer::end();
        cImg narrowed;
        ok = i_image.convertTo(cImgType::UInt8, narrowed);
        image = narrowed;
    }
    if (!ok)
        return false;
    QString format = QFileInfo(i_path).suffix();
    if (format.isEmpty())
        format = QStringLiteral("bmp");
    return image.toQImage().save(i_path, format.toLocal8Bit().constData(), -1);
}

bool cImgIO::registerFileIO(cImgIO* i_handler)
{
    if (i_handler)
        getImgIOSet().insert(i_handler);
    return true;
}

QSet<cImgIO*>& cImgIO::getImgIOSet()
{
    static QSet<cImgIO*> s_handlers;
    return s_handlers;
}

QSharedPointer<cImgIO> cImgIO::findReadHandler(const QString& i_path) { return findHandler(i_path, Read); }

QSharedPointer<cImgIO> cImgIO::findSaveHandler(const QString& i_path) { return findHandler(i_path, Write); }

QString cImgIO::getDlgFilterStrings(QFlags<EFileIOFlag> i_flags, const QStringList& i_additional)
{
    QList<const cImgIO*> handlers;
    for (const cImgIO* handler : qAsConst(getImgIOSet()))
        if (handler->getFlags() & i_flags)
            handlers.append(handler);

    const bool reading = i_flags.testFlag(Read);
    QString text;
    if (reading)
        text += allKnownFiles(handlers, i_additional);
    for (const cImgIO* handler : qAsConst(handlers))
        text += handler->getName() + u'(' + handler->getFilter() + QStringLiteral(");;");
    for (const QString& entry : i_additional)
        text += entry.section(u';', 1, 1) + u'(' + entry.section(u';', 0, 0) + QStringLiteral(");;");
    if (reading)
        text += QStringLiteral("All Files (*.*)");
    else if (text.endsWith(QStringLiteral(";;")))
        text.chop(2);
    return text;
}
