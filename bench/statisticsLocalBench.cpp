#include "duel.h"
#include "images.h"

#include <QVariant>
#include <opencv2/imgproc.hpp>
#include <tarnimg/tarnimg.h>

namespace {

const char* const s_group = "Statistics";

std::string nameOf(const char* i_operation, cImgType::ImageTypes i_type)
{
    return std::string(i_operation) + " " + cImg(i_type, 1, 1, 1).getImgType().getName().toStdString();
}

/** Registers a duel on one image of noise: ours(image) against theirs(image as matrix). */
template <class Ours, class Theirs>
void duel(const std::string& i_name, cImgType::ImageTypes i_type, double i_bytesPerPixel, Ours i_ours,
    Theirs i_theirs)
{
    atEachSize([&](unsigned width, unsigned height) {
        registerDuel(s_group, i_name, width, height, [=] {
            const cImg image = noise(i_type, width, height, 1);
            return Duel {s_group, i_name, width, height, std::size_t(i_bytesPerPixel * width * height),
                [image, ours = i_ours]() mutable { ours(image); },
                [image, theirs = i_theirs]() mutable { theirs(asMat(image)); }};
        });
    });
}

// --- integrals ---

void integral(const char* i_name, cImgType::ImageTypes i_type, bool i_floatMode)
{
    cIntegralFunctor functor;
    functor.setFloatMode(i_floatMode);
    const bool inFloats = i_floatMode || i_type == cImgType::Float32;
    duel(
        i_name, i_type, i_type == cImgType::UInt8 ? 5 : 8, [functor](const cImg& image) { functor(image); },
        [depth = inFloats ? CV_32F : CV_32S, sums = cv::Mat()](
            const cv::Mat& image) mutable { cv::integral(image, sums, depth); });
}

void sqrIntegral()
{
    duel(
        "sqrIntegral UInt8", cImgType::UInt8, 13,
        [sums = cImg(), squares = cImg()](const cImg& image) mutable {
            sums = squares = cImg(); // their pixels are used again
            cSqrIntegralFunctor()(image, sums, squares);
        },
        [sums = cv::Mat(), squares = cv::Mat()](
            const cv::Mat& image) mutable { cv::integral(image, sums, squares, CV_32S, CV_64F); });
}

// --- deviation under a rectangle ---

/** The sums over all rectangles, by whole matrices: the four corners are parts of the integral. */
cv::Mat rectangleSums(const cv::Mat& i_sums, int i_side, int i_width, int i_height)
{
    const auto corner = [&](int x, int y) {
        cv::Mat part;
        i_sums(cv::Rect(x, y, i_width, i_height)).convertTo(part, CV_64F);
        return part;
    };
    return corner(i_side, i_side) - corner(0, i_side) - corner(i_side, 0) + corner(0, 0);
}

void rectStdDev(const char* i_name, bool i_floatMode)
{
    constexpr int side = 10;
    atEachSize([&](unsigned width, unsigned height) {
        registerDuel(s_group, i_name, width, height, [=] {
            cSqrIntegralFunctor integrals;
            integrals.setFloatMode(i_floatMode);
            cImg sums, squares;
            integrals(noise(cImgType::UInt8, width, height, 1), sums, squares);
            const auto theirs = [sums, squares, width, height] {
                const int w = int(width) + 1 - side, h = int(height) + 1 - side;
                const cv::Mat sum = rectangleSums(asMat(sums), side, w, h);
                const cv::Mat squareSum = rectangleSums(asMat(squares), side, w, h);
                cv::Mat variance = squareSum / (side * side) - sum.mul(sum) / (side * side * side * side);
                cv::Mat deviation;
                cv::sqrt(cv::max(variance, 0), variance);
                variance.convertTo(deviation, CV_32F);
            };
            return Duel {s_group, i_name, width, height, std::size_t(16) * width * height,
                [sums, squares] { cRectStdDevFunctor()(sums, squares); }, theirs};
        });
    });
}

// --- extremes of blocks ---

/** Of each block of a row, what minMaxIdx finds; there is no call for all of them. */
void extremesOfBlocks(const cv::Mat& i_image, const QSize& i_block, cv::Mat& o_least, cv::Mat& o_greatest)
{
    const int columns = (i_image.cols + i_block.width() - 1) / i_block.width();
    const int rows = (i_image.rows + i_block.height() - 1) / i_block.height();
    o_least.create(rows, columns, CV_64F);
    o_greatest.create(rows, columns, CV_64F);
    const cv::Rect whole(0, 0, i_image.cols, i_image.rows);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x) {
            const cv::Rect block(
                x * i_block.width(), y * i_block.height(), i_block.width(), i_block.height());
            cv::minMaxIdx(i_image(block & whole), &o_least.at<double>(y, x), &o_greatest.at<double>(y, x));
        }
}

