#include "duel.h"
#include "images.h"

#include <customipp/customipp.h>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <tarnbase/cDataValObj.h>
#include <tarnimg/cImgType.h>
#include <vector>

namespace {

const char* const s_group = "Histogram, tables and range";

using Maker = std::function<Duel(unsigned i_width, unsigned i_height)>;

void enter(const std::string& i_name, const Maker& i_make)
{
    atEachSize([&](unsigned width, unsigned height) {
        registerDuel(s_group, i_name, width, height, [=] { return i_make(width, height); });
    });
}

Duel duelOf(
    const cImg& i_image, std::size_t i_bytes, std::function<void()> i_ours, std::function<void()> i_theirs)
{
    return {s_group, std::string(), i_image.getWidth(), i_image.getHeight(), i_bytes, std::move(i_ours),
        std::move(i_theirs)};
}

IppiSize sizeOf(const cImg& i_image) { return {int(i_image.getWidth()), int(i_image.getHeight())}; }
template <class T> const T* pixelsOf(const cImg& i_image)
{
    return reinterpret_cast<const T*>(i_image.getConstData());
}

std::string nameOf(const char* i_operation, cImgType::ImageTypes i_type)
{
    return i_operation + (" " + cImg(i_type, 1, 1, 1).getImgType().getName().toStdString());
}

/** Memory of the pixel layer. */
using Memory = std::shared_ptr<Ipp8u>;
Memory memory(int i_bytes) { return Memory(ippsMalloc_8u(i_bytes), ippsFree); }

// --- histograms ---

/** OpenCV's: the range ends behind the last bin. */
struct Counting {
    cv::Mat source;
    int bins;
    float low;
    float high;
    cv::Mat result;

