#include "duel.h"
#include "images.h"

#include <QVariant>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <tarnbase/cMapObj.h>
#include <tarnimg/tarnimg.h>

// Operations that reduce an image to numbers.

namespace {

const char* const s_group = "Statistics";

using Types = std::initializer_list<cImgType::ImageTypes>;

/** Keeps results that nobody else looks at. */
volatile double s_kept;
void keep(double i_value) { s_kept = i_value; }

/** Makes a call on an image, or on two: what a duel repeats. */
using MakeCall = std::function<std::function<void()>(const cImg& i_a, const cImg& i_b)>;

void measure(
    const char* i_name, Types i_types, int i_images, const MakeCall& i_ours, const MakeCall& i_theirs)
{
    for (const cImgType::ImageTypes type : i_types) {
        const std::string name
            = std::string(i_name) + " " + cImg(type, 1, 1, 1).getImgType().getName().toStdString();
        atEachSize([&](unsigned width, unsigned height) {
            registerDuel(s_group, name, width, height, [=] {
                const cImg a = noise(type, width, height, 1);
                const cImg b = noise(type, width, height, 2);
                return Duel {s_group, name, width, height,
                    std::size_t(a.getFrameSize()) * std::size_t(i_images), i_ours(a, b), i_theirs(a, b)};
            });
        });
    }
}

/** Every other pixel, in an irregular order. */
cImg maskFor(const cImg& i_image)
{
    cImg mask = noise(cImgType::UInt8, i_image.getWidth(), i_image.getHeight(), 3);
    cv::Mat mat = asMat(mask);
    cv::threshold(mat, mat, 127, 255, cv::THRESH_BINARY);
    return mask;
}

// --- calls ---

std::function<void()> ourMinMax(const cImg& a, const cImg&)
{
    return [a, functor = cMinMaxFunctor()] {
        QVariant least, greatest;
        functor(a, least, greatest);
        keep(greatest.toDouble());
    };
}

std::function<void()> ourMinMaxOfChannels(const cImg& a, const cImg&)
{
    return [a, functor = cMinMaxFunctor()] {
        double least[4], greatest[4];
        functor(a, least, greatest);
        keep(greatest[0]);
    };
}

std::function<void()> theirMinMax(const cImg& a, const cImg&)
{
    return [a] {
        double least, greatest;
        cv::minMaxIdx(asMat(a).reshape(1), &least, &greatest);
        keep(greatest);
    };
}

std::function<void()> ourMeanStdDev(const cImg& a, const cImg&)
{
    return [a, functor = cMeanStdDevFunctor()] {
        double mean, stdDev;
        functor(a, mean, stdDev);
        keep(stdDev);
    };
}

std::function<void()> theirMeanStdDev(const cImg& a, const cImg&)
{
    return [a] {
        cv::Scalar mean, stdDev;
        cv::meanStdDev(asMat(a), mean, stdDev);
        keep(stdDev[0]);
    };
}

std::function<void()> ourMaskedMeanStdDev(const cImg& a, const cImg&)
{
    return [a, mask = maskFor(a), functor = cMeanStdDevFunctor()] {
        double mean, stdDev;
        functor(a, mask, mean, stdDev);
        keep(stdDev);
    };
}

std::function<void()> theirMaskedMeanStdDev(const cImg& a, const cImg&)
{
    return [a, mask = maskFor(a)] {
        cv::Scalar mean, stdDev;
        cv::meanStdDev(asMat(a), mean, stdDev, asMat(mask));
        keep(stdDev[0]);
    };
}

/** A functor with its mode, which it reads by the entries of a map. */
template <class Functor> std::shared_ptr<Functor> withMode(const char* i_mode)
{
    struct Parametrised {
        Functor functor;
        cMapObj params;
    };
    auto both = std::make_shared<Parametrised>();
    both->functor.refreshParams(&both->params);
    both->params.getSubObject(QStringLiteral("mode"))->setFromText(QString::fromLatin1(i_mode));
    return {both, &both->functor};
}

void registerNorm(const char* i_mode, int i_theirs)
{
    const auto all = {cImgType::UInt8, cImgType::UInt16, cImgType::SInt16, cImgType::Float32, cImgType::RGB24,
        cImgType::RGB32};
    const auto masked = {cImgType::UInt8, cImgType::UInt16, cImgType::Float32, cImgType::RGB24};
    const std::string name = i_mode;
    measure(("norm" + name.substr(4)).c_str(), all, 1,
        [=](const cImg& a, const cImg&) {
            return [a, functor = withMode<cImgNormFunctor>(i_mode)] {
                double norms[4];
                if (a.getNumChannels() > 1)
                    (*functor)(a, norms);
                else
                    norms[0] = (*functor)(a);
                keep(norms[0]);
            };
        },
        [=](const cImg& a, const cImg&) { return [=] { keep(cv::norm(asMat(a), i_theirs)); }; });
    measure(("normDiff" + name.substr(4)).c_str(), all, 2,
        [=](const cImg& a, const cImg& b) {
            return [a, b, functor = withMode<cImgNormDiffFunctor>(i_mode)] { keep((*functor)(a, b)); };
        },
        [=](const cImg& a, const cImg& b) { return [=] { keep(cv::norm(asMat(a), asMat(b), i_theirs)); }; });
    measure(("norm" + name.substr(4) + " masked").c_str(), masked, 1,
        [=](const cImg& a, const cImg&) {
            return [a, mask = maskFor(a), functor = withMode<cImgNormFunctor>(i_mode)] {
                keep((*functor)(a, mask));
            };
        },
        [=](const cImg& a, const cImg&) {
            return [a, mask = maskFor(a), i_theirs] { keep(cv::norm(asMat(a), i_theirs, asMat(mask))); };
        });
}

/** The range of the duels holds about half of the pixels. */
std::function<void()> ourCount(const cImg& a, const cImg&)
{
    auto params = std::make_shared<cMapObj>();
    auto functor = std::make_shared<cCountInRangeFunctor>();
    functor->refreshParams(params.get());
    params->getSubObject(QStringLiteral("lowerBound"))->setValue(64.0f);
    params->getSubObject(QStringLiteral("upperBound"))->setValue(191.0f);
    return [a, functor, params] { keep((*functor)(a)); };
}

std::function<void()> theirCount(const cImg& a, const cImg&)
{
    return [a, inRange = cv::Mat()]() mutable {
        cv::inRange(asMat(a), cv::Scalar::all(64), cv::Scalar::all(191), inRange);
        keep(cv::countNonZero(inRange));
    };
}

std::function<void()> ourCountRGB(const cImg& a, const cImg&)
{
    return [a, functor = cCountInRangeRGBFunctor()] {
        int counts[3];
        functor(a, counts);
        keep(counts[0]);
    };
}

std::function<void()> theirCountRGB(const cImg& a, const cImg&)
{
    return [a, planes = std::vector<cv::Mat>(), inRange = cv::Mat()]() mutable {
        cv::split(asMat(a), planes);
        for (const cv::Mat& plane : planes) {
            cv::inRange(plane, cv::Scalar::all(0), cv::Scalar::all(255), inRange);
            keep(cv::countNonZero(inRange));
        }
    };
}

} // namespace

void registerStatistics()
{
    const auto scalar = {cImgType::UInt8, cImgType::UInt16, cImgType::SInt16, cImgType::Float32};
    measure("minMax", scalar, 1, ourMinMax, theirMinMax);
    measure("minMax", {cImgType::RGB24, cImgType::RGB32}, 1, ourMinMaxOfChannels, theirMinMax);
    const auto measured = {cImgType::UInt8, cImgType::UInt16, cImgType::Float32, cImgType::RGB24};
    measure("meanStdDev", measured, 1, ourMeanStdDev, theirMeanStdDev);
    measure("meanStdDev masked", measured, 1, ourMaskedMeanStdDev, theirMaskedMeanStdDev);
    registerNorm("NormL1", cv::NORM_L1);
    registerNorm("NormL2", cv::NORM_L2);
    registerNorm("NormInf", cv::NORM_INF);
    measure("countInRange", {cImgType::UInt8, cImgType::Float32}, 1, ourCount, theirCount);
    measure("countInRangeRGB", {cImgType::RGB24}, 1, ourCountRGB, theirCountRGB);
}
