#pragma once

#include <QList>
#include <QPair>
#include <QStringList>
#include <tarnimg/cImgType.h>
#include <tarnimg/export.h>

class cImg;

/**
 * The images that a port takes: pairs of a pixel type and a channel count, in order of declaration. A count
 * of 0 means any; an empty list takes every image.
 */
class TARNIMG_EXPORT cSupportedImages {
public:
    using List = QList<QPair<cImgType::ImageTypes, unsigned int>>;

    void add(cImgType::ImageTypes i_type, unsigned int i_channels) { m_list.append({i_type, i_channels}); }
    const List& getList() const { return m_list; }

    bool takes(const cImg& i_image) const;
    /**
     * Whether the two lists have a pair in common, or one of them is empty. Pairs are compared as they stand:
     * a count of 0 does not meet a count of 1 here, although an arriving image of one channel would suit
     * both.
     */
    bool meets(const cSupportedImages& i_other) const;
    /** The names of the types, one for each different pair. */
    QStringList getTypeNames() const;
    /** Such as "UInt8 of 1 channel, RGB24"; empty for an empty list. */
    QString toText() const;
    /** One pair, or an image, in the same words: "UInt16 of 3 channels". */
    static QString describe(cImgType::ImageTypes i_type, unsigned i_channels);
    static QString describe(const cImg& i_image);

private:
    List m_list;
};