    void operator()()
    {
        const float range[] = {low, high};
        const float* ranges[] = {range};
        cv::calcHist(&source, 1, nullptr, cv::Mat(), result, 1, &bins, ranges);
    }
};

template <class T, auto Function>
void registerHistogram(
    cImgType::ImageTypes i_type, IppDataType i_dataType, float i_low, float i_high, int i_levels)
{
    enter(nameOf("histogram", i_type) + ", " + std::to_string(i_levels - 1) + " bins",
        [=](unsigned w, unsigned h) {
            const cImg image = noise(i_type, w, h, 1);
            int levels = i_levels, specSize = 0, workSize = 0;
            float low = i_low, high = i_high;
            ippiHistogramGetBufferSize(i_dataType, sizeOf(image), &levels, 1, 1, &specSize, &workSize);
            const Memory spec = memory(specSize), work = memory(workSize);
            ippiHistogramUniformInit(
                i_dataType, &low, &high, &levels, 1, reinterpret_cast<IppiHistogramSpec*>(spec.get()));
            const auto ours = [=, counts = std::vector<Ipp32u>(std::size_t(levels))]() mutable {
                Function(pixelsOf<T>(image), int(image.getYPitch()), sizeOf(image), counts.data(),
                    reinterpret_cast<IppiHistogramSpec*>(spec.get()), work.get());
            };
            return duelOf(
                image, image.getFrameSize(), ours, Counting {asMat(image), levels - 1, low, high, {}});
        });
}

// --- tables ---

/** A table without any order for each of some channels. */
cv::Mat tableOf(int i_channels)
{
    cv::Mat table(1, 256, CV_8UC(i_channels));
    cv::RNG(5).fill(table, cv::RNG::UNIFORM, 0, 256);
    return table;
}

template <auto Function> void registerTable(cImgType::ImageTypes i_type, int i_tables, const char* i_note)
{
    enter(nameOf("look-up table", i_type) + i_note, [=](unsigned w, unsigned h) {
        const cImg image = noise(i_type, w, h, 1), result(i_type, w, h);
        const int channels = int(image.getNumChannels());
        const cv::Mat table = tableOf(i_tables);
        std::vector<Ipp32s> values[4], levels;
        const Ipp32s *valueLists[4], *levelLists[4];
        int counts[4] = {256, 256, 256, 256}, size = 0;
        for (int level = 0; level < 256; ++level)
            levels.push_back(level);
        for (int c = 0; c < channels; ++c) {
            for (int level = 0; level < 256; ++level)
                values[c].push_back(table.data[level * i_tables + c % i_tables]);
            valueLists[c] = values[c].data();
            levelLists[c] = levels.data();
        }
        ippiLUT_GetSize(ippNearest, ipp8u, IppChannels(channels), sizeOf(image), counts, &size);
        const Memory memoryOfSpec = memory(size);
        auto* spec = reinterpret_cast<IppiLUT_Spec*>(memoryOfSpec.get());
        ippiLUT_Init_8u(
            ippNearest, IppChannels(channels), sizeOf(image), valueLists, levelLists, counts, spec);
        const auto ours = [=, out = const_cast<Ipp8u*>(pixelsOf<Ipp8u>(result)), keep = memoryOfSpec] {
            Function(pixelsOf<Ipp8u>(image), int(image.getYPitch()), out, int(result.getYPitch()),
                sizeOf(image), reinterpret_cast<IppiLUT_Spec*>(keep.get()));
        };
        return duelOf(image, std::size_t(image.getFrameSize()) * 2, ours,
            [image, table, out = cv::Mat()]() mutable { cv::LUT(asMat(image), table, out); });
    });
}

// --- pixel functions ---

void registerLogarithm()
{
    enter("ln Float32", [](unsigned w, unsigned h) {
        const cImg image = noise(cImgType::Float32, w, h, 1);
        cImg result(cImgType::Float32, w, h);
        auto* out = reinterpret_cast<float*>(result.getData());
        return duelOf(
            image, std::size_t(image.getFrameSize()) * 2,
            [image, result, out] {
                ippiLn_32f_C1R(pixelsOf<float>(image), int(image.getYPitch()), out, int(image.getYPitch()),
                    sizeOf(image));
            },
            [image, out = cv::Mat()]() mutable { cv::log(asMat(image), out); });
    });
}

/** Ours reads complex pixels, OpenCV's the real and the imaginary parts from two images. */
template <auto Function, class Theirs> void registerPolar(const char* i_name, Theirs i_theirs)
{
    enter(i_name, [=](unsigned w, unsigned h) {
        const cImg re = noise(cImgType::Float32, w, h, 1), im = noise(cImgType::Float32, w, h, 2);
        std::vector<cv::Mat> parts {asMat(re) - 128, asMat(im) - 128};
        cImg image(cImgType::Complex, w, h), result(cImgType::Float32, w, h);
        cv::Mat pixels(int(h), int(w), CV_32FC2, image.getData(), image.getYPitch());
        cv::merge(parts, pixels);
        auto* out = reinterpret_cast<float*>(result.getData());
        return duelOf(
            result, std::size_t(image.getFrameSize()) + result.getFrameSize(),
            [image, result, out] {
                Function(pixelsOf<Ipp32fc>(image), int(image.getYPitch()), out, int(result.getYPitch()),
                    sizeOf(image));
            },
            [parts, i_theirs, out = cv::Mat()]() mutable { i_theirs(parts[0], parts[1], out); });
    });
}

void registerReducedBits()
{
    enter("reduced bits Float32 to UInt8", [](unsigned w, unsigned h) {
        const cImg source = noise(cImgType::Float32, w, h, 1);
        cv::Mat unit = asMat(source) * (1.0 / 256); // 0 to 1, in memory of its own
        cImg result(cImgType::UInt8, w, h);
        return duelOf(
            result, unit.total() * 5,
            [unit, result, out = result.getData()] {
                ippiReduceBits_32f8u_C1R(unit.ptr<float>(), int(unit.step), out, int(result.getYPitch()),
                    sizeOf(result), 0, ippDitherNone, 255, nullptr);
            },
            [unit, out = cv::Mat()]() mutable { unit.convertTo(out, CV_8U, 255); });
    });
}

// --- ranges ---

void registerRange(cImgType::ImageTypes i_type)
{
    enter(nameOf("range", i_type), [=](unsigned w, unsigned h) {
        const cImg image = noise(i_type, w, h, 1);
        return duelOf(
            image, image.getFrameSize(), [own = image]() mutable { own.adjustRange(); },
            [image] {
                double low, high;
                cv::minMaxIdx(asMat(image).reshape(1), &low, &high);
            });
    });
}

/** The step of a display before it renders, which is not public. */
struct AutoRange : cImgType {
    static void adjust(cImgType& io_type, const cImg& i_image)
    {
        (io_type.*(&AutoRange::adjustRange))(i_image);
    }
};

void registerQuantile(cImgType::ImageTypes i_type, int i_bins)
{
    enter(nameOf("range by quantile", i_type), [=](unsigned w, unsigned h) {
        const cImg image = noise(i_type, w, h, 1);
        const auto display = std::make_shared<cImg>(i_type, 1, 1);
        cMapObj params;
        params.setSubObject(new cDataValObj<bool>(true), QStringLiteral("AutoRange/Use"), true);
        params.setSubObject(new cDataValObj<double>(0.01), QStringLiteral("AutoRange/Quantil"), true);
        display->imgType().setParams(params);
        const auto theirs = [image, i_bins, gray = cv::Mat(), result = cv::Mat()]() mutable {
            double low, high;
            cv::Mat source = asMat(image);
            cv::minMaxIdx(source.reshape(1), &low, &high);
            if (source.channels() > 1) {
                cv::cvtColor(source, gray, cv::COLOR_RGB2GRAY);
                source = gray;
            }
            const bool isFloat = source.depth() == CV_32F;
            Counting {
                source, i_bins, isFloat ? float(low) : 0.0f, isFloat ? float(high) : float(i_bins), result}();
        };
        return duelOf(
            image, image.getFrameSize() * std::size_t(2),
            [image, display] { AutoRange::adjust(display->imgType(), image); }, theirs);
    });
}

} // namespace

