#include "duel.h"
#include "images.h"

#include <customipp/customipp.h>
#include <opencv2/imgproc.hpp>
#include <tarnimg/tarnimg.h>
#include <vector>

namespace {

const char* const s_group = "Colour conversion";
const auto s_colours = {cImgType::RGB24, cImgType::RGB32};

std::string nameOf(const char* i_operation, cImgType::ImageTypes i_type)
{
    return std::string(i_operation) + " " + cImg(i_type, 1, 1, 1).getImgType().getName().toStdString();
}

std::size_t bytesOf(std::initializer_list<cImg> i_images)
{
    std::size_t bytes = 0;
    for (const cImg& image : i_images)
        bytes += image.getFrameSize();
    return bytes;
}

/** One image to another. `i_theirs` takes OpenCV's view of the image and keeps its results between calls. */
template <class Functor, class Theirs>
void unary(const char* i_name, cImgType::ImageTypes i_type, const Functor& i_functor, const Theirs& i_theirs)
{
    atEachSize([&](unsigned width, unsigned height) {
        registerDuel(s_group, nameOf(i_name, i_type), width, height, [=] {
            const cImg a = noise(i_type, width, height, 1);
            Functor functor = i_functor;
            return Duel {s_group, i_name, width, height, bytesOf({a, functor(a)}),
                [a, functor]() mutable { functor(a); },
                [mat = asMat(a), a, theirs = i_theirs]() mutable { theirs(mat); }};
        });
    });
}

/** A conversion of cv::cvtColor. */
struct CvtColor {
    int code;
    cv::Mat result {};
    void operator()(const cv::Mat& i_image) { cv::cvtColor(i_image, result, code); }
};

/** The same from three channels, whatever the image has. */
struct CvtColorOfThree {
    int code;
    int channels;
    cv::Mat three {};
    cv::Mat result {};
    void operator()(const cv::Mat& i_image)
    {
        if (three.empty() && i_image.channels() == 4)
            cv::cvtColor(i_image, three, cv::COLOR_RGBA2RGB);
        cv::cvtColor(three.empty() ? i_image : three, result, code, channels);
    }
};

struct HSVChannel {
    int channel;
    cv::Mat hsv {};
    cv::Mat result {};
    void operator()(const cv::Mat& i_image)
    {
        cv::cvtColor(i_image, hsv, cv::COLOR_RGB2HSV_FULL);
        cv::extractChannel(hsv, result, channel);
    }
};

struct ExtractChannel {
    cv::Mat result {};
    void operator()(const cv::Mat& i_image) { cv::extractChannel(i_image, result, 1); }
};

/** The definition in calls on whole images. */
struct RGBToCMYK {
    cv::Mat shares {};
    std::vector<cv::Mat> inks {};
    cv::Mat n {};
    cv::Mat result {};
    void operator()(const cv::Mat& i_image)
    {
        i_image.convertTo(shares, CV_32F, 1.0 / 255);
        cv::split(shares, inks);
        inks.resize(4);
        cv::max(inks[0], inks[1], n);
        cv::max(n, inks[2], n);
        cv::subtract(1.0, n, inks[3]);
        for (int ink = 0; ink < 3; ++ink) {
            cv::subtract(n, inks[std::size_t(ink)], inks[std::size_t(ink)]);
            cv::divide(inks[std::size_t(ink)], n, inks[std::size_t(ink)]);
        }
        cv::merge(inks, result);
    }
};

/** The luminance, which image conversion gives, by itself. */
struct Grey {
    cImg operator()(const cImg& i_image) const
    {
        cImg result(cImgType::UInt8, i_image.getWidth(), i_image.getHeight(), 1);
        unsigned char* grey = result.getData();
        (i_image.isKindOf(cImgType::RGB24) ? ippiRGBToGray_8u_C3C1R : ippiRGBToGray_8u_AC4C1R)(
            i_image.getConstData(), int(i_image.getYPitch()), grey, int(result.getYPitch()),
            {int(i_image.getWidth()), int(i_image.getHeight())});
        return result;
    }
};

const float s_sepia[12] = {0.393f, 0.769f, 0.189f, 0, 0.349f, 0.686f, 0.168f, 0, 0.272f, 0.534f, 0.131f, 0};

struct Transform {
    cv::Mat result {};
    void operator()(const cv::Mat& i_image)
    {
        const int channels = i_image.channels();
        cv::Mat matrix = cv::Mat::eye(channels, channels + 1, CV_32F);
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column)
                matrix.at<float>(row, column) = s_sepia[4 * row + column];
        cv::transform(i_image, result, matrix);
    }
};

/** A frame of packed YUV in an image of twice its height, as OpenCV sees it: two or four channels. */
cv::Mat frameOf(const cImg& i_image, int i_channels)
{
    return cv::Mat(int(i_image.getHeight()) / 2, 2 * int(i_image.getWidth()) / i_channels, CV_8UC(i_channels),
        const_cast<unsigned char*>(i_image.getConstData()));
}

