#include "rangeOption.h"

#include "cOptions.h"

#include <QStringList>
#include <cmath>

namespace host {

QString readRangeOption(const cOptions& i_options, std::optional<cDblRange>& io_range)
{
    const QString option = QStringLiteral("--range");
    if (!i_options.has(option))
        return {};
    const QString text = i_options.get(option);
    const QStringList ends = text.split(u',');
    bool goodLow = false, goodHigh = false;
    const double low = ends.first().toDouble(&goodLow);
    const double high = ends.last().toDouble(&goodHigh);
    if (ends.size() != 2 || !goodLow || !goodHigh || !std::isfinite(low) || !std::isfinite(high)
        || !(low < high))
        return QStringLiteral("--range expects LOW,HIGH with LOW below HIGH, found '%1'").arg(text);
    io_range = cDblRange(low, high);
    return {};
}

} // namespace host
