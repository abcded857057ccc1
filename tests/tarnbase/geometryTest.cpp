#include "printing.h"

#include <tarnbase/tarnbase.h>

#include <QTextStream>
#include <QVariant>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <random>
#include <thread>

namespace {

template <class T> QString streamed(const T& i_value)
{
    QString text;
    QTextStream stream(&text);
    stream << i_value;
    return text;
}

} // namespace

TEST(cRange, PutsTheSmallerFirst)
{
    const cDblRange range(300.0, -5.0);
    EXPECT_EQ(range.getLow(), -5.0);
    EXPECT_EQ(range.getHigh(), 300.0);
    EXPECT_EQ(range.getLength(), 305.0);
    EXPECT_TRUE(range == cDblRange(-5.0, 300.0));
    EXPECT_TRUE(cDblRange().isEmpty());
    EXPECT_TRUE(cDblRange(0.0, 0.0).isEmpty());
    EXPECT_FALSE(cDblRange(0.0, 1.0).isEmpty());
    EXPECT_FALSE(cDblRange(2.0, 2.0).isEmpty());
    EXPECT_TRUE(range.contains(-5.0));
    EXPECT_TRUE(range.contains(300.0));
    EXPECT_FALSE(range.contains(300.1));
    EXPECT_EQ(streamed(range), QStringLiteral("-5,300"));
    EXPECT_EQ(QMetaType::type("cDblRange"), qMetaTypeId<cRange<double>>());
}

TEST(cRect, HoldsItsFirstEdgesButNotItsLast)
{
    constexpr cRect<int> rect(1, 2, 3, 4);
    static_assert(rect.contains(1, 2) && rect.contains(3, 5));
    static_assert(!rect.contains(4, 2) && !rect.contains(1, 6) && !rect.contains(0, 2));
    EXPECT_EQ(rect.getRight(), 4);
    EXPECT_EQ(rect.getBottom(), 6);
    EXPECT_TRUE(rect.isValid());
    EXPECT_FALSE(cRect<int>().isValid());
    EXPECT_TRUE(cRect<int>(0, 0, 0, 5).isEmpty());
    EXPECT_TRUE(cRect<int>(0, 0, -1, 5).isEmpty());
    EXPECT_EQ(streamed(rect), QStringLiteral("1,2,3,4"));
}

TEST(cRect, RectanglesThatOnlyTouchHaveNothingInCommon)
{
    const cRect<int> rect(0, 0, 10, 10);
    EXPECT_TRUE((rect & cRect<int>(10, 0, 5, 5)) == cRect<int>());
    EXPECT_TRUE((rect & cRect<int>(20, 20, 5, 5)) == cRect<int>());
    EXPECT_TRUE((rect & cRect<int>(5, 5, -2, 3)) == cRect<int>());
    EXPECT_TRUE((rect & cRect<int>(9, -3, 5, 5)) == cRect<int>(9, 0, 1, 2));
    cRect<int> cut(2, 3, 100, 100);
    cut &= rect;
    EXPECT_TRUE(cut == cRect<int>(2, 3, 8, 7));
}

