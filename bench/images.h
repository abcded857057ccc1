#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <tarnimg/cImg.h>

/** OpenCV's type of the same pixels; -1 where there is none. */
inline int cvTypeOf(const cImg& i_image)
{
    switch (i_image.getImgType().getTypeId()) {
    case cImgType::RGB24:
        return CV_8UC3;
    case cImgType::RGB32:
        return CV_8UC4;
    case cImgType::UInt8:
        return CV_8UC1;
    case cImgType::UInt16:
        return CV_16UC1;
    case cImgType::SInt8:
        return CV_8SC1;
    case cImgType::SInt16:
        return CV_16SC1;
    case cImgType::SInt32:
        return CV_32SC1;
    case cImgType::Float32:
        return CV_32FC1;
    case cImgType::Float64:
        return CV_64FC1;
    default:
        return -1;
    }
}

/** OpenCV's view of our pixels; nothing is copied. */
inline cv::Mat asMat(const cImg& i_image)
{
    return cv::Mat(int(i_image.getHeight()), int(i_image.getWidth()), cvTypeOf(i_image),
        const_cast<unsigned char*>(i_image.getConstData()), i_image.getYPitch());
}

/** Pixels without a pattern; floats lie in 1 to 255, and so does everything in 8 bits. */
inline cImg noise(cImgType::ImageTypes i_type, unsigned i_width, unsigned i_height, std::uint32_t i_seed)
{
    cImg image(i_type, i_width, i_height, 1);
    cv::Mat mat = asMat(image);
    cv::RNG random(i_seed);
    const bool eightBit = mat.depth() == CV_8U || mat.depth() == CV_8S;
    const double high = eightBit || mat.depth() >= CV_32F ? (mat.depth() == CV_8S ? 127 : 255) : 32767;
    random.fill(mat, cv::RNG::UNIFORM, 1, high);
    return image;
}
