#include "duel.h"
#include "images.h"

#include <opencv2/imgproc.hpp>
#include <tarnbase/cMapObj.h>
#include <tarnimg/tarnimg.h>

namespace {

const char* const s_group = "Statistics";

struct Way {
    const char* name;
    const char* norm;
    int theirs;
};

/** A template over every place where it lies within an image. OpenCV takes 16 bits only as floats. */
template <class Functor>
void match(
    const Way& i_way, cImgType::ImageTypes i_type, unsigned i_edge, unsigned i_width, unsigned i_height)
{
    const cImg kind(i_type, 1, 1, 1);
    const std::string name = std::string(i_way.name) + " " + std::to_string(i_edge) + "x"
        + std::to_string(i_edge) + " " + kind.getImgType().getName().toStdString();
    registerDuel(s_group, name, i_width, i_height, [=] {
        const cImg image = noise(i_type, i_width, i_height, 1);
        const cImg part = noise(i_type, i_edge, i_edge, 2);
        cMapObj params;
        auto functor = std::make_shared<Functor>();
        functor->refreshParams(&params);
        params.getSubObject(QStringLiteral("mode"))->setFromText(QStringLiteral("Valid"));
        params.getSubObject(QStringLiteral("norm"))->setFromText(QString::fromLatin1(i_way.norm));
        cv::Mat theirImage = asMat(image), theirPart = asMat(part);
        if (i_type == cImgType::UInt16) {
            theirImage.convertTo(theirImage, CV_32F);
            theirPart.convertTo(theirPart, CV_32F);
        }
        const std::size_t bytes = std::size_t(image.getFrameSize()) + std::size_t(i_width) * i_height * 4;
        return Duel {s_group, name, i_width, i_height, bytes,
            [image, part, functor] { (*functor)(image, part); },
            [=, result = cv::Mat()]() mutable {
                cv::matchTemplate(theirImage, theirPart, result, i_way.theirs);
            }};
    });
}

} // namespace

void registerTemplateMatch()
{
    const Way plain {"crossCorrelation NormNone", "NormNone", cv::TM_CCORR};
    const Way normed {"crossCorrelation Norm", "Norm", cv::TM_CCORR_NORMED};
    const Way coefficient {"crossCorrelation NormCoefficient", "NormCoefficient", cv::TM_CCOEFF_NORMED};
    const Way distance {"sqrDistance NormNone", "NormNone", cv::TM_SQDIFF};
    for (const unsigned edge : {16u, 64u})
        for (const auto type : {cImgType::UInt8, cImgType::UInt16, cImgType::Float32})
            for (const auto& way : {plain, normed, coefficient})
                match<cCrossCorrelationFunctor>(way, type, edge, 1920, 1080);
    for (const unsigned edge : {16u, 64u})
        for (const auto type : {cImgType::UInt8, cImgType::Float32})
            match<cSqrDistanceFunctor>(distance, type, edge, 1920, 1080);
    match<cCrossCorrelationFunctor>(coefficient, cImgType::UInt8, 64, 4096, 4096);
    match<cCrossCorrelationFunctor>(coefficient, cImgType::Float32, 256, 1920, 1080);
}