TEST(cRect, NothingOverflowsAtTheEndsOfTheNumbers)
{
    const cRect<int> all(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    const cRect<int> last(INT_MAX - 1, INT_MAX - 1, INT_MAX, INT_MAX);
    EXPECT_TRUE((all & last) == cRect<int>());
    EXPECT_TRUE((last & cRect<int>(INT_MAX, INT_MAX, INT_MAX, INT_MAX))
        == cRect<int>(INT_MAX, INT_MAX, INT_MAX - 1, INT_MAX - 1));
    EXPECT_TRUE(all.unite(last) == cRect<int>(INT_MIN, INT_MIN, INT_MAX, INT_MAX));
    EXPECT_TRUE(last.translated(INT_MAX, 5) == cRect<int>(INT_MAX, INT_MAX, INT_MAX, INT_MAX));
    EXPECT_TRUE(all.translated(-1, INT_MIN) == all);
    EXPECT_EQ(cRect<int>(INT_MIN, 0, INT_MIN, 0).getRight(), 2 * qint64(INT_MIN));
}

TEST(cRect, IntersectionAndUnionAgreeWithTheirPixels)
{
    std::mt19937 random(3);
    const auto draw = [&] {
        const auto number = [&](int i_low, int i_high) {
            return std::uniform_int_distribution<int>(i_low, i_high)(random);
        };
        return cRect<int>(number(0, 6), number(0, 6), number(-1, 6), number(-1, 6));
    };
    for (int run = 0; run < 500; ++run) {
        const cRect<int> a = draw();
        const cRect<int> b = draw();
        const cRect<int> both = a & b;
        const cRect<int> hull = a.unite(b);
        bool any = false;
        int left = 99, top = 99, right = -1, bottom = -1;
        for (int y = -1; y < 14; ++y) {
            for (int x = -1; x < 14; ++x) {
                EXPECT_EQ(both.contains(x, y), a.contains(x, y) && b.contains(x, y));
                if (a.contains(x, y) || b.contains(x, y)) {
                    any = true;
                    left = std::min(left, x), right = std::max(right, x);
                    top = std::min(top, y), bottom = std::max(bottom, y);
                }
            }
        }
        EXPECT_TRUE(hull == (any ? cRect<int>(left, top, right - left + 1, bottom - top + 1) : cRect<int>()));
    }
}

TEST(c2DPoint, IsMadeOfNumbersOrAVector)
{
    EXPECT_TRUE(c2DPoint<int>() == c2DPoint<int>(0, 0));
    EXPECT_FALSE(c2DPoint<int>(1, 2) == c2DPoint<int>(1, 3));
    const c2DPoint<float> point(cVector<float> {1.5f, 2.5f, 3.5f});
    EXPECT_EQ(point.getX(), 1.5f);
    EXPECT_EQ(point.getY(), 2.5f);
    EXPECT_TRUE(c2DPoint<float>(cVector<float>()) == c2DPoint<float>());
    EXPECT_EQ(streamed(c2DPoint<int>(3, -4)), QStringLiteral("(3,-4)"));
    EXPECT_EQ(streamed(point), QStringLiteral("(1.5,2.5)"));
}

TEST(c2DLine, PointsFromItsStartToItsEnd)
{
    const c2DLine<float> line(1.0f, 2.0f, 4.0f, 6.0f);
    EXPECT_TRUE(line.getStartPoint() == c2DPoint<float>(1.0f, 2.0f));
    EXPECT_TRUE(line.getEndPoint() == c2DPoint<float>(4.0f, 6.0f));
    EXPECT_TRUE(line.getDir() == cVector<float>(3.0f, 4.0f));
    EXPECT_EQ(line.getDir().getLength(), 5.0);
    EXPECT_EQ(streamed(line), QStringLiteral("(1,2)-(4,6)"));
    EXPECT_TRUE(c2DLine<float>().getStartPoint() == c2DPoint<float>());
}

TEST(cVector, ReadsZeroBeyondItsEnd)
{
    cVector<float> vector(2);
    vector.set(1, 5.0f);
    vector.set(2, 6.0f);
    EXPECT_EQ(vector.getSize(), 2u);
    EXPECT_EQ(vector[1], 5.0f);
    EXPECT_EQ(vector[2], 0.0f);
}

TEST(cMatrix, StoresItsElementsRowByRow)
{
    const int elements[] = {1, 2, 3, 4, 5, 6};
    const cMatrix<int> matrix(2, 3, elements);
    EXPECT_EQ(matrix.getRowCount(), 2u);
    EXPECT_EQ(matrix.getColumnCount(), 3u);
    EXPECT_EQ(matrix(1, 0), 4);
    EXPECT_EQ(matrix(0, 2), 3);
    EXPECT_EQ(matrix.data()[5], 6);
    EXPECT_EQ(streamed(matrix), QStringLiteral("2, 3, 1, 2, 3, 4, 5, 6"));
    EXPECT_EQ(streamed(cMatrix<float>(3, 0)), QStringLiteral("3, 0"));
    EXPECT_TRUE(cMatrix<float>(1, 2) == cMatrix<float>(1, 2, std::vector<float> {0.0f, 0.0f}.data()));
    EXPECT_FALSE(cMatrix<float>(1, 2) == cMatrix<float>(2, 1));
    EXPECT_FALSE(cMatrix<float>(0, 1) == cMatrix<float>(0, 2));
    EXPECT_EQ(std::as_const(matrix).data(), matrix.data());
    EXPECT_EQ(cMatrix<double>().data(), nullptr);
}

TEST(cMatrix, RefusesPlacesOutsideAndSizesBeyondMemory)
{
    cMatrix<float> matrix(2, 3);
    EXPECT_THROW(matrix(2, 0), std::out_of_range);
    EXPECT_THROW(matrix(0, 3), std::out_of_range);
    EXPECT_THROW(std::as_const(matrix)(0, 3), std::out_of_range);
    EXPECT_THROW(cMatrix<int>()(0, 0), std::out_of_range);
    EXPECT_THROW(cMatrix<double>(0xffffffffu, 0xffffffffu), std::bad_alloc);
    EXPECT_EQ((cMatrix<double>(0xffffffffu, 0).getElementCount()), 0u);
}

TEST(cMatrix, CopiesShareTheirElementsUntilOneIsWritten)
{
    cMatrix<float> matrix(2, 2);
    matrix(0, 0) = 1.0f;
    const cMatrix<float> copy = matrix;
    EXPECT_EQ(copy.data(), std::as_const(matrix).data());
    matrix(0, 0) = 2.0f;
    EXPECT_NE(copy.data(), std::as_const(matrix).data());
    EXPECT_EQ(copy(0, 0), 1.0f);
    matrix.init(3.0f);
    EXPECT_EQ(matrix(1, 1), 3.0f);
    matrix.init();
    EXPECT_TRUE(matrix == cMatrix<float>(2, 2));

    const float* const block = copy.data();
    cMatrix<float> source = copy;
    cMatrix<float> moved(std::move(source));
    EXPECT_EQ(std::as_const(moved).data(), block);
    EXPECT_TRUE(source == cMatrix<float>());
    source = std::move(moved);
    EXPECT_EQ(std::as_const(source).data(), block);
    EXPECT_TRUE(moved == cMatrix<float>());
}

TEST(cMatrix, CopiesMayBeWrittenByDifferentThreads)
{
    for (int run = 0; run < 200; ++run) {
        cMatrix<int> matrix(8, 8);
        std::thread other([copy = matrix]() mutable {
            int sum = 0;
            for (unsigned int i = 0; i < 8; ++i)
                sum += std::as_const(copy)(i, i);
            EXPECT_EQ(sum, 0);
            copy = cMatrix<int>();
        });
        matrix.init(run + 1);
        EXPECT_EQ(matrix(7, 7), run + 1);
        other.join();
    }
}

TEST(cComplex, HasMagnitudeAngleAndLogarithm)
{
    const cFltComplex number(3.0f, -4.0f);
    EXPECT_EQ(number.getReal(), 3.0f);
    EXPECT_EQ(number.getImaginary(), -4.0f);
    EXPECT_EQ(number.getAbs(), 5.0f);
    EXPECT_EQ(cFltComplex(3e38f, 0.0f).getAbs(), 3e38f);
    const cComplex<double> log = cComplex<double>(0.0, M_E).log();
    EXPECT_NEAR(log.getReal(), 1.0, 1e-15);
    EXPECT_NEAR(log.getImaginary(), M_PI / 2, 1e-15);
    const cFltComplex ofZero = cFltComplex().log();
    EXPECT_EQ(ofZero.getReal(), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(ofZero.getImaginary(), 0.0f);
    cComplex<double> scaled(1.0, -2.0);
    scaled *= 2.5;
    EXPECT_TRUE(scaled == cComplex<double>(2.5, -5.0));
    static_assert(sizeof(cFltComplex) == 2 * sizeof(float) && std::is_trivially_copyable_v<cFltComplex>);
}

TEST(cRgb, KeepsItsBytesInPixelOrder)
{
    const cRgb rgb(1, 2, 3);
    const unsigned char bytes[] = {1, 2, 3};
    EXPECT_EQ(std::memcmp(&rgb, bytes, 3), 0);
    EXPECT_TRUE(rgb == cRgb(1, 2, 3));
    EXPECT_EQ(cRgba(1, 2, 3).getAlpha(), 255);
    const cRgba rgba(1, 2, 3, 4);
    EXPECT_EQ(rgba.getRed() + rgba.getGreen() + rgba.getBlue() + rgba.getAlpha(), 10);
    static_assert(sizeof(cRgb) == 3 && sizeof(cRgba) == 4);
}

TEST(tarnbaseValues, TravelInVariants)
{
    EXPECT_TRUE(QVariant::fromValue(cRgb(1, 2, 3)).value<cRgb>() == cRgb(1, 2, 3));
    EXPECT_TRUE(QVariant::fromValue(cRgba(1, 2, 3, 4)).value<cRgba>() == cRgba(1, 2, 3, 4));
    EXPECT_TRUE(QVariant::fromValue(cFltComplex(1, 2)).value<cFltComplex>() == cFltComplex(1, 2));
    EXPECT_TRUE(QVariant::fromValue(cMatrix<double>(1, 2)).canConvert<cMatrix<double>>());
    EXPECT_TRUE(QVariant::fromValue(c2DLine<float>(1, 2, 3, 4)).value<c2DLine<float>>()
        == c2DLine<float>(1, 2, 3, 4));
    for (const char* name : {"cDblRange", "cRange<double>", "cRect<int>", "c2DPoint<int>", "cMatrix<float>",
             "cFltComplex", "cRgb", "cRgba", "cError"})
        EXPECT_NE(QMetaType::type(name), int(QMetaType::UnknownType)) << name;
}

TEST(cError, TellsWhatHappenedAndWhere)
{
    const cError error(
        cError::SystemFault, cError::Processing, QStringLiteral("Unknown exception"), QStringLiteral("g/a"));
    EXPECT_EQ(int(error.getLevel()), 1);
    EXPECT_EQ(int(error.getState()), 6);
    EXPECT_EQ(error.getMessage(), QStringLiteral("Unknown exception"));
    EXPECT_EQ(error.getPath(), QStringLiteral("g/a"));
    EXPECT_EQ(streamed(error), QStringLiteral("g/a: Unknown exception"));
    EXPECT_EQ(
        streamed(cError(cError::ErrorLevel(0), cError::DataflowState(6), QStringLiteral("m"), QString())),
        QStringLiteral("m"));
}

TEST(QColorText, ShowsTheAlphaOnlyWhereThereIsOne)
{
    EXPECT_EQ(streamed(QColor(255, 128, 0)), QStringLiteral("#ff8000"));
    EXPECT_EQ(streamed(QColor(255, 128, 0, 1)), QStringLiteral("#01ff8000"));
    EXPECT_EQ(streamed(QColor()), QStringLiteral("invalid"));
}

TEST(cFileSystem, FindsTheExtensionOfTheFileName)
{
    const struct {
        const char* path;
        const char* extension;
    } cases[] = {{"a.png", "png"}, {"/x/y.z/a.tar.GZ", "GZ"}, {"/x/y.z/a", ""}, {"a", ""}, {"", ""},
        {"a.", ""}, {".hidden", "hidden"}, {"a.b/", ""}, {"../a", ""}, {"a b.t x", "t x"}};
    for (const auto& row : cases)
        EXPECT_EQ(
            cFileSystem::extractExtension(QString::fromLatin1(row.path)), QString::fromLatin1(row.extension))
            << row.path;
}
