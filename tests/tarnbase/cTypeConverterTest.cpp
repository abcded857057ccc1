#include "printing.h"

#include <tarnbase/cTypeConverter.h>

#include <QString>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace {

struct Celsius {
    double degrees = 0.0;
};
struct Kelvin {
    double degrees = 0.0;
};

// Out of line: GCC otherwise takes the one converter that it sees here for the one that is called, and warns.
[[gnu::noinline]] bool call(const cTypeConverterBase& i_converter, void* o_target, const void* i_source)
{
    return i_converter.convert(o_target, i_source);
}

template <class B, class A> std::optional<B> converted(A i_source)
{
    const cTypeConverterBase* const converter = cTypeConverterBase::getTypeConverter(typeid(A), typeid(B));
    if (converter == nullptr) {
        ADD_FAILURE() << "no converter";
        return {};
    }
    B target {};
    return call(*converter, &target, &i_source) ? std::optional<B>(target) : std::nullopt;
}

constexpr double s_infinity = std::numeric_limits<double>::infinity();
constexpr double s_nan = std::numeric_limits<double>::quiet_NaN();

} // namespace

template <> struct cValueConversion<Celsius, Kelvin> {
    static bool convert(const Celsius& i_source, Kelvin& o_target)
    {
        if (i_source.degrees < -273.15)
            return false;
        o_target.degrees = i_source.degrees + 273.15;
        return true;
    }
};

TEST(cTypeConverter, IsFoundWhileItLives)
{
    EXPECT_EQ(cTypeConverterBase::getTypeConverter(typeid(Celsius), typeid(Kelvin)), nullptr);
    {
        const cTypeConverter<Celsius, Kelvin> unregistered;
        EXPECT_EQ(cTypeConverterBase::getTypeConverter(typeid(Celsius), typeid(Kelvin)), nullptr);
        auto first = std::make_unique<cTypeConverter<Celsius, Kelvin>>(true);
        const cTypeConverter<Celsius, Kelvin> second(true);
        EXPECT_EQ(cTypeConverterBase::getTypeConverter(typeid(Celsius), typeid(Kelvin)), first.get());
        { // others of the pair come and go beside the first one
            const std::unique_ptr<cTypeConverterBase> copy(first->clone());
            const cTypeConverter<Celsius, Kelvin> third(true);
        }
        EXPECT_EQ(cTypeConverterBase::getTypeConverter(typeid(Celsius), typeid(Kelvin)), first.get());
        EXPECT_EQ(first->getTypeInfoSrc(), typeid(Celsius));
        EXPECT_EQ(first->getTypeInfoDst(), typeid(Kelvin));

        const std::unique_ptr<cTypeConverterBase> copy(first->clone());
        first.reset();
        EXPECT_EQ(cTypeConverterBase::getTypeConverter(typeid(Celsius), typeid(Kelvin)), nullptr);
        Kelvin target;
        const Celsius source {0.0};
        EXPECT_TRUE(copy->convert(&target, &source));
        EXPECT_EQ(target.degrees, 273.15);
        const Celsius impossible {-300.0};
        EXPECT_FALSE(copy->convert(&target, &impossible));
        EXPECT_EQ(target.degrees, 273.15);
    }
    EXPECT_EQ(cTypeConverterBase::getTypeConverter(typeid(Kelvin), typeid(Celsius)), nullptr);
}

TEST(cTypeConverter, TheScalarsConvertAmongEachOther)
{
    const std::type_info* const scalars[] = {&typeid(bool), &typeid(int), &typeid(unsigned int),
        &typeid(unsigned char), &typeid(unsigned short), &typeid(float), &typeid(double), &typeid(QString)};
    for (const std::type_info* from : scalars) {
        for (const std::type_info* to : scalars) {
            const cTypeConverterBase* const converter = cTypeConverterBase::getTypeConverter(*from, *to);
            ASSERT_NE(converter, nullptr) << from->name() << " to " << to->name();
            EXPECT_EQ(converter->getTypeInfoSrc(), *from);
            EXPECT_EQ(converter->getTypeInfoDst(), *to);
        }
    }
}

