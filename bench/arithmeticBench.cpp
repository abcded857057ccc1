#include "duel.h"
#include "images.h"

#include <opencv2/imgproc.hpp>
#include <tarnimg/tarnimg.h>
#include <type_traits>

namespace {

const char* const s_group = "Image arithmetic";

std::string nameOf(const char* i_operation, cImgType::ImageTypes i_type)
{
    return std::string(i_operation) + " " + cImg(i_type, 1, 1, 1).getImgType().getName().toStdString();
}

using Call = void (*)(const cv::Mat& i_a, const cv::Mat& i_b, cv::Mat& o_result);

/** Two images give a third. */
template <class Functor>
void binary(const char* i_name, std::initializer_list<cImgType::ImageTypes> i_types, Call i_theirs)
{
    for (const cImgType::ImageTypes type : i_types) {
        atEachSize([&](unsigned width, unsigned height) {
            registerDuel(s_group, nameOf(i_name, type), width, height, [=] {
                const cImg a = noise(type, width, height, 1);
                const cImg b = noise(type, width, height, 2);
                return Duel {s_group, i_name, width, height, std::size_t(a.getFrameSize()) * 3,
                    [a, b, functor = Functor()]() mutable { functor(a, b); },
                    [a, b, result = cv::Mat(), i_theirs]() mutable { i_theirs(asMat(a), asMat(b), result); }};
            });
        });
    }
}

void sum(const cv::Mat& a, const cv::Mat& b, cv::Mat& r) { cv::add(a, b, r); }
void difference(const cv::Mat& a, const cv::Mat& b, cv::Mat& r) { cv::subtract(b, a, r); }
void product(const cv::Mat& a, const cv::Mat& b, cv::Mat& r) { cv::multiply(a, b, r); }
void quotient(const cv::Mat& a, const cv::Mat& b, cv::Mat& r) { cv::divide(b, a, r); }
void absoluteDifference(const cv::Mat& a, const cv::Mat& b, cv::Mat& r) { cv::absdiff(a, b, r); }
void smaller(const cv::Mat& a, const cv::Mat& b, cv::Mat& r) { cv::min(a, b, r); }
void greater(const cv::Mat& a, const cv::Mat& b, cv::Mat& r) { cv::max(a, b, r); }

void registerAbs(cImgType::ImageTypes i_type)
{
    atEachSize([=](unsigned width, unsigned height) {
        registerDuel(s_group, nameOf("abs", i_type), width, height, [=] {
            const cImg a = noise(i_type, width, height, 1);
            return Duel {s_group, "abs", width, height, std::size_t(a.getFrameSize()) * 2,
                [a, functor = cImageAbsFunctor()] { functor(a); },
                [a, result = cv::Mat()]() mutable { cv::absdiff(asMat(a), cv::Scalar::all(0), result); }};
        });
    });
}

template <class Functor> constexpr bool takesTwoImages = std::is_same_v<Functor, cAddProductImageFunctor>;

/** A sum that is kept; the result of each call is dropped at once, so that no copy is made. */
template <class Functor> void accumulators(const char* i_name)
{
    for (const cImgType::ImageTypes type : {cImgType::UInt8, cImgType::UInt16, cImgType::Float32}) {
        atEachSize([&](unsigned width, unsigned height) {
            registerDuel(s_group, nameOf(i_name, type), width, height, [=] {
                const cImg a = noise(type, width, height, 1);
                const cImg b = noise(type, width, height, 2);
                const std::size_t sumBytes = std::size_t(width) * height * sizeof(float);
                const std::size_t bytes
                    = std::size_t(a.getFrameSize()) * (takesTwoImages<Functor> ? 2 : 1) + 2 * sumBytes;
                cv::Mat total = cv::Mat::zeros(int(height), int(width), CV_32FC1);
                const auto ours = [a, b, functor = Functor()]() mutable {
                    if constexpr (takesTwoImages<Functor>)
                        functor(a, b);
                    else
                        functor(a);
                };
                const auto theirs = [a, b, total]() mutable {
                    if constexpr (takesTwoImages<Functor>)
                        cv::accumulateProduct(asMat(a), asMat(b), total);
                    else
                        cv::accumulateSquare(asMat(a), total);
                };
                return Duel {s_group, i_name, width, height, bytes, ours, theirs};
            });
        });
    }
}

} // namespace

void registerArithmetic()
{
    const auto all = {cImgType::UInt8, cImgType::UInt16, cImgType::SInt16, cImgType::Float32, cImgType::RGB24,
        cImgType::RGB32};
    binary<cAddImagesFunctor>("add", all, sum);
    binary<cSubtractImagesFunctor>("subtract", all, difference);
    binary<cMultiplyImagesFunctor>("multiply", all, product);
    binary<cDivideImagesFunctor>("divide", all, quotient);
    binary<cImageDifferencesFunctor>("difference",
        {cImgType::UInt8, cImgType::UInt16, cImgType::Float32, cImgType::RGB24}, absoluteDifference);
    binary<cMinEveryFunctor>("minEvery", all, smaller);
    binary<cMaxEveryFunctor>("maxEvery", all, greater);
    registerAbs(cImgType::SInt16);
    registerAbs(cImgType::Float32);
    accumulators<cAddProductImageFunctor>("addProduct");
    accumulators<cAddSquareImageFunctor>("addSquare");
}
