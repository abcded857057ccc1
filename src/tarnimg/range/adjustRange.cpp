// The range of an image from its pixels: once, and the automatic one of a display.

#include "frame/ippImages.h"
#include "quantiles.h"

#include <QVarLengthArray>
#include <QVariant>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <customipp/customipp.h>
#include <limits>
#include <tarnbase/cMathOP.h>
#include <tarnimg/cImgTypeFloat32.h>
#include <tarnimg/cImgTypeFloat64.h>
#include <tarnimg/cImgTypeSInt32.h>
#include <tarnimg/checkIPPStatus.h>
#include <tarnimg/statistics/cMinMaxFunctor.h>
#include <vector>

namespace {

const cMinMaxFunctor& minMax()
{
    static const cMinMaxFunctor s_functor;
    return s_functor;
}

struct Extremes {
    double low;
    double high;
};

/** Of one channel. */
Extremes extremesOf(const cImg& i_image)
{
    QVariant low, high;
    minMax()(i_image, low, high);
    return {low.toDouble(), high.toDouble()};
}

/** Of the first channels together. */
Extremes extremesOf(const cImg& i_image, unsigned i_channels)
{
    QVarLengthArray<double, 4> lows(int(i_image.getNumChannels())), highs(int(i_image.getNumChannels()));
    minMax()(i_image, lows.data(), highs.data());
    return {*std::min_element(lows.begin(), lows.begin() + i_channels),
        *std::max_element(highs.begin(), highs.begin() + i_channels)};
}

/**
 * Of as many consecutive values as the image has pixels, from the first one on: a view with gaps between its
 * rows is read as if it had none.
 */
template <class T> Extremes extremesOfSequence(const cImg& i_image)
{
    const auto* bytes = i_image.getConstData();
    const std::size_t pixels = std::size_t(i_image.getWidth()) * i_image.getHeight();
    const std::size_t behind = (i_image.getFrameSize() - i_image.getBufferOffset()) / sizeof(T);
    const auto count = unsigned(std::min(pixels, behind));
    T low, high;
    if (reinterpret_cast<quintptr>(bytes) % alignof(T) == 0) {
        cMathOP::cStatistic::minMax(reinterpret_cast<const T*>(bytes), count, low, high);
    } else { // memory from outside
        std::vector<T> copy(count);
        std::memcpy(copy.data(), bytes, count * sizeof(T));
        cMathOP::cStatistic::minMax(copy.data(), count, low, high);
    }
    return {double(low), double(high)};
}

} // namespace

void cImg::adjustRange()
{
    if (!isValid())
        return;
    Extremes extremes {getRange().getLow(), getRange().getHigh()};
    if (minMax().isSupported(*this)) {
        // The alpha of a colour does not count.
        const Extremes found = getNumChannels() == 1 ? extremesOf(*this)
            : isKindOf(cImgType::RGB32)              ? extremesOf(*this, 3)
                                                     : extremesOf(*this, getNumChannels());
        if (found.low <= found.high) // there is a number among the pixels
            extremes = found;
    }
    detach();
    m_data->m_type->setRange(cDblRange(extremes.low, extremes.high));
}

cImg cImgType::autoRangeRegion(const cImg& i_image) const
{
    if (!m_borderLeft && !m_borderTop && !m_borderRight && !m_borderBottom)
        return i_image;
    const qint64 width = qint64(i_image.getWidth()) - m_borderRight - m_borderLeft;
    const qint64 height = qint64(i_image.getHeight()) - m_borderBottom - m_borderTop;
    if (width <= 0 || height <= 0)
        return cImg();
    return cImg(i_image, false, cRect<int>(int(m_borderLeft), int(m_borderTop), int(width), int(height)));
}

void cImgType::adjustRange(const cImg& i_image)
{
    if (!m_useAutoRange)
        return;
    const cImg region = autoRangeRegion(i_image);
    auto [low, high] = region.getNumChannels() > 1 ? extremesOf(region, 1) : extremesOf(region);
    if (low != high && m_quantile > 0.0)
        quantiles::ofIntegers(region, m_quantile, m_histogramWork, low, high);
    if (low != m_range.getLow() || high != m_range.getHigh())
        followRange(low, high);
}

void cImgType::followRange(double i_low, double i_high)
{
    if (m_bufferSize > 1) {
        const auto mean = m_rangeHistory.add({i_low, i_high + 1.0}, m_bufferSize);
        announceRange(mean.low, mean.high);
    } else {
        announceRange(i_low, i_high);
    }
}

void cImgType::announceRange(double i_low, double i_high)
{
    const cDblRange range(i_low, i_high);
    setRange(range);
    Q_EMIT rangeChanged(range);
}

void cImgTypeFloat32::adjustRange(const cImg& i_image)
{
    if (!m_useAutoRange || i_image.getNumChannels() != 1)
        return;
    float least = 0, greatest = 0;
    checkIPPStatus(ippiMinMax_32f_C1R(
        frame::pixels<float>(i_image), frame::stepOf(i_image), frame::sizeOf(i_image), &least, &greatest));
    if (!(least <= greatest))
        return; // not a number among the pixels
    double low = least, high = greatest;
    if (least != greatest && m_quantile > 0.0 && std::isfinite(greatest - least))
        quantiles::ofFloats(i_image, least, greatest, m_quantile, histogramWork(), low, high);
    if (low == getRange().getLow() && high == getRange().getHigh())
        return;
    if (m_bufferSize > 1) {
        const auto mean = m_floatRangeHistory.add({low, high}, m_bufferSize);
        low = mean.low;
        high = mean.high;
    }
    announceRange(low, high);
}

void cImgTypeFloat64::adjustRange(const cImg& i_image)
{
    if (!m_useAutoRange || i_image.getNumChannels() != 1)
        return;
    auto [low, high] = extremesOfSequence<double>(i_image);
    if (low == getRange().getLow() && high == getRange().getHigh())
        return;
    if (m_bufferSize > 1) {
        const auto mean = m_doubleRangeHistory.add({low, high}, m_bufferSize);
        low = mean.low;
        high = mean.high;
    }
    announceRange(low, high);
}

void cImgTypeSInt32::adjustRange(const cImg& i_image)
{
    if (!m_useAutoRange)
        return;
    const auto [low, high] = extremesOfSequence<int>(i_image);
    // A range that is no mean has no 1 added, and so is announced again with each frame.
    if (low != getRange().getLow() || high + 1.0 != getRange().getHigh())
        followRange(low, high);
}
