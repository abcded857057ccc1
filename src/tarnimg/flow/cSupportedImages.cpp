#include <tarnimg/cSupportedImages.h>

#include <QMetaEnum>
#include <algorithm>
#include <tarnimg/cImg.h>

bool cSupportedImages::takes(const cImg& i_image) const
{
    const cImgType::ImageTypes type = i_image.getImgType().getTypeId();
    const unsigned channels = i_image.getNumChannels();
    return m_list.isEmpty() || m_list.contains({type, channels}) || m_list.contains({type, 0u});
}

bool cSupportedImages::meets(const cSupportedImages& i_other) const
{
    if (m_list.isEmpty() || i_other.m_list.isEmpty())
        return true;
    return std::any_of(
        m_list.begin(), m_list.end(), [&](const auto& pair) { return i_other.m_list.contains(pair); });
}

QStringList cSupportedImages::getTypeNames() const
{
    const auto typeNames = QMetaEnum::fromType<cImgType::ImageTypes>();
    QStringList names;
    for (int i = 0; i < m_list.size(); ++i) {
        if (m_list.indexOf(m_list[i]) == i)
            names.append(QString::fromLatin1(typeNames.valueToKey(m_list[i].first)));
    }
    return names;
}

QString cSupportedImages::toText() const
{
    QStringList kinds;
    for (const auto& [type, channels] : m_list)
        kinds.append(describe(type, channels));
    kinds.removeDuplicates();
    return kinds.join(QStringLiteral(", "));
}

QString cSupportedImages::describe(cImgType::ImageTypes i_type, unsigned i_channels)
{
    const QString name
        = QString::fromLatin1(QMetaEnum::fromType<cImgType::ImageTypes>().valueToKey(int(i_type)));
    // The others have a number of channels of their own.
    const bool fixed
        = i_type == cImgType::RGB24 || i_type == cImgType::RGB32 || i_type >= cImgType::Gradient16;
    if (fixed || i_channels == 0)
        return name;
    return QStringLiteral("%1 of %2 channel%3")
        .arg(name)
        .arg(i_channels)
        .arg(i_channels == 1 ? QString() : QStringLiteral("s"));
}

QString cSupportedImages::describe(const cImg& i_image)
{
    return describe(i_image.getImgType().getTypeId(), i_image.getNumChannels());
}
