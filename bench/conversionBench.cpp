#include "duel.h"
#include "images.h"

#include <opencv2/imgproc.hpp>
#include <tarnimg/cImageTypeFactory.h>
#include <tarnimg/cImgType.h>

namespace {

const char* const s_group = "Pixel conversion";

/** OpenCV's nearest: a linear mapping, before or behind it a change of channels where there is one. */
struct Theirs {
    cv::Mat source;
    int targetType;
    double factor;
    double offset;
    cv::Mat between;
    cv::Mat result;

    void operator()()
    {
        const int from = source.channels();
        const int to = CV_MAT_CN(targetType);
        if (from == to) {
            source.convertTo(result, CV_MAT_DEPTH(targetType), factor, offset);
        } else if (to == 1) {
            cv::cvtColor(source, between, from == 3 ? cv::COLOR_RGB2GRAY : cv::COLOR_RGBA2GRAY);
            between.convertTo(result, CV_MAT_DEPTH(targetType), factor, offset);
        } else if (from == 1) {
            source.convertTo(between, CV_8U, factor, offset);
            cv::cvtColor(between, result, to == 3 ? cv::COLOR_GRAY2RGB : cv::COLOR_GRAY2RGBA);
        } else {
            cv::cvtColor(source, result, to == 3 ? cv::COLOR_RGBA2RGB : cv::COLOR_RGB2RGBA);
        }
    }
};

void registerRoute(cImgType::ImageTypes i_from, cImgType::ImageTypes i_to, const QString& i_name)
{
    atEachSize([=](unsigned width, unsigned height) {
        registerDuel(s_group, i_name.toStdString(), width, height, [=] {
            cImg source = noise(i_from, width, height, 1);
            if (i_from >= cImgType::Float32)
                source.setRange(1, 255);
            cImg result;
            source.convertTo(i_to, result);
            const cDblRange in = source.getRange();
            // A float target keeps the values; every other takes the source's range onto its whole own.
            const cDblRange out = i_to >= cImgType::Float32 ? in : cImg(i_to, 1, 1, 1).getRange();
            const double factor = (out.getHigh() - out.getLow()) / (in.getHigh() - in.getLow());
            const Theirs theirs {
                asMat(source), cvTypeOf(result), factor, out.getLow() - in.getLow() * factor, {}, {}};
            return Duel {s_group, std::string(), width, height,
                std::size_t(source.getFrameSize()) + result.getFrameSize(),
                [source, i_to, result]() mutable { source.convertTo(i_to, result); }, theirs};
        });
    });
}

} // namespace

void registerConversion()
{
    const auto types = {cImgType::RGB24, cImgType::RGB32, cImgType::UInt8, cImgType::UInt16, cImgType::SInt8,
        cImgType::SInt16, cImgType::SInt32, cImgType::Float32, cImgType::Float64};
    for (const cImgType::ImageTypes from : types) {
        for (const cImgType::ImageTypes to : types) {
            // Equal types with equal ranges are a plain copy; one of them stands for all.
            if (from == to && from != cImgType::UInt8 && from != cImgType::Float32)
                continue;
            const QString name = cImg(from, 1, 1, 1).getImgType().getName() + QStringLiteral(" to ")
                + cImg(to, 1, 1, 1).getImgType().getName();
            registerRoute(from, to, name);
        }
    }
}
