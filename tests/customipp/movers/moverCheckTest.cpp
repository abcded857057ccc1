// The order of the argument checks, for every mover: null pointers, then the size, then the steps.
#include <customipp/customipp.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

namespace {

/** The arguments of one call: source, destination, mask or values. A test spoils some of them. */
struct Arguments {
    alignas(8) Ipp8u memory[3][256] = {};
    bool present[3] = {true, true, true};
    int steps[3] = {64, 64, 64};
    IppiSize size {1, 2};

    template <class T> T* at(int i_image)
    {
        return present[i_image] ? reinterpret_cast<T*>(memory[i_image]) : nullptr;
    }
};

/** Which of the three (bits 0 to 2) a shape has as a pointer, and as a step. */
struct Uses {
    unsigned pointers;
    unsigned steps;
};
constexpr Uses s_two {3, 3}, s_masked {7, 7}, s_destination {2, 2}, s_values {6, 2};

void expectOrder(const char* i_symbol, Uses i_uses, const std::function<IppStatus(Arguments&)>& i_call)
{
    const auto expectStatus = [&](Arguments arguments, IppStatus expected, const std::string& what) {
        std::fill_n(arguments.memory[1], 256, Ipp8u(7));
        EXPECT_EQ(i_call(arguments), expected) << i_symbol << ": " << what;
        EXPECT_EQ(std::count(arguments.memory[1], arguments.memory[1] + 256, 7), 256)
            << i_symbol << ": " << what;
    };
    Arguments valid;
    EXPECT_EQ(i_call(valid), ippStsNoErr) << i_symbol;
    Arguments allWrong;
    allWrong.size = {0, 0};
    std::fill_n(allWrong.steps, 3, 0);
    for (unsigned image = 0; image < 3; ++image)
        if (i_uses.pointers >> image & 1) {
            Arguments arguments = allWrong;
            arguments.present[image] = false;
            expectStatus(
                arguments, ippStsNullPtrErr, "null pointer " + std::to_string(image) + " before all else");
        }
    for (const IppiSize size : {IppiSize {0, 1}, IppiSize {1, 0}, IppiSize {-1, 1}, IppiSize {1, -1}}) {
        Arguments arguments = allWrong;
        arguments.size = size;
        expectStatus(arguments, ippStsSizeErr, "size before steps");
    }
    for (unsigned image = 0; image < 3; ++image)
        for (const int step : {0, -64})
            if (i_uses.steps >> image & 1) {
                Arguments arguments;
                arguments.steps[image] = step;
                expectStatus(arguments, ippStsStepErr, "step " + std::to_string(image));
            }
    // Rows may overlap: a step below the bytes of a row is no error.
    Arguments overlapping;
    overlapping.size = {2, 2};
    std::fill_n(overlapping.steps, 3, 1);
    EXPECT_EQ(i_call(overlapping), ippStsNoErr) << i_symbol;
}

#undef CUSTOMIPP_MOVE
#define CUSTOMIPP_MOVE(symbol, op, S, srcChannels, D, dstChannels)                                           \
    expectOrder(#symbol, s_two,                                                                              \
        [](Arguments& a) { return symbol(a.at<const S>(0), a.steps[0], a.at<D>(1), a.steps[1], a.size); });
#undef CUSTOMIPP_UNARY
#define CUSTOMIPP_UNARY(symbol, op, T, channels) CUSTOMIPP_MOVE(symbol, op, T, channels, T, channels)
#undef CUSTOMIPP_MOVE_ROUNDED
#define CUSTOMIPP_MOVE_ROUNDED(symbol, op, S, D)                                                             \
    expectOrder(#symbol, s_two, [](Arguments& a) {                                                           \
        /* A wrong mode is found last. */                                                                    \
        const bool right = a.size.height > 0 && a.steps[0] > 0 && a.steps[1] > 0;                            \
        return symbol(a.at<const S>(0), a.steps[0], a.at<D>(1), a.steps[1], a.size,                          \
            right ? ippRndNear : IppRoundMode(3));                                                           \
    });
#undef CUSTOMIPP_MOVE_MASKED
#define CUSTOMIPP_MOVE_MASKED(symbol, op, T, channels)                                                       \
    expectOrder(#symbol, s_masked, [](Arguments& a) {                                                        \
        return symbol(                                                                                       \
            a.at<const T>(0), a.steps[0], a.at<T>(1), a.steps[1], a.size, a.at<const Ipp8u>(2), a.steps[2]); \
    });
#undef CUSTOMIPP_FILL
#define CUSTOMIPP_FILL(symbol, op, T)                                                                        \
    expectOrder(                                                                                             \
        #symbol, s_destination, [](Arguments& a) { return symbol(T(1), a.at<T>(1), a.steps[1], a.size); });
#undef CUSTOMIPP_FILL_PIXEL
#define CUSTOMIPP_FILL_PIXEL(symbol, op, T, channels)                                                        \
    expectOrder(#symbol, s_values,                                                                           \
        [](Arguments& a) { return symbol(a.at<const T>(2), a.at<T>(1), a.steps[1], a.size); });
#undef CUSTOMIPP_FILL_CHANNEL
#define CUSTOMIPP_FILL_CHANNEL(symbol, op, T, channels) CUSTOMIPP_FILL(symbol, op, T)
#undef CUSTOMIPP_SWAP_CHANNELS_I
#define CUSTOMIPP_SWAP_CHANNELS_I(symbol, op, T, channels)                                                   \
    expectOrder(#symbol, s_values,                                                                           \
        [](Arguments& a) { return symbol(a.at<T>(1), a.steps[1], a.size, a.at<const int>(2)); });
#undef CUSTOMIPP_TWO_LEVELS
#define CUSTOMIPP_TWO_LEVELS(symbol, op, T)                                                                  \
    expectOrder(#symbol, s_two, [](Arguments& a) {                                                           \
        return symbol(a.at<const T>(0), a.steps[0], a.at<T>(1), a.steps[1], a.size, 1, 2, 3, 4);             \
    });
#undef CUSTOMIPP_TWO_LEVELS_CHANNELS
#define CUSTOMIPP_TWO_LEVELS_CHANNELS(symbol, op, T, channels)                                               \
    expectOrder(#symbol, {7, 3}, [](Arguments& a) {                                                          \
        const T* levels = a.at<const T>(2);                                                                  \
        return symbol(                                                                                       \
            a.at<const T>(0), a.steps[0], a.at<T>(1), a.steps[1], a.size, levels, levels, levels, levels);   \
    });

TEST(moverCheckTest, PointersThenSizeThenSteps)
{
#include <customipp/convert.def>
#include <customipp/copy.def>
#include <customipp/copyChannel.def>
#include <customipp/copyMasked.def>
#include <customipp/dup.def>
#include <customipp/hsvToRGB.def>
#include <customipp/polar.def>
#include <customipp/rgbToGray.def>
#include <customipp/rgbToHSV.def>
#include <customipp/set.def>
#include <customipp/swapChannels.def>
#include <customipp/thresholdLTValGTVal.def>
}

} // namespace
