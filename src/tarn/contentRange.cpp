#include "contentRange.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <tarnimg/cImg.h>
#include <vector>

namespace host {
namespace {

/** Those of all channels; alpha is none. */
template <class T> std::vector<T> finiteValues(const cImg& i_image)
{
    std::vector<T> values;
    const std::size_t rowLength = std::size_t(i_image.getWidth()) * i_image.getNumChannels();
    values.reserve(rowLength * i_image.getHeight());
    const bool hasAlpha = i_image.isKindOf(cImgType::RGB32);
    for (unsigned y = 0; y < i_image.getHeight(); ++y) {
        const T* row = i_image.getRow<T>(y);
        if (hasAlpha) {
            for (std::size_t i = 0; i < rowLength; ++i)
                if (i % 4 != 3)
                    values.push_back(row[i]);
            continue;
        }
        std::copy_if(row, row + rowLength, std::back_inserter(values),
            [](T value) { return std::isfinite(double(value)); });
    }
    return values;
}

template <class T> std::optional<cDblRange> rangeOf(const cImg& i_image, double i_quantile)
{
    std::vector<T> values = finiteValues<T>(i_image);
    if (values.empty())
        return {};
    const auto cut = std::ptrdiff_t(i_quantile * double(values.size()));
    const auto low = values.begin() + cut;
    const auto high = values.end() - 1 - cut;
    std::nth_element(values.begin(), low, values.end());
    const T least = *low;
    std::nth_element(low, high, values.end());
    return cDblRange(double(least), double(*high));
}

} // namespace

std::optional<cDblRange> contentRange(const cImg& i_image, double i_quantile)
{
    switch (i_image.getImgType().getTypeId()) {
    case cImgType::RGB24:
    case cImgType::RGB32:
    case cImgType::UInt8:
        return rangeOf<quint8>(i_image, i_quantile);
    case cImgType::UInt16:
        return rangeOf<quint16>(i_image, i_quantile);
    case cImgType::UInt32:
        return rangeOf<quint32>(i_image, i_quantile);
    case cImgType::SInt8:
        return rangeOf<qint8>(i_image, i_quantile);
    case cImgType::SInt16:
        return rangeOf<qint16>(i_image, i_quantile);
    case cImgType::SInt32:
        return rangeOf<qint32>(i_image, i_quantile);
    case cImgType::SInt64:
        return rangeOf<qint64>(i_image, i_quantile);
    case cImgType::Float32:
        return rangeOf<float>(i_image, i_quantile);
    case cImgType::Float64:
        return rangeOf<double>(i_image, i_quantile);
    default:
        return {};
    }
}

} // namespace host
