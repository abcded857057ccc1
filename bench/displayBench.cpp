#include "duel.h"
#include "images.h"

#include <QImage>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>
#include <tarnimg/cImgType.h>

namespace {

const char* const s_group = "Display";

using Type = cImgType::ImageTypes;

/** What a picture is made of, and how. */
struct Show {
    const char* name;
    Type type;
    int cvType; ///< OpenCV's nearest to the pixels
    const char* style = nullptr;
    double low = 0.0; ///< the range, if it is not empty
    double high = 0.0;
    double gamma = 1.0;
    const char* param = nullptr; ///< a factor of the type
    double value = 1.0;
};

/** Pixels without a pattern; a display's range lies within what occurs. */
cImg noiseFor(const Show& i_show, unsigned i_width, unsigned i_height)
{
    cImg image(i_show.type, i_width, i_height, 1);
    cv::Mat mat(int(i_height), int(i_width), i_show.cvType, image.getData(), image.getYPitch());
    cv::RNG random(1);
    if (i_show.type == cImgType::SInt64) {
        for (unsigned y = 0; y < i_height; ++y)
            for (unsigned x = 0; x < i_width; ++x)
                image.row<qint64>(y)[x] = qint64(random.uniform(0, 255));
        return image;
    }
    const bool isFloat = mat.depth() >= CV_32F;
    const double low = mat.depth() == CV_8U || mat.depth() == CV_16U || isFloat ? 1 : -255;
    random.fill(mat, cv::RNG::UNIFORM, low, 255);
    return image;
}

void stretch(const cv::Mat& i_from, const Show& i_show, cv::Mat& o_to)
{
    const double length = i_show.high - i_show.low;
    const double factor = length > 0.0 ? 255.0 / length : 1.0;
    i_from.convertTo(o_to, CV_8U, factor, -i_show.low * factor);
}

using Theirs = std::function<void(const cv::Mat& i_source, const Show& i_show)>;

void add(const Show& i_show, const Theirs& i_theirs)
{
    atEachSize([=](unsigned width, unsigned height) {
        registerDuel(s_group, i_show.name, width, height, [=] {
            const cImg image = noiseFor(i_show, width, height);
            const std::shared_ptr<cImgType> own = image.getImgType().clone();
            if (i_show.high > i_show.low)
                own->setRange({i_show.low, i_show.high});
            if (i_show.style)
                own->setStyle(QString::fromLatin1(i_show.style));
            own->setGamma(i_show.gamma);
            if (i_show.param) {
                cMapObj params;
                params.setSubObject(
                    new cDataValObj<double>(i_show.value), QString::fromLatin1(i_show.param), true);
                own->setParams(params);
            }
            const cv::Mat source(int(height), int(width), i_show.cvType,
                const_cast<unsigned char*>(image.getConstData()), image.getYPitch());
            const QImage picture = own->makeDisplayImage(image);
            return Duel {s_group, i_show.name, width, height,
                std::size_t(image.getFrameSize()) + std::size_t(picture.sizeInBytes()),
                [own, image] { own->makeDisplayImage(image); }, [=] { i_theirs(source, i_show); }};
        });
    });
}

/** Numbers are stretched from a range to bytes. */
void addNumbers(const char* i_name, Type i_type, int i_cvType, double i_low, double i_high)
{
    add({i_name, i_type, i_cvType, nullptr, i_low, i_high},
        [result = cv::Mat()](
            const cv::Mat& source, const Show& show) mutable { stretch(source, show, result); });
}

void registerNumbers()
{
    addNumbers("UInt8", cImgType::UInt8, CV_8UC1, 10, 200);
    addNumbers("UInt16", cImgType::UInt16, CV_16UC1, 10, 200);
    addNumbers("UInt32 (theirs signed)", cImgType::UInt32, CV_32SC1, 10, 200);
    addNumbers("SInt8", cImgType::SInt8, CV_8SC1, -100, 100);
    addNumbers("SInt16", cImgType::SInt16, CV_16SC1, -200, 200);
    addNumbers("SInt32", cImgType::SInt32, CV_32SC1, -200, 200);
    addNumbers("SInt64 (theirs double)", cImgType::SInt64, CV_64FC1, 10, 200);
    addNumbers("Float32", cImgType::Float32, CV_32FC1, 10, 200);
    addNumbers("Float64", cImgType::Float64, CV_64FC1, 10, 200);
    cv::Mat table(1, 256, CV_8U);
    for (int i = 0; i < 256; ++i)
        table.at<uchar>(i) = cv::saturate_cast<uchar>(std::sqrt(i / 256.0) * 256.0);
    add({"UInt8, gamma 2", cImgType::UInt8, CV_8UC1, nullptr, 10, 200, 2.0},
        [table, stretched = cv::Mat(), result = cv::Mat()](const cv::Mat& source, const Show& show) mutable {
            stretch(source, show, stretched);
            cv::LUT(stretched, table, result);
        });
}

void registerColours()
{
    add({"RGB24", cImgType::RGB24, CV_8UC3, nullptr, 10, 200},
        [result = cv::Mat()](
            const cv::Mat& source, const Show& show) mutable { stretch(source, show, result); });
    add({"RGB32", cImgType::RGB32, CV_8UC4, nullptr, 10, 200},
        [between = cv::Mat(), result = cv::Mat()](const cv::Mat& source, const Show& show) mutable {
            stretch(source, show, between);
            cv::cvtColor(between, result, cv::COLOR_RGBA2BGRA);
        });
    add({"RGB32, whole range", cImgType::RGB32, CV_8UC4},
        [result = cv::Mat()](const cv::Mat& source, const Show&) mutable {
            cv::cvtColor(source, result, cv::COLOR_RGBA2BGRA);
        });
    add({"RGB24 Red", cImgType::RGB24, CV_8UC3, "Red"},
        [result = cv::Mat()](
            const cv::Mat& source, const Show&) mutable { cv::extractChannel(source, result, 0); });
    add({"RGB24 Intensity", cImgType::RGB24, CV_8UC3, "Intensity"},
        [result = cv::Mat()](const cv::Mat& source, const Show&) mutable {
            cv::cvtColor(source, result, cv::COLOR_RGB2GRAY);
        });
    add({"RGB24 Hue", cImgType::RGB24, CV_8UC3, "Hue"},
        [hsv = cv::Mat(), result = cv::Mat()](const cv::Mat& source, const Show&) mutable {
            cv::cvtColor(source, hsv, cv::COLOR_RGB2HSV_FULL);
            cv::extractChannel(hsv, result, 0);
        });
    add({"RGB24, saturation x 0.5", cImgType::RGB24, CV_8UC3, nullptr, 0, 0, 1.0, "Saturation", 0.5},
        [hsv = cv::Mat(), between = cv::Mat(), result = cv::Mat()](
            const cv::Mat& source, const Show&) mutable {
            cv::cvtColor(source, hsv, cv::COLOR_RGB2HSV_FULL);
            cv::multiply(hsv, cv::Scalar(1.0, 0.5, 1.0), between);
            cv::cvtColor(between, result, cv::COLOR_HSV2RGB_FULL);
        });
}

/** Both components as floats. */
struct Components {
    cv::Mat parts[2];

