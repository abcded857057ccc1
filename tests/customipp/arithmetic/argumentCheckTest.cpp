// The order of the argument checks, for every function of the family: null pointers, then the size, then the
// steps.
#include <customipp/customipp.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

/** The arguments of one call; a test spoils some of them. */
template <class T, class Out = T> struct Arguments {
    Arguments()
    {
        for (int i = 0; i < 64; ++i)
            first[i] = second[i] = T(1), out[i] = Out(7);
    }

    T first[64];
    T second[64];
    Out out[64];
    // Pointers in the order src1, src2 or values, dst; steps likewise.
    bool present[3] = {true, true, true};
    int steps[3] = {4 * sizeof(T), 4 * sizeof(T), 4 * sizeof(Out)};
    IppiSize size {1, 2};

    const T* src1() const { return present[0] ? first : nullptr; }
    const T* src2() const { return present[1] ? second : nullptr; }
    Out* dst() { return present[2] ? out : nullptr; }
    bool unwritten() const
    {
        for (const Out value : out)
            if (value != Out(7))
                return false;
        return true;
    }
};

/** Which of the three images (bits 0 to 2) a shape has as a pointer, and as a step. */
struct Uses {
    unsigned pointers;
    unsigned steps;
};

template <class A>
void expectOrder(const char* i_symbol, Uses i_uses, const std::function<IppStatus(A&)>& i_call)
{
    const auto expectStatus = [&](const A& spoilt, IppStatus expected, const std::string& what) {
        A arguments = spoilt;
        EXPECT_EQ(i_call(arguments), expected) << i_symbol << ": " << what;
        EXPECT_TRUE(arguments.unwritten()) << i_symbol << ": " << what;
    };
    A valid;
    EXPECT_EQ(i_call(valid), ippStsNoErr) << i_symbol;
    A allWrong;
    allWrong.size = {0, 0};
    for (int& step : allWrong.steps)
        step = 0;
    for (unsigned image = 0; image < 3; ++image)
        if (i_uses.pointers >> image & 1) {
            A arguments = allWrong;
            arguments.present[image] = false;
            expectStatus(
                arguments, ippStsNullPtrErr, "null pointer " + std::to_string(image) + " before all else");
        }
    for (const IppiSize size : {IppiSize {0, 1}, IppiSize {1, 0}, IppiSize {-1, 1}, IppiSize {1, -1}}) {
        A arguments = allWrong;
        arguments.size = size;
        expectStatus(arguments, ippStsSizeErr, "size before steps");
    }
    for (unsigned image = 0; image < 3; ++image)
        for (const int step : {0, -4})
            if (i_uses.steps >> image & 1) {
                A arguments;
                arguments.steps[image] = step;
                expectStatus(arguments, ippStsStepErr, "step " + std::to_string(image));
            }
}

/** Functions that want whole rows and whole elements in their steps. */
template <class A>
void expectStrictSteps(
    const char* i_symbol, Uses i_uses, int i_channels, const std::function<IppStatus(A&)>& i_call)
{
    const int elements[3] = {sizeof(A::first[0]), sizeof(A::first[0]), sizeof(A::out[0])};
    for (unsigned image = 0; image < 3; ++image) {
        if (!(i_uses.steps >> image & 1))
            continue;
        A shortStep;
        shortStep.size = {4, 1};
        for (unsigned other = 0; other < 3; ++other)
            shortStep.steps[other] = 4 * i_channels * elements[other];
        A unevenStep = shortStep;
        A fitting = shortStep;
        EXPECT_EQ(i_call(fitting), ippStsNoErr) << i_symbol;
        shortStep.steps[image] -= 1; // too short comes before not even
        EXPECT_EQ(i_call(shortStep), ippStsStepErr) << i_symbol << ": image " << image;
        EXPECT_TRUE(shortStep.unwritten()) << i_symbol;
        unevenStep.steps[image] += 1;
        EXPECT_EQ(i_call(unevenStep), elements[image] > 1 ? ippStsNotEvenStepErr : ippStsNoErr)
            << i_symbol << ": image " << image;
    }
}

constexpr Uses s_three {7, 7}, s_inPlace {5, 5}, s_constant {5, 5}, s_constantInPlace {4, 4}, s_values {7, 5},
    s_valuesInPlace {6, 4};

#undef CUSTOMIPP_BINARY_SFS
#define CUSTOMIPP_BINARY_SFS(symbol, op, T, channels)                                                        \
    expectOrder<Arguments<T>>(#symbol, s_three, [](Arguments<T>& a) {                                        \
        return symbol(a.src1(), a.steps[0], a.src2(), a.steps[1], a.dst(), a.steps[2], a.size, 0);           \
    });
#undef CUSTOMIPP_BINARY_SFS_I
#define CUSTOMIPP_BINARY_SFS_I(symbol, op, T, channels)                                                      \
    expectOrder<Arguments<T>>(#symbol, s_inPlace,                                                            \
        [](Arguments<T>& a) { return symbol(a.src1(), a.steps[0], a.dst(), a.steps[2], a.size, 0); });
#undef CUSTOMIPP_BINARY
#define CUSTOMIPP_BINARY(symbol, op, T, channels)                                                            \
    expectOrder<Arguments<T>>(#symbol, s_three, [](Arguments<T>& a) {                                        \
        return symbol(a.src1(), a.steps[0], a.src2(), a.steps[1], a.dst(), a.steps[2], a.size);              \
    });
