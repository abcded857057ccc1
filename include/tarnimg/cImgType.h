#pragma once

#include <tarnbase/cMapObj.h>
#include <tarnbase/cRange.h>
#include <tarnimg/cRangeHistory.h>
#include <tarnimg/export.h>

#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVarLengthArray>
#include <QVector>
#include <memory>

class QFont;
class QImage;
class QVariant;
class cImg;

/**
 * What a pixel is and how it is to be shown: type, channels, bytes, value range, style, gamma.
 *
 * Images that were copied from one another share one descriptor, after `cImg::detach` too, so that the
 * settings of a viewer persist from frame to frame. Nothing in a descriptor is locked: images that share one
 * must be rendered or re-ranged by one thread at a time. Descriptors are made by `cImageTypeFactory` and
 * never copied.
 */
class TARNIMG_EXPORT cImgType : public QObject {
    Q_OBJECT
public:
    /** The pixel types. The keys are the type names that appear in messages. Any int may come in from a
     * stream. */
    enum ImageTypes : int {
        Invalid = 0,
        RGB24 = 1,
        RGB32 = 2,
        UInt8 = 3,
        UInt16 = 4,
        UInt32 = 5,
        SInt8 = 6,
        SInt16 = 7,
        SInt32 = 8,
        SInt64 = 9,
        Float32 = 10,
        Float64 = 11,
        Gradient16 = 12,
        Gradient32 = 13,
        Complex = 14
    };
    Q_ENUM(ImageTypes)

    /**
     * @param i_elementSize bytes of a channel, or of the whole pixel where a type has a fixed number of
     * channels
     * @param i_maxRange the widest range that values can have; also the range at the start
     */
    cImgType(unsigned i_elementSize, ImageTypes i_type, const cDblRange& i_maxRange);
    ~cImgType() override;

    ImageTypes getTypeId() const { return m_typeId; }
    /** The key of the type id. */
    const QString& getName() const { return m_name; }
    unsigned getNumChannels() const { return m_numChannels; }

