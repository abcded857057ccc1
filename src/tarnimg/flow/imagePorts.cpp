#include <tarnimg/cIPortImg.h>
#include <tarnimg/imagePortGroups.h>

#include <tarnbase/cTracer.h>
#include <tarnflow/cStation.h>

template class cBufferT<cImg>;
template class cIPortT<cImg>;
template class cOPortT<cImg>;
template class cImport<cImg>;
template class cExport<cImg>;
template class cBufferConverter<cImg>;

namespace {

/** What another port lists; nothing for ports of other values. */
cSupportedImages supportedBy(const cPortBase* i_port)
{
    if (const auto* output = dynamic_cast<const cOPort<cImg>*>(i_port))
        return output->getSupportedImages();
    if (const auto* input = dynamic_cast<const cIPort<cImg>*>(i_port))
        return input->getSupportedImages();
    return {};
}

bool checkLink(const cSupportedImages& i_ours, const cPortBase* i_other)
{
    const cSupportedImages theirs = supportedBy(i_other);
    if (i_ours.meets(theirs))
        return true;
    // All names stand in front of the "and"; nothing follows it.
    const QStringList names = i_ours.getTypeNames() + theirs.getTypeNames();
    cTracer::cerr << "Image types do not match: " << names.join(QLatin1Char(',')) << " and "
                  << cTracer::end();
    return false;
}

/** The tags are left open: the text is the end of a tooltip. */
QString tooltip(const QString& i_prefix, const QString& i_types, const QString& i_description)
{
    QString text = i_prefix + QStringLiteral("<font color=red><b>") + i_types;
    if (!i_description.isEmpty())
        text += QStringLiteral("</b><br><font color=blue>%1").arg(i_description);
    return text;
}

QString typeNamesOr(const cSupportedImages& i_supported, const QString& i_anyImage)
{
    const QStringList names = i_supported.getTypeNames();
    return names.isEmpty() ? i_anyImage : names.join(QLatin1Char(','));
}

} // namespace

cIPort<cImg>::cIPort() = default;
cIPort<cImg>::cIPort(cDfpNode* i_node, const QString& i_name) : cIPortT<cImg>(i_node, i_name) {}
cIPort<cImg>::~cIPort() = default;

bool cIPort<cImg>::hasDirectCallback() const { return false; }

bool cIPort<cImg>::checkDynamicData(const cImg& i_image)
{
    if (m_supported.takes(i_image))
        return true;
    cTracer::cerr << getPortPath() << " does not support images of type: " << i_image.getImgType().getName()
                  << " with " << i_image.getNumChannels() << " channels." << cTracer::end();
    if (auto* station = dynamic_cast<cStation*>(getNode()))
        station->noteMisfit({getName(),
            QStringLiteral("does not take the images that reach it, expected %1, found %2")
                .arg(m_supported.toText(), cSupportedImages::describe(i_image)),
            {}});
    return false;
}

bool cIPort<cImg>::checkStaticData(const cPortBase* i_other) { return checkLink(m_supported, i_other); }

QString cIPort<cImg>::getTooltip() const
{
    return tooltip(QStringLiteral("Supported types: "), typeNamesOr(m_supported, QStringLiteral("All")),
        getDescription());
}

cOPort<cImg>::cOPort() = default;
cOPort<cImg>::cOPort(cDfpNode* i_node, const QString& i_name, unsigned int i_poolSize)
    : cOPortT<cImg>(i_node, i_name, i_poolSize)
{
}
cOPort<cImg>::~cOPort() = default;

bool cOPort<cImg>::checkStaticData(const cPortBase* i_other) { return checkLink(m_supported, i_other); }

QString cOPort<cImg>::getTooltip() const
{
    return tooltip(QString(), typeNamesOr(m_supported, QStringLiteral("Image")), getDescription());
}