#undef CUSTOMIPP_BINARY_I
#define CUSTOMIPP_BINARY_I(symbol, op, T, channels)                                                          \
    expectOrder<Arguments<T>>(#symbol, s_inPlace,                                                            \
        [](Arguments<T>& a) { return symbol(a.src1(), a.steps[0], a.dst(), a.steps[2], a.size); });
#undef CUSTOMIPP_BINARY_STRICT
#define CUSTOMIPP_BINARY_STRICT(symbol, op, T, channels)                                                     \
    CUSTOMIPP_BINARY(symbol, op, T, channels)                                                                \
    expectStrictSteps<Arguments<T>>(#symbol, s_three, channels, [](Arguments<T>& a) {                        \
        return symbol(a.src1(), a.steps[0], a.src2(), a.steps[1], a.dst(), a.steps[2], a.size);              \
    });
#undef CUSTOMIPP_CONSTANT_SFS
#define CUSTOMIPP_CONSTANT_SFS(symbol, op, T)                                                                \
    expectOrder<Arguments<T>>(#symbol, s_constant,                                                           \
        [](Arguments<T>& a) { return symbol(a.src1(), a.steps[0], 1, a.dst(), a.steps[2], a.size, 0); });
#undef CUSTOMIPP_CONSTANT_SFS_I
#define CUSTOMIPP_CONSTANT_SFS_I(symbol, op, T)                                                              \
    expectOrder<Arguments<T>>(#symbol, s_constantInPlace,                                                    \
        [](Arguments<T>& a) { return symbol(1, a.dst(), a.steps[2], a.size, 0); });
#undef CUSTOMIPP_CONSTANT
#define CUSTOMIPP_CONSTANT(symbol, op, T)                                                                    \
    expectOrder<Arguments<T>>(#symbol, s_constant,                                                           \
        [](Arguments<T>& a) { return symbol(a.src1(), a.steps[0], 1, a.dst(), a.steps[2], a.size); });
#undef CUSTOMIPP_CONSTANT_I
#define CUSTOMIPP_CONSTANT_I(symbol, op, T)                                                                  \
    expectOrder<Arguments<T>>(                                                                               \
        #symbol, s_constantInPlace, [](Arguments<T>& a) { return symbol(1, a.dst(), a.steps[2], a.size); });
#undef CUSTOMIPP_CONSTANTS_SFS
#define CUSTOMIPP_CONSTANTS_SFS(symbol, op, T, channels)                                                     \
    expectOrder<Arguments<T>>(#symbol, s_values, [](Arguments<T>& a) {                                       \
        return symbol(a.src1(), a.steps[0], a.src2(), a.dst(), a.steps[2], a.size, 0);                       \
    });
#undef CUSTOMIPP_CONSTANTS_SFS_I
#define CUSTOMIPP_CONSTANTS_SFS_I(symbol, op, T, channels)                                                   \
    expectOrder<Arguments<T>>(#symbol, s_valuesInPlace,                                                      \
        [](Arguments<T>& a) { return symbol(a.src2(), a.dst(), a.steps[2], a.size, 0); });
#undef CUSTOMIPP_CONSTANTS_AC4_SFS_I
#define CUSTOMIPP_CONSTANTS_AC4_SFS_I(symbol, op, T) CUSTOMIPP_CONSTANTS_SFS_I(symbol, op, T, 4)
#undef CUSTOMIPP_UNARY
#define CUSTOMIPP_UNARY(symbol, op, T, channels)                                                             \
    expectOrder<Arguments<T>>(#symbol, s_inPlace,                                                            \
        [](Arguments<T>& a) { return symbol(a.src1(), a.steps[0], a.dst(), a.steps[2], a.size); });
#undef CUSTOMIPP_ACCUMULATE_BINARY
#define CUSTOMIPP_ACCUMULATE_BINARY(symbol, op, T)                                                           \
    {                                                                                                        \
        using A = Arguments<T, Ipp32f>;                                                                      \
        const auto call = [](A& a) {                                                                         \
            return symbol(a.src1(), a.steps[0], a.src2(), a.steps[1], a.dst(), a.steps[2], a.size);          \
        };                                                                                                   \
        expectOrder<A>(#symbol, s_three, call);                                                              \
        expectStrictSteps<A>(#symbol, s_three, 1, call);                                                     \
    }
#undef CUSTOMIPP_ACCUMULATE_UNARY
#define CUSTOMIPP_ACCUMULATE_UNARY(symbol, op, T)                                                            \
    {                                                                                                        \
        using A = Arguments<T, Ipp32f>;                                                                      \
        const auto call = [](A& a) { return symbol(a.src1(), a.steps[0], a.dst(), a.steps[2], a.size); };    \
        expectOrder<A>(#symbol, s_inPlace, call);                                                            \
        expectStrictSteps<A>(#symbol, s_inPlace, 1, call);                                                   \
    }

TEST(arithmeticCheckTest, PointersThenSizeThenSteps)
{
#include <customipp/abs.def>
#include <customipp/absDiff.def>
#include <customipp/add.def>
#include <customipp/addC.def>
#include <customipp/addProduct.def>
#include <customipp/addSquare.def>
#include <customipp/div.def>
#include <customipp/divC.def>
#include <customipp/maxEvery.def>
#include <customipp/minEvery.def>
#include <customipp/mul.def>
#include <customipp/mulC.def>
#include <customipp/sub.def>
#include <customipp/subC.def>
}

} // namespace
