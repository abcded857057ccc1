#pragma once

#include <QString>
#include <optional>
#include <tarnbase/cRange.h>

class cImg;
class cImgType;
class cOptions;

namespace host {

/** How an image is to be shown, as told on the command line. */
struct cDisplayOptions {
    QString style; ///< empty: the first of the type
    std::optional<cDblRange> range;
    bool autoRange = false;
    double quantile = 0.0; ///< the share that an automatic range cuts off at both ends
    std::optional<double> gamma;

    /** What is wrong with the words, and after a line end help; empty if nothing is. */
    QString read(const cOptions& i_options);
    /** The same for an image: sets up a descriptor that is to show it. */
    QString apply(const cImg& i_image, cImgType& io_type) const;

private:
    QString applyRange(const cImg& i_image, cImgType& io_type) const;
    QString applyAutoRange(const cImg& i_image, cImgType& io_type) const;
};

} // namespace host
