#include <tarnimg/cImgType.h>

#include "typeParams.h"

#include <tarnimg/cImageTypeFactory.h>
#include <tarnimg/cImg.h>

#include <QMetaEnum>
#include <QVector>
#include <algorithm>
#include <limits>
#include <new>

namespace {

/** The keys of the type ids, made once: descriptors come and go with the images. */
const QString& nameOf(cImgType::ImageTypes i_type)
{
    static const auto s_names = [] {
        const auto types = QMetaEnum::fromType<cImgType::ImageTypes>();
        QVector<QString> names(types.keyCount() + 1);
        for (int i = 0; i < types.keyCount(); ++i)
            names[types.value(i)] = QString::fromLatin1(types.key(i));
        return names;
    }();
    const int last = s_names.size() - 1; // the empty name of numbers that are no type
    return s_names[i_type >= 0 && i_type < last ? i_type : last];
}

const QString& firstChannelStyle()
{
    static const QString s_style = QStringLiteral("Channel 0");
    return s_style;
}

QString channelStyle(unsigned i_channel) { return QStringLiteral("Channel %1").arg(i_channel); }

void limitTo(cMapObj& o_params, const char* i_path, double i_max)
{
    o_params[QString::fromLatin1(i_path)]->setMetaData(QStringLiteral("max"), new cDataValObj<double>(i_max));
}

} // namespace

cImgType::cImgType() = default;

cImgType::cImgType(unsigned i_elementSize, ImageTypes i_type, const cDblRange& i_maxRange)
    : m_elementSize(i_elementSize),
      m_maxRange(i_maxRange),
      m_range(i_maxRange),
      m_typeId(i_type),
      m_name(nameOf(i_type))
{
}

cImgType::~cImgType() = default;

std::unique_ptr<cImgType> cImgType::clone() const
{
    std::unique_ptr<cImgType> copy(cImageTypeFactory::create(m_typeId, m_numChannels));
    if (!copy)
        return nullptr;
    copy->setParams(getParams());
    // Not every type shows all of these in its parameters, and limiting a range twice can move it.
    copy->m_range = m_range;
    copy->m_useAutoRange = m_useAutoRange;
    copy->m_bufferSize = m_bufferSize;
    copy->m_quantile = m_quantile;
    copy->m_borderLeft = m_borderLeft;
    copy->m_borderTop = m_borderTop;
    copy->m_borderRight = m_borderRight;
    copy->m_borderBottom = m_borderBottom;
    copy->m_style = m_style;
    copy->m_styleIndex = m_styleIndex;
    return copy;
}

bool cImgType::convertTo(const cImg&, const cImgType&, cImg&, const cMapObj*) const { return false; }

unsigned cImgType::getPixelSize() const { return m_numChannels * m_elementSize; }

unsigned cImgType::getChannelPixelSize() const { return m_elementSize; }

cMapObj cImgType::getParams() const
{
    cMapObj params;
    typeParams::write(params, "Range", m_range);
    typeParams::write(params, "Gamma", m_gamma);
    typeParams::write(params, "AutoRange/Use", m_useAutoRange);
    typeParams::write(params, "AutoRange/BufferSize", m_bufferSize);
    typeParams::write(params, "AutoRange/Quantil", m_quantile);
    typeParams::write(params, "AutoRange/BorderLeft", m_borderLeft);
    typeParams::write(params, "AutoRange/BorderTop", m_borderTop);
    typeParams::write(params, "AutoRange/BorderRight", m_borderRight);
    typeParams::write(params, "AutoRange/BorderBottom", m_borderBottom);
    limitTo(params, "Gamma", 100);
    limitTo(params, "AutoRange/BufferSize", 20);
    return params;
}

void cImgType::setParams(const cMapObj& i_params)
{
    cDblRange range = m_range;
    typeParams::read(i_params, "Range", range);
    typeParams::read(i_params, "Gamma", m_gamma);
    typeParams::read(i_params, "AutoRange/Use", m_useAutoRange);
    typeParams::read(i_params, "AutoRange/BufferSize", m_bufferSize);
    typeParams::read(i_params, "AutoRange/Quantil", m_quantile);
    typeParams::read(i_params, "AutoRange/BorderLeft", m_borderLeft);
    typeParams::read(i_params, "AutoRange/BorderTop", m_borderTop);
    typeParams::read(i_params, "AutoRange/BorderRight", m_borderRight);
    typeParams::read(i_params, "AutoRange/BorderBottom", m_borderBottom);
    if (!(m_gamma > 0.0))
        m_gamma = 1.0;
    limitRange(range);
}

void cImgType::setRange(const cDblRange& i_range)
{
    m_gammaTableDirty = true;
    limitRange(i_range);
}

void cImgType::limitRange(const cDblRange& i_range)
{
    const double least = m_maxRange.getLow();
    const double greatest = m_maxRange.getHigh();
    m_range = {};
    if (!(greatest - least > 0.0))
        return;
    // The comparisons are negated so that they replace a NaN; the range puts its ends in order.
    const cDblRange raised(i_range.getLow() >= least ? i_range.getLow() : least, i_range.getHigh());
    m_range = cDblRange(raised.getLow(), raised.getHigh() <= greatest ? raised.getHigh() : greatest);
}

void cImgType::setGamma(double i_gamma)
{
    m_gammaTableDirty = true;
    m_gamma = i_gamma > 0.0 ? i_gamma : 1.0;
}

QStringList cImgType::getStyleList() const
{
    if (!m_styleList.isEmpty())
        return m_styleList;
    QStringList channels;
    for (unsigned channel = 0; channel < m_numChannels; ++channel)
        channels.append(channelStyle(channel));
    return channels;
}

void cImgType::setStyle(const QString& i_style)
{
    if (m_styleList.contains(i_style)) {
        m_style = i_style;
        m_styleIndex = unsigned(m_styleList.indexOf(i_style));
    } else if (m_styleList.isEmpty()) {
        const unsigned channel = i_style.midRef(i_style.indexOf(u' ') + 1).toUInt();
        if (channel < m_numChannels && i_style == channelStyle(channel)) {
            m_style = i_style;
            m_styleIndex = channel;
        }
    }
}

unsigned cImgType::getStyleID() const { return std::min(m_styleIndex, std::max(m_numChannels, 1u) - 1); }

void cImgType::setNumChannels(unsigned i_channels)
{
    const unsigned channels = std::max(i_channels, 1u);
    if (m_elementSize != 0 && channels > std::numeric_limits<unsigned>::max() / m_elementSize)
        throw std::bad_alloc();
    m_numChannels = channels;
    m_style = firstChannelStyle();
    m_styleIndex = 0;
}

void cImgType::setFixedChannels(unsigned i_channels, const QStringList& i_styles)
{
    m_numChannels = i_channels;
    m_styleList = i_styles;
    m_style = i_styles.first();
    m_styleIndex = 0;
}

#include "moc_cImgType.cpp"