void registerHistograms()
{
    registerHistogram<Ipp8u, ippiHistogram_8u_C1R>(cImgType::UInt8, ipp8u, 0, 256, 257);
    registerHistogram<Ipp16u, ippiHistogram_16u_C1R>(cImgType::UInt16, ipp16u, 0, 65536, 65537);
    registerHistogram<Ipp32f, ippiHistogram_32f_C1R>(cImgType::Float32, ipp32f, 0, 256, 257);
    registerHistogram<Ipp32f, ippiHistogram_32f_C1R>(cImgType::Float32, ipp32f, 0, 256, 65536);
    registerTable<ippiLUT_8u_C1R>(cImgType::UInt8, 1, "");
    registerTable<ippiLUT_8u_C3R>(cImgType::RGB24, 1, ", one for all channels");
    registerTable<ippiLUT_8u_C3R>(cImgType::RGB24, 3, ", one for each channel");
    registerTable<ippiLUT_8u_C4R>(cImgType::RGB32, 4, ", one for each channel");
    registerLogarithm();
    registerPolar<ippiMagnitude_32fc32f_C1R>("magnitude Complex",
        [](const cv::Mat& re, const cv::Mat& im, cv::Mat& out) { cv::magnitude(re, im, out); });
    registerPolar<ippiPhase_32fc32f_C1R>(
        "phase Complex", [](const cv::Mat& re, const cv::Mat& im, cv::Mat& out) { cv::phase(re, im, out); });
    registerReducedBits();
    for (const auto type :
        {cImgType::UInt8, cImgType::UInt16, cImgType::SInt16, cImgType::Float32, cImgType::RGB24})
        registerRange(type);
    registerQuantile(cImgType::UInt8, 256);
    registerQuantile(cImgType::UInt16, 65536);
    registerQuantile(cImgType::RGB24, 256);
    registerQuantile(cImgType::Float32, 65535);
}