/** Of small blocks, those of all places, of which every so many-th is taken. */
void extremesOfPlaces(const cv::Mat& i_image, const QSize& i_block, cv::Mat& o_least, cv::Mat& o_greatest)
{
    const cv::Mat mask = cv::Mat::ones(i_block.height(), i_block.width(), CV_8U);
    const cv::Size size(i_image.cols / i_block.width(), i_image.rows / i_block.height());
    cv::Mat places;
    cv::erode(i_image, places, mask);
    cv::resize(places, o_least, size, 0, 0, cv::INTER_NEAREST);
    cv::dilate(i_image, places, mask);
    cv::resize(places, o_greatest, size, 0, 0, cv::INTER_NEAREST);
}

void blockMinMax(const std::string& i_name, cImgType::ImageTypes i_type, const QSize& i_block,
    void (*i_theirs)(const cv::Mat&, const QSize&, cv::Mat&, cv::Mat&))
{
    cBlockMinMaxFunctor functor;
    functor.setBlockSize(i_block);
    const double pixelBytes = cImg(i_type, 1, 1).getImgType().getPixelSize();
    duel(
        i_name, i_type, pixelBytes * (1 + 2.0 / (i_block.width() * i_block.height())),
        [functor](const cImg& image) {
            cImg least, greatest;
            QVariant leastOfAll, greatestOfAll;
            functor(image, &least, &greatest, leastOfAll, greatestOfAll);
        },
        [=, least = cv::Mat(), greatest = cv::Mat()](
            const cv::Mat& image) mutable { i_theirs(image, i_block, least, greatest); });
}

// --- peaks ---

/** The greatest neighbour by a mask without its middle, then the pixels that are above it. */
void peaks(const cv::Mat& i_image, double i_threshold)
{
    cv::Mat mask = cv::Mat::ones(3, 3, CV_8U), neighbours, isAbove;
    mask.at<unsigned char>(1, 1) = 0;
    cv::dilate(i_image, neighbours, mask);
    cv::compare(i_image, cv::max(neighbours, i_threshold), isAbove, cv::CMP_GT);
    std::vector<cv::Point> points;
    cv::findNonZero(isAbove, points);
}

void findPeaks(const char* i_name, float i_threshold)
{
    cFindPeaks3x3Functor functor;
    functor.setThreshold(i_threshold);
    functor.setMaxPeaks(4000000);
    duel(
        i_name, cImgType::Float32, 4, [functor](const cImg& image) { functor(image); },
        [=](const cv::Mat& image) { peaks(image, double(i_threshold)); });
}

} // namespace

void registerStatisticsLocal()
{
    integral("integral UInt8", cImgType::UInt8, false);
    integral("integral UInt8, floatMode", cImgType::UInt8, true);
    integral("integral Float32", cImgType::Float32, true);
    sqrIntegral();
    rectStdDev("rectStdDev SInt32 10x10", false);
    rectStdDev("rectStdDev Float32 10x10", true);
    for (const cImgType::ImageTypes type :
        {cImgType::UInt8, cImgType::UInt16, cImgType::SInt16, cImgType::Float32}) {
        blockMinMax(nameOf("blockMinMax 3x3", type), type, QSize(3, 3), extremesOfPlaces);
        blockMinMax(nameOf("blockMinMax 16x16", type), type, QSize(16, 16), extremesOfBlocks);
        blockMinMax(nameOf("blockMinMax 100x100", type), type, QSize(100, 100), extremesOfBlocks);
    }
    findPeaks("findPeaks3x3 Float32, many", 0);
    findPeaks("findPeaks3x3 Float32, few", 254.9f);
}
