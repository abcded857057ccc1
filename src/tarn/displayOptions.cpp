#include "displayOptions.h"

#include "cOptions.h"
#include "contentRange.h"
#include "rangeOption.h"

#include <QStringList>
#include <tarnimg/cImg.h>

namespace host {
namespace {

constexpr double s_greatestGamma = 100.0;

QString key(const char* i_text) { return QString::fromLatin1(i_text); }

} // namespace

QString cDisplayOptions::read(const cOptions& i_options)
{
    style = i_options.get(key("--style"));
    autoRange = i_options.has(key("--auto")) || i_options.has(key("--quantile"));
    const QString wrong = readRangeOption(i_options, range);
    if (!wrong.isEmpty())
        return wrong;
    if (i_options.has(key("--quantile"))) {
        const QString text = i_options.get(key("--quantile"));
        bool good = false;
        quantile = text.toDouble(&good);
        if (!good || !(quantile >= 0.0 && quantile < 0.5))
            return QStringLiteral("--quantile expects a number from 0 to below 0.5, found '%1'").arg(text);
    }
    if (i_options.has(key("--gamma"))) {
        const QString text = i_options.get(key("--gamma"));
        bool good = false;
        gamma = text.toDouble(&good);
        if (!good || !(*gamma > 0.0 && *gamma <= s_greatestGamma))
            return QStringLiteral("--gamma expects a number above 0, at most %1, found '%2'")
                .arg(s_greatestGamma)
                .arg(text);
    }
    if (autoRange && range)
        return QStringLiteral("--range sets the range, and --auto finds it\nleave one of them out");
    if (autoRange && gamma)
        return QStringLiteral(
            "--gamma has no effect on an automatic range\ngive the range by --range LOW,HIGH");
    return {};
}

QString cDisplayOptions::apply(const cImg& i_image, cImgType& io_type) const
{
    const QString& name = io_type.getName();
    if (!style.isEmpty()) {
        const QStringList styles = io_type.getStyleList();
        if (!styles.contains(style))
            return QStringLiteral("unknown style of %1, found '%2'\nexpected one of: %3")
                .arg(name, style, styles.join(QStringLiteral(", ")));
        io_type.setStyle(style);
    }
    if (gamma)
        io_type.setGamma(*gamma);
    if (range)
        return applyRange(i_image, io_type);
    return autoRange ? applyAutoRange(i_image, io_type) : QString();
}

QString cDisplayOptions::applyRange(const cImg&, cImgType& io_type) const
{
    io_type.setRange(*range);
    if (io_type.getRange() == *range)
        return {};
    const cDblRange& most = io_type.getMaxRange();
    if (most == cDblRange())
        return QStringLiteral("%1 images have no range\nleave --range out: values are stretched anyway")
            .arg(io_type.getName());
    return QStringLiteral("--range of %1: expected values from %2 to %3, found '%4,%5'")
        .arg(io_type.getName())
        .arg(most.getLow(), 0, 'g', 17)
        .arg(most.getHigh(), 0, 'g', 17)
        .arg(range->getLow(), 0, 'g', 17)
        .arg(range->getHigh(), 0, 'g', 17);
}

QString cDisplayOptions::applyAutoRange(const cImg& i_image, cImgType& io_type) const
{
    if (io_type.getMaxRange() == cDblRange())
        return QStringLiteral("%1 images have no automatic range\nleave --auto out").arg(io_type.getName());
    const std::optional<cDblRange> found = contentRange(i_image, quantile);
    if (!found)
        return QStringLiteral("no value of the image is finite\ngive the range by --range LOW,HIGH");
    io_type.setRange(*found);
    return {};
}

} // namespace host
