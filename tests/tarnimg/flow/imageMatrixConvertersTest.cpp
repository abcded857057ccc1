#include <QList>
#include <QVector>
#include <gtest/gtest.h>
#include <memory>
#include <tarnbase/cMatrix.h>
#include <tarnbase/cTypeConverterBase.h>
#include <tarnimg/cIPortImg.h>
#include <tarnimg/cImg.h>

namespace {

template <class A, class B> B converted(const A& i_value)
{
    const cTypeConverterBase* converter = cTypeConverterBase::getTypeConverter(typeid(A), typeid(B));
    EXPECT_NE(converter, nullptr);
    B result;
    EXPECT_TRUE(converter->convert(&result, &i_value));
    return result;
}

template <class E> cMatrix<E> counting(unsigned i_rows, unsigned i_columns)
{
    cMatrix<E> matrix(i_rows, i_columns);
    for (unsigned i = 0; i < i_rows * i_columns; ++i)
        matrix.data()[i] = E(i);
    return matrix;
}

template <class E> void expectRoundTrip(cImgType::ImageTypes i_type)
{
    const cMatrix<E> matrix = counting<E>(2, 3);
    const cImg image = converted<cMatrix<E>, cImg>(matrix);
    ASSERT_TRUE(image.isKindOf(i_type));
    EXPECT_EQ(image.getWidth(), 3u);
    EXPECT_EQ(image.getHeight(), 2u);
    EXPECT_EQ(image.template getPixel<E>(2, 1), E(5));
    EXPECT_TRUE((converted<cImg, cMatrix<E>>(image) == matrix));
}

template <class E> void expectLists()
{
    using Matrices = QVector<cMatrix<E>>;
    const Matrices matrices {counting<E>(1, 2), counting<E>(3, 1)};
    const auto images = converted<Matrices, QList<cImg>>(matrices);
    ASSERT_EQ(images.size(), 2);
    EXPECT_EQ(images[1].getHeight(), 3u);
    const auto back = converted<QList<cImg>, QList<cMatrix<E>>>(images);
    ASSERT_EQ(back.size(), 2);
    EXPECT_TRUE(back[0] == matrices[0]);
    const auto vector = converted<QList<cMatrix<E>>, QVector<cImg>>(back);
    EXPECT_TRUE((converted<QVector<cImg>, Matrices>(vector)[1] == matrices[1]));
}

} // namespace

TEST(imageMatrixConvertersTest, ElementsDecideThePixelType)
{
    expectRoundTrip<int>(cImgType::SInt32);
    expectRoundTrip<float>(cImgType::Float32);
    expectRoundTrip<double>(cImgType::Float64);
}

TEST(imageMatrixConvertersTest, ListsAreConvertedElementByElement)
{
    expectLists<int>();
    expectLists<float>();
    expectLists<double>();
}

TEST(imageMatrixConvertersTest, AnImageOfAnotherTypeKeepsItsValues)
{
    cImg image(cImgType::UInt8, 2, 1, 1);
    image.setPixel<unsigned char>(0, 0, 7);
    image.setPixel<unsigned char>(1, 0, 255);
    const auto matrix = converted<cImg, cMatrix<float>>(image);
    EXPECT_EQ(matrix(0, 0), 7.0f);
    EXPECT_EQ(matrix(0, 1), 255.0f);

    // Whole numbers too, which a conversion alone would stretch; and the range of the image limits them.
    const auto numbers = converted<cImg, cMatrix<int>>(image);
    EXPECT_EQ(numbers(0, 0), 7);
    EXPECT_EQ(numbers(0, 1), 255);
    image.setRange(10, 200);
    const auto limited = converted<cImg, cMatrix<int>>(image);
    EXPECT_EQ(limited(0, 0), 10);
    EXPECT_EQ(limited(0, 1), 200);
}

namespace {

template <class A, class B> int countBothWays()
{
    return (cTypeConverterBase::getTypeConverter(typeid(A), typeid(B)) != nullptr)
        + (cTypeConverterBase::getTypeConverter(typeid(B), typeid(A)) != nullptr);
}

template <class E> int countOfElement()
{
    return countBothWays<cImg, cMatrix<E>>() + countBothWays<QList<cImg>, QList<cMatrix<E>>>()
        + countBothWays<QList<cImg>, QVector<cMatrix<E>>>()
        + countBothWays<QVector<cImg>, QList<cMatrix<E>>>()
        + countBothWays<QVector<cImg>, QVector<cMatrix<E>>>();
}

} // namespace

TEST(imageMatrixConvertersTest, ThirtyPairsOfTypesConvert)
{
    EXPECT_EQ(countOfElement<int>() + countOfElement<float>() + countOfElement<double>(), 30);
}

TEST(imageMatrixConvertersTest, WhatDoesNotConvertGivesZeros)
{
    const auto matrix = converted<cImg, cMatrix<float>>(cImg(cImgType::Complex, 2, 2, 2));
    EXPECT_EQ(matrix.getRowCount(), 2u);
    EXPECT_EQ(matrix(1, 1), 0.0f);
    EXPECT_TRUE((converted<cImg, cMatrix<float>>(cImg()).isEmpty()));
    EXPECT_FALSE((converted<cMatrix<float>, cImg>(cMatrix<float>()).isValid()));
}

TEST(imageMatrixConvertersTest, AViewIsCopiedInOneBlockWithinTheMatrix)
{
    const cImg parent = converted<cMatrix<float>, cImg>(counting<float>(4, 4));
    const cImg view(parent, false, cRect<int>(2, 2, 2, 2));
    const auto matrix = converted<cImg, cMatrix<float>>(view);
    EXPECT_EQ(matrix(0, 0), 10.0f);
    EXPECT_EQ(matrix(0, 1), 11.0f);
    EXPECT_EQ(matrix(1, 0), 12.0f); // the block goes on behind the view's first row
    EXPECT_EQ(matrix(1, 1), 13.0f);
}

TEST(imageMatrixConvertersTest, AMatrixReachesAnImageInputWithItsStamp)
{
    cIPort<cImg> port;
    cImg seen;
    cBufferStamp stamp;
    port.setDirectCallback([&](cBufferT<cImg>* buffer) {
        seen = buffer->getValue();
        stamp = buffer->getStamp();
    });
    const std::unique_ptr<cBufferConverterBase> converter(port.makeBufferConverter(typeid(cMatrix<float>)));
    ASSERT_NE(converter, nullptr);
    EXPECT_EQ(port.makeBufferConverter(typeid(QColor)), nullptr);
    EXPECT_EQ(converter->convert(nullptr), nullptr);
    port.enableAudit(true);

    cOPort<cMatrix<float>> pool(nullptr, QStringLiteral("out"), 5);
    cBufferT<cMatrix<float>>* buffer = pool.getFreeBuffer(false);
    buffer->setValue(counting<float>(2, 2));
    buffer->setStamp(99);
    port.receiveBuffer({buffer}, converter.get(), true);
    ASSERT_EQ(port.getAuditRecords().size(), 1);
    EXPECT_EQ(port.getAuditRecords().first().text, QStringLiteral("2, 2, 0, 1, 2, 3")) << "what came in";
    EXPECT_TRUE(seen.isKindOf(cImgType::Float32));
    EXPECT_EQ(seen.getPixel<float>(1, 1), 3.0f);
    EXPECT_EQ(stamp.getStamp(), 99);
    EXPECT_EQ(pool.getHeldCount(), 0);
    EXPECT_EQ(converter->getPool()->getHeldCount(), 0);
}