void registerYUV()
{
    atEachSize([](unsigned width, unsigned height) {
        registerDuel(s_group, "YUV422ToRGB", width, height, [=] {
            const cImg packed = noise(cImgType::UInt8, width, 2 * height, 1);
            const cConvertYUVToRGBFunctor functor;
            return Duel {s_group, "", width, height, bytesOf({packed, functor(packed)}),
                [packed, functor] { functor(packed); },
                [packed, result = cv::Mat()]() mutable {
                    cv::cvtColor(frameOf(packed, 2), result, cv::COLOR_YUV2RGB_YUYV);
                }};
        });
        registerDuel(s_group, "YUV422PixelToPlanar", width, height, [=] {
            const cImg packed = noise(cImgType::UInt8, width, 2 * height, 1);
            return Duel {s_group, "", width, height, std::size_t(packed.getFrameSize()) * 2,
                [packed] {
                    cImg y, u, v;
                    cYUV422PixelToPlanarFunctor()(packed, y, u, v);
                },
                [packed, y = cv::Mat(), u = cv::Mat(), v = cv::Mat()]() mutable {
                    cv::extractChannel(frameOf(packed, 2), y, 0);
                    cv::extractChannel(frameOf(packed, 4), u, 1);
                    cv::extractChannel(frameOf(packed, 4), v, 3);
                }};
        });
        registerDuel(s_group, "YUV422PlanarToPixel", width, height, [=] {
            const cImg y = noise(cImgType::UInt8, width, height, 1);
            const cImg u = noise(cImgType::UInt8, width / 2, height, 2);
            const cImg v = noise(cImgType::UInt8, width / 2, height, 3);
            return Duel {s_group, "", width, height, bytesOf({y, u, v}) * 2,
                [y, u, v] { cYUV422PlanarToPixelFunctor()(y, u, v); },
                [y, u, v, packed = cv::Mat(int(height), int(width) / 2, CV_8UC4)]() mutable {
                    const cv::Mat planes[3] = {cv::Mat(packed.rows, packed.cols, CV_8UC2,
                                                   const_cast<unsigned char*>(y.getConstData())),
                        asMat(u), asMat(v)};
                    const int fromTo[8] = {0, 0, 2, 1, 1, 2, 3, 3};
                    cv::mixChannels(planes, 3, &packed, 1, fromTo, 4);
                }};
        });
    });
}

void registerColourKey()
{
    for (const auto type : {cImgType::UInt8, cImgType::UInt16, cImgType::RGB24, cImgType::RGB32}) {
        atEachSize([=](unsigned width, unsigned height) {
            registerDuel(s_group, nameOf("colorKey", type), width, height, [=] {
                const cImg a = noise(type, width, height, 1), b = noise(type, width, height, 2);
                cColorKeyFunctor functor;
                functor.setColorKeyGray(7);
                functor.setColorKeyRGB(QColor(7, 7, 7, 7));
                return Duel {s_group, "", width, height, bytesOf({a, b, a}),
                    [a, b, functor] { functor(a, b); },
                    [a, b, mask = cv::Mat(), result = cv::Mat()]() mutable {
                        const cv::Scalar key(7, 7, 7, 7);
                        asMat(a).copyTo(result);
                        cv::inRange(asMat(a), key, key, mask);
                        asMat(b).copyTo(result, mask);
                    }};
            });
        });
    }
}

} // namespace

void registerColour()
{
    for (const auto type : s_colours) {
        const int channels = type == cImgType::RGB24 ? 3 : 4;
        unary("RGBToHSV", type, cConvertRGBToHSVFunctor(), CvtColor {cv::COLOR_RGB2HSV_FULL});
        unary(
            "HSVToRGB", type, cConvertHSVToRGBFunctor(), CvtColorOfThree {cv::COLOR_HSV2RGB_FULL, channels});
        unary(
            "RGB to grey", type, Grey(), CvtColor {channels == 3 ? cv::COLOR_RGB2GRAY : cv::COLOR_RGBA2GRAY});
        unary("RGBToCMYK", type, cConvertRGBToCMYKFunctor(), RGBToCMYK());
        cColorTwistFunctor twist;
        twist.setTwist(cMatrix<float>(3, 4, s_sepia));
        unary("colorTwist", type, twist, Transform());
        cExtractChannelFunctor green;
        green.setChannelID(1);
        unary("extractChannel", type, green, ExtractChannel());
        unary("extractHue", type, cExtractHueFunctor(), HSVChannel {0});
        unary("extractSaturation", type, cExtractSaturationFunctor(), HSVChannel {1});
        unary("extractValue", type, cExtractValueFunctor(), HSVChannel {2});
    }
    registerYUV();
    registerColourKey();
}