    /**
     * Converts an image of this type, pixel by pixel, from an input range onto an output range.
     *
     * @param i_target decides the type of the result, and its output range where nothing else does
     * @param io_result reused if it has the size and the target's type, else replaced
     * @param i_params null, or a map with "inputRange" and "outputRange" (`cRange<double>`, 0 to 0 means
     * unset)
     * @return false, with a report on the error trace, if the pair of types is not supported
     */
    virtual bool convertTo(
        const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const;
    /** Bytes of a pixel with all its channels. */
    virtual unsigned getPixelSize() const;
    virtual unsigned getChannelPixelSize() const;

    /** The values of a pixel as text, for integers in decimal or hexadecimal; of several channels the style's
     * one. */
    virtual QString pixelToString(const unsigned char* i_pixel, bool i_hexadecimal) const = 0;
    /** The room that the longest pixel text takes in a font, in pixels of the screen. */
    virtual QSize getPixelStringSize(const QFont& i_font, bool i_hexadecimal) const = 0;

    /**
     * Renders an image of this type with the range, style, gamma and colours of this descriptor; null for any
     * other image. Grey values and single components give `Format_Indexed8`, colours `Format_RGB888` or
     * `Format_ARGB32`.
     *
     * The descriptor may change (automatic range, tables), so one of them renders for one thread at a time.
     * It need not be the image's own: beside a running graph a viewer renders by a `clone`.
     *
     * @throws std::bad_alloc
     */
    virtual QImage makeDisplayImage(const cImg& i_image) = 0;

    /**
     * A descriptor of the same type and channels with settings of its own, equal to these; null if the
     * factory does not know the type.
     *
     * This is how a viewer looks at a running graph: where the first image arrives it takes a clone and keeps
     * it, and renders that image and all that follow (of the same type and channels) by
     * `clone->makeDisplayImage(image)` on whatever thread it likes. Of an image that is rendered so only the
     * pixels are read, none of its descriptor's settings.
     */
    std::unique_ptr<cImgType> clone() const;

    /** The settings as a map of copies. */
    virtual cMapObj getParams() const;
    /** Takes over the settings that the map has; others stay. A gamma that is not positive becomes 1. */
    virtual void setParams(const cMapObj& i_params);

    /**
     * Writes one value into every pixel. Does nothing unless the image is a valid one of this type and the
     * value converts to its element type. The pixels are detached first.
     */
    virtual void fill(cImg& io_image, const QVariant& i_value) const = 0;

    const cDblRange& getRange() const { return m_range; }
    const cDblRange& getMaxRange() const { return m_maxRange; }
    /**
     * Sets the range, limited to the greatest one: first its low end, then its high end, and the ends are
     * swapped whenever limiting puts them out of order. So a range wholly outside keeps one value outside:
     * (300, 400) of `UInt8` becomes 255 to 300. Without a greatest range the result is always 0 to 0. Emits
     * nothing.
     */
    void setRange(const cDblRange& i_range);

    double getGamma() const { return m_gamma; }
    /** A gamma that is not positive becomes 1. */
    void setGamma(double i_gamma);

    const QString& getStyle() const { return m_style; }
    /** The ways in which a pixel can be shown; the first is the default. */
    QStringList getStyleList() const;
    /** Ignored if the style list does not have the text. */
    void setStyle(const QString& i_style);

    /** Type ids are equal; channels are not compared. */
    bool operator==(const cImgType& i_other) const { return m_typeId == i_other.m_typeId; }
    bool operator!=(const cImgType& i_other) const { return m_typeId != i_other.m_typeId; }

Q_SIGNALS:
    /**
     * The automatic range of a display has moved, to this range before it was limited. Emitted by
     * `adjustRange`, on the thread that renders.
     */
    void rangeChanged(const cDblRange& i_range);

protected:
    /** Leaves everything zero or empty. */
    cImgType();

    /**
     * What every conversion begins with: checks source and target, makes or keeps the result, copies the
     * attributes, and finds the ranges. Ranges of 0 to 0 are found from the parameters, the source and the
     * target.
     */
    bool prepareConvert(const cImg& i_source, const cImgType& i_target, cImg& io_result,
        const cMapObj* i_params, cDblRange& io_inputRange, cDblRange& io_outputRange) const;
    /**
     * The conversion of all pixel types of this library: `prepareConvert`, then the pixels by the route of
     * both types, then the result's range. Types that are not made of numbers are only copied.
     */
    bool convertImage(
        const cImg& i_source, const cImgType& i_target, cImg& io_result, const cMapObj* i_params) const;

    /**
     * The automatic range of a display, from the pixels of an image that is about to be shown. Does nothing
     * unless the parameter "AutoRange/Use" is set.
     *
     * The range becomes the least to the greatest pixel of the image without its borders; of several channels
     * those of the first one. With a positive quantile, that fraction of the pixels is cut off at both ends
     * instead: of UInt8, UInt16 and SInt16 by the histogram of the pixels, of RGB types by that of their
     * luminance. Other types keep the extremes. If this is not the range already, it enters the history,
     * where it has one, its high end raised by 1, and the range becomes the mean of the history.
     * `rangeChanged` is emitted.
     *
     * @throws std::runtime_error as cMinMaxFunctor does, for types that it does not take and for borders that
     * leave nothing of the image
     */
    virtual void adjustRange(const cImg& i_image);
    /** Takes a range into the history of whole numbers, if there is to be one, and announces it or the mean.
     */
    void followRange(double i_low, double i_high);
    /** Sets the range and emits what it was before it was limited. */
    void announceRange(double i_low, double i_high);
    /** Memory for counting pixels, kept from frame to frame. */
    QVarLengthArray<unsigned char, 256>& histogramWork() { return m_histogramWork; }

    /**
     * Makes `io_out` an indexed picture of the image's size, with undefined pixels and a grey ramp; kept if
     * it is one already, whatever its colours. Null if there can be no such picture.
     */
    void makeDisplayImageHelper(const cImg& i_image, QImage& io_out) const;
    /**
     * The same, and makes the scratch an image of the given one's type and size with 1 channel: for types
     * that compute in an image before they write the picture.
     */
    void makeDisplayImageHelperIPP(const cImg& i_image, QImage& io_out) const;
    /** An image that is kept from call to call, with undefined pixels after it was remade. */
    cImg& displayScratch(ImageTypes i_type, unsigned i_width, unsigned i_height) const;
    /**
     * Maps all bytes of a picture, alpha too, by the gamma table; of an indexed picture the bytes and not its
     * colours. Only if the range is fixed, not automatic.
     *
     * The table is made anew after `setGamma` and whenever the range was set, but not after `setParams`.
     */
    void applyGamma(QImage& io_out);

    /** Index of the style in the list, limited to the last channel. */
    unsigned getStyleID() const;
    /** The same without a limit, for types whose styles are no channels. */
    unsigned getStyleIndex() const { return m_styleIndex; }
    /** For types with a fixed number of channels. The first style becomes the present one. */
    void setFixedChannels(unsigned i_channels, const QStringList& i_styles);

    double m_quantile = 0.0;
    unsigned m_bufferSize = 1;
    unsigned m_borderLeft = 0;
    unsigned m_borderTop = 0;
    unsigned m_borderRight = 0;
    unsigned m_borderBottom = 0;
    bool m_useAutoRange = false;

private:
    friend class cImageTypeFactory;
    Q_DISABLE_COPY(cImgType)

    /**
     * Throws std::bad_alloc if a pixel of so many channels does not fit 32 bits. Types with a fixed number of
     * channels ignore the argument.
     */
    virtual void setNumChannels(unsigned i_channels);
    /** The image without its borders; void if nothing is left. */
    cImg autoRangeRegion(const cImg& i_image) const;

    void limitRange(const cDblRange& i_range);

    unsigned m_elementSize = 0;
    cDblRange m_maxRange;
    cDblRange m_range;
    ImageTypes m_typeId = Invalid;
    unsigned m_numChannels = 0;
    QString m_style;
    unsigned m_styleIndex = 0;
    QStringList m_styleList; ///< Empty for a type with any number of channels, whose styles are its channels.
    QString m_name;
    double m_gamma = 1.0;
    cRangeHistory<int> m_rangeHistory;
    QVarLengthArray<unsigned char, 256> m_histogramWork;
    bool m_gammaTableDirty = true;
    QVector<int> m_gammaOutput; ///< 256 bytes once they are needed.
    QVector<int> m_gammaInput; ///< The bytes in their order, likewise.
    mutable std::unique_ptr<cImg> m_displayScratch;
};