TEST(cTypeConverter, IntegersThatDoNotFitAreRefused)
{
    EXPECT_EQ((converted<unsigned char>(255)), 255);
    EXPECT_EQ((converted<unsigned char>(256)), std::nullopt);
    EXPECT_EQ((converted<unsigned char>(-1)), std::nullopt);
    EXPECT_EQ((converted<unsigned int>(-1)), std::nullopt);
    EXPECT_EQ((converted<int>(4294967295u)), std::nullopt);
    EXPECT_EQ((converted<int>(2147483647u)), 2147483647);
    EXPECT_EQ((converted<unsigned short>(65536u)), std::nullopt);
    EXPECT_EQ((converted<int>(static_cast<unsigned short>(65535))), 65535);
    EXPECT_EQ((converted<int>(true)), 1);
    EXPECT_EQ((converted<bool>(-3)), true);
    EXPECT_EQ((converted<bool>(0u)), false);
}

TEST(cTypeConverter, FractionsAreCutAndWhatIsBeyondIsRefused)
{
    EXPECT_EQ((converted<int>(2.9)), 2);
    EXPECT_EQ((converted<int>(-2.9)), -2);
    EXPECT_EQ((converted<unsigned char>(-0.9)), 0);
    EXPECT_EQ((converted<unsigned char>(255.9f)), 255);
    EXPECT_EQ((converted<unsigned char>(256.0f)), std::nullopt);
    EXPECT_EQ((converted<int>(2147483647.5)), 2147483647);
    EXPECT_EQ((converted<int>(2147483648.0)), std::nullopt);
    EXPECT_EQ((converted<int>(2147483648.0f)), std::nullopt);
    EXPECT_EQ((converted<int>(-2147483648.9)), std::numeric_limits<int>::min());
    EXPECT_EQ((converted<unsigned int>(s_infinity)), std::nullopt);
    EXPECT_EQ((converted<int>(s_nan)), std::nullopt);
    EXPECT_EQ((converted<float>(1e39)), std::nullopt);
    EXPECT_EQ((converted<float>(-s_infinity)), -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(*converted<float>(s_nan)));
    EXPECT_EQ((converted<float>(0.1)), 0.1f);
    EXPECT_EQ((converted<double>(0.5f)), 0.5);
    EXPECT_EQ((converted<bool>(0.0)), false);
    EXPECT_EQ((converted<bool>(0.1f)), true);
}

TEST(cTypeConverter, TextsAreReadAndWrittenWithoutALocale)
{
    EXPECT_EQ((converted<QString>(0.1)), QStringLiteral("0.1"));
    EXPECT_EQ((converted<QString>(0.1f)), QStringLiteral("0.1"));
    EXPECT_EQ((converted<QString>(true)), QStringLiteral("true"));
    EXPECT_EQ((converted<QString>(static_cast<unsigned char>(65))), QStringLiteral("65"));
    EXPECT_EQ((converted<int>(QStringLiteral(" 12 "))), 12);
    EXPECT_EQ((converted<double>(QStringLiteral("1e3"))), 1000.0);
    EXPECT_EQ((converted<double>(QStringLiteral("1,5"))), std::nullopt);
    EXPECT_EQ((converted<bool>(QStringLiteral("on"))), true);
    EXPECT_EQ((converted<unsigned char>(QStringLiteral("300"))), std::nullopt);
}

TEST(cTypeConverter, TheRegistryServesSeveralThreads)
{
    std::vector<std::thread> threads;
    std::atomic<int> found {0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&found] {
            for (int run = 0; run < 2000; ++run) {
                const cTypeConverter<Celsius, Kelvin> converter(true);
                found += cTypeConverterBase::getTypeConverter(typeid(Celsius), typeid(Kelvin)) != nullptr;
                found += cTypeConverterBase::getTypeConverter(typeid(int), typeid(double)) != nullptr;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GE(found.load(), 4 * 2000);
    EXPECT_EQ(cTypeConverterBase::getTypeConverter(typeid(Celsius), typeid(Kelvin)), nullptr);
}
