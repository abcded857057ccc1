#include "duel.h"
#include "images.h"

#include <QColor>
#include <tarnimg/tarnimg.h>
#include <utility>

namespace {

const char* const s_group = "Constant arithmetic";

using Call = void (*)(const cv::Mat& i_image, cv::Mat& o_result);

std::string nameOf(const char* i_operation, cImgType::ImageTypes i_type)
{
    return std::string(i_operation) + " " + cImg(i_type, 1, 1, 1).getImgType().getName().toStdString();
}

/** An image and constants give another image. */
template <class Functor>
void duels(const char* i_name, std::initializer_list<cImgType::ImageTypes> i_types, const Functor& i_functor,
    Call i_theirs)
{
    for (const cImgType::ImageTypes type : i_types) {
        atEachSize([&](unsigned width, unsigned height) {
            registerDuel(s_group, nameOf(i_name, type), width, height, [=] {
                const cImg image = noise(type, width, height, 1);
                return Duel {s_group, i_name, width, height, std::size_t(image.getFrameSize()) * 2,
                    [image, i_functor] { i_functor(image); },
                    [image, result = cv::Mat(), i_theirs]() mutable { i_theirs(asMat(image), result); }};
            });
        });
    }
}

template <class Functor, class Constant> Functor with(Constant i_constant)
{
    Functor functor;
    functor.setConstant(i_constant);
    return functor;
}

template <class Functor> Functor withColours(double i_red, double i_green, double i_blue)
{
    Functor functor;
    functor.setConstantRed(i_red);
    functor.setConstantGreen(i_green);
    functor.setConstantBlue(i_blue);
    return functor;
}

const cv::Scalar s_colour(10, 20, 30, 0);
const cv::Scalar s_factors(1.3, 0.75, 1.0, 1.0);

void sum(const cv::Mat& a, cv::Mat& r) { cv::add(a, cv::Scalar::all(17), r); }
void colourSum(const cv::Mat& a, cv::Mat& r) { cv::add(a, s_colour, r); }
void difference(const cv::Mat& a, cv::Mat& r) { cv::subtract(a, cv::Scalar::all(17), r); }
void colourDifference(const cv::Mat& a, cv::Mat& r) { cv::subtract(a, s_colour, r); }
// The quickest way there is for one factor is a conversion with a scale.
void product(const cv::Mat& a, cv::Mat& r) { a.convertTo(r, a.type(), 1.3); }
void colourProduct(const cv::Mat& a, cv::Mat& r) { cv::multiply(a, s_factors, r); }
void quotient(const cv::Mat& a, cv::Mat& r) { cv::divide(a, cv::Scalar::all(1.3), r); }
void colourQuotient(const cv::Mat& a, cv::Mat& r) { cv::divide(a, s_factors, r); }

} // namespace

void registerConstants()
{
    const auto single = {cImgType::UInt8, cImgType::UInt16, cImgType::SInt16, cImgType::Float32};
    const auto colours = {cImgType::RGB24, cImgType::RGB32};
    duels("addConstant", single, with<cAddConstantToImageFunctor>(17.0f), sum);
    duels("addConstantRGB", colours, with<cAddConstantToImageRGBFunctor>(QColor(10, 20, 30)), colourSum);
    duels("subtractConstant", single, with<cSubtractConstantFromImageFunctor>(17.0), difference);
    duels("subtractConstantRGB", colours, with<cSubtractConstantFromImageRGBFunctor>(QColor(10, 20, 30)),
        colourDifference);
    duels("multiplyConstant", single, with<cMultiplyConstantWithImageFunctor>(1.3f), product);
    duels("multiplyConstantRGB", colours, withColours<cMultiplyConstantWithImageRGBFunctor>(1.3, 0.75, 1.0),
        colourProduct);
    duels("divideConstant", single, with<cDivideImageByConstantFunctor>(1.3), quotient);
    duels("divideConstant", colours, withColours<cDivideImageByConstantFunctor>(1.3, 0.75, 1.0),
        colourQuotient);
}