    void split(const cv::Mat& i_source)
    {
        cv::Mat floats;
        i_source.convertTo(floats, CV_32F);
        cv::split(floats, parts);
    }
};

void registerGradients(const char* const (&i_names)[4], Type i_type, int i_cvType)
{
    add({i_names[0], i_type, i_cvType, "Dx", -200, 200},
        [between = cv::Mat(), result = cv::Mat()](const cv::Mat& source, const Show& show) mutable {
            cv::extractChannel(source, between, 0);
            stretch(between, show, result);
        });
    add({i_names[1], i_type, i_cvType, "Absolute", -200, 200},
        [c = Components(), between = cv::Mat(), result = cv::Mat()](
            const cv::Mat& source, const Show& show) mutable {
            c.split(source);
            cv::magnitude(c.parts[0], c.parts[1], between);
            stretch(between, show, result);
        });
    add({i_names[2], i_type, i_cvType, "AbsoluteAndDirection", -200, 200},
        [c = Components(), length = cv::Mat(), angle = cv::Mat(), high = cv::Mat(), low = cv::Mat(),
            result = cv::Mat()](const cv::Mat& source, const Show&) mutable {
            c.split(source);
            cv::cartToPolar(c.parts[0], c.parts[1], length, angle);
            length.convertTo(high, CV_8U, 1.0 / 64.0);
            angle.convertTo(low, CV_8U, 64.0 / 6.29);
            cv::addWeighted(high, 64.0, low, 1.0, 0.0, result);
        });
    add({i_names[3], i_type, i_cvType, "ProjectionOfDirection", -200, 200},
        [between = cv::Mat(), result = cv::Mat()](const cv::Mat& source, const Show& show) mutable {
            cv::Mat floats;
            source.convertTo(floats, CV_32F);
            cv::transform(floats, between, cv::Matx12f(0.7f, 0.3f));
            stretch(between, show, result);
        });
}

/** From the least to the greatest value. */
void stretchAll(const cv::Mat& i_values, cv::Mat& o_result)
{
    cv::normalize(i_values, o_result, 0, 255, cv::NORM_MINMAX, CV_8U);
}

void registerComplex()
{
    add({"Complex Real", cImgType::Complex, CV_32FC2, "Real"},
        [part = cv::Mat(), logarithms = cv::Mat(), result = cv::Mat()](
            const cv::Mat& source, const Show&) mutable {
            cv::extractChannel(source, part, 0);
            cv::log(part, logarithms);
            stretchAll(logarithms, result);
        });
    add({"Complex Magnitude", cImgType::Complex, CV_32FC2, "Magnitude"},
        [c = Components(), length = cv::Mat(), logarithms = cv::Mat(), result = cv::Mat()](
            const cv::Mat& source, const Show&) mutable {
            c.split(source);
            cv::magnitude(c.parts[0], c.parts[1], length);
            cv::log(length, logarithms);
            stretchAll(logarithms, result);
        });
    add({"Complex", cImgType::Complex, CV_32FC2},
        [c = Components(), length = cv::Mat(), angle = cv::Mat(), logarithms = cv::Mat(),
            lengthOfLog = cv::Mat(), angleOfLog = cv::Mat(), value = cv::Mat(), hue = cv::Mat(),
            saturation = cv::Mat(), hsv = cv::Mat(),
            result = cv::Mat()](const cv::Mat& source, const Show&) mutable {
            c.split(source);
            cv::cartToPolar(c.parts[0], c.parts[1], length, angle);
            cv::log(length, logarithms);
            cv::cartToPolar(logarithms, angle, lengthOfLog, angleOfLog, true);
            double greatest = 0.0;
            cv::minMaxLoc(lengthOfLog.colRange(0, source.cols / 2), nullptr, &greatest);
            lengthOfLog.convertTo(value, CV_8U, 255.0 / greatest);
            angleOfLog.convertTo(hue, CV_8U, 255.0 / 360.0);
            saturation.create(source.size(), CV_8U);
            saturation.setTo(255);
            cv::merge(std::vector<cv::Mat> {hue, saturation, value}, hsv);
            cv::cvtColor(hsv, result, cv::COLOR_HSV2BGR_FULL);
        });
}

} // namespace

void registerDisplay()
{
    registerNumbers();
    registerColours();
    registerGradients({"Gradient16 Dx", "Gradient16 Absolute", "Gradient16 AbsoluteAndDirection",
                          "Gradient16 ProjectionOfDirection"},
        cImgType::Gradient16, CV_16SC2);
    registerGradients({"Gradient32 Dx", "Gradient32 Absolute", "Gradient32 AbsoluteAndDirection",
                          "Gradient32 ProjectionOfDirection"},
        cImgType::Gradient32, CV_32SC2);
    registerComplex();
}
