#pragma once

#include "support/images.h"

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <QColor>
#include <QImage>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>
#include <tarnimg/cImg.h>
#include <vector>

/** What the tests of displays share. */
namespace displayTesting {

/** Runs a test once on each instruction set of this processor that the library may choose. */
class onEveryTarget : public testing::TestWithParam<int64_t> {
protected:
    void SetUp() override { choose(GetParam()); }
    void TearDown() override { choose(0); }

private:
    static void choose(int64_t i_target)
    {
        hwy::SetSupportedTargetsForTest(i_target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

inline std::string targetName(const testing::TestParamInfo<int64_t>& i_info)
{
    return hwy::TargetName(i_info.param);
}

/** Renders by the image's own descriptor. */
inline QImage show(const cImg& i_image)
{
    cImg image = i_image;
    return image.imgType().makeDisplayImage(image);
}

template <class T> void setParam(cImg& io_image, const char* i_key, const T& i_value)
{
    cMapObj params;
    params.setSubObject(new cDataValObj<T>(i_value), QString::fromLatin1(i_key), true);
    io_image.imgType().setParams(params);
}

/** The bytes of all pixels, row by row, without what fills up the rows. */
inline std::vector<int> bytesOf(const QImage& i_picture)
{
    std::vector<int> bytes;
    const int rowBytes = i_picture.width() * i_picture.depth() / 8;
    for (int y = 0; y < i_picture.height(); ++y)
        bytes.insert(bytes.end(), i_picture.constScanLine(y), i_picture.constScanLine(y) + rowBytes);
    return bytes;
}

/** The same pixels in other memory: a view, and memory from outside at odd places, with and without gaps
 * between the pixels. Settings of the display are those of a fresh descriptor, except for the view. */
inline std::vector<cImg> otherLayouts(const cImg& i_image)
{
    const unsigned width = i_image.getWidth(), height = i_image.getHeight();
    const unsigned pixelBytes = i_image.getImgType().getPixelSize();
    const auto type = i_image.getImgType().getTypeId();
    cImg parent(type, width + 3, height + 2, i_image.getNumChannels());
    std::memset(parent.getData(), 0xA5, parent.getFrameSize());
    parent.copyFrom(i_image, i_image.getRect(), c2DPoint<int>(2, 1));
    std::vector<cImg> images {cImg(parent, false, cRect<int>(2, 1, int(width), int(height)))};
    for (const unsigned gap : {0u, 3u}) {
        const size_t pitch = size_t(width) * (pixelBytes + gap) + 1;
        // The last row ends with the memory, so that a sanitizer sees the first byte too many.
        auto* memory = new unsigned char[1 + pitch * height];
        std::memset(memory, 0xA5, 1 + pitch * height);
        images.emplace_back(
            type, width, height, pixelBytes + gap, unsigned(pitch), memory + 1,
            [memory](void*) { delete[] memory; }, i_image.getNumChannels());
        for (unsigned y = 0; y < height; ++y)
            for (unsigned x = 0; x < width; ++x)
                std::memcpy(memory + 1 + y * pitch + x * (pixelBytes + gap),
                    i_image.getConstData() + y * i_image.getYPitch() + x * pixelBytes, pixelBytes);
    }
    return images;
}

inline testing::AssertionResult hasGreyRamp(const QImage& i_picture)
{
    if (i_picture.format() != QImage::Format_Indexed8 || i_picture.colorCount() != 256)
        return testing::AssertionFailure() << "format " << i_picture.format();
    for (int i = 0; i < 256; ++i)
        if (i_picture.color(i) != qRgba(i, i, i, 255))
            return testing::AssertionFailure() << "colour " << i << " is " << std::hex << i_picture.color(i);
    return testing::AssertionSuccess();
}

} // namespace displayTesting
