#include <QList>
#include <QVector>
#include <algorithm>
#include <cstring>
#include <tarnbase/cDataValObj.h>
#include <tarnbase/cMapObj.h>
#include <tarnbase/cMatrix.h>
#include <tarnbase/cTypeConverter.h>
#include <tarnimg/cImg.h>
#include <type_traits>

// Images travel as matrices to whoever takes those, and back, one by one and as lists. The converters
// register themselves when the library is loaded.
namespace {

template <class E> constexpr cImgType::ImageTypes s_imageType = cImgType::Invalid;
template <> constexpr cImgType::ImageTypes s_imageType<int> = cImgType::SInt32;
template <> constexpr cImgType::ImageTypes s_imageType<float> = cImgType::Float32;
template <> constexpr cImgType::ImageTypes s_imageType<double> = cImgType::Float64;

/** The image itself if it has the elements' type, else a copy that keeps the source's range; void if there is
 * none. */
template <class E> cImg withElements(const cImg& i_image)
{
    if (i_image.isKindOf(s_imageType<E>))
        return i_image;
    cMapObj options;
    options[QStringLiteral("outputRange")] = new cDataValObj<cDblRange>(i_image.getRange(), 0);
    cImg converted;
    return i_image.convertTo(s_imageType<E>, converted, &options) ? converted : cImg();
}

template <class T> constexpr bool s_isList = false;
template <class T> constexpr bool s_isList<QList<T>> = true;
template <class T> constexpr bool s_isList<QVector<T>> = true;

} // namespace

/** Width is the number of columns. An empty matrix gives the void image. */
template <class E> struct cValueConversion<cMatrix<E>, cImg> {
    static bool convert(const cMatrix<E>& i_matrix, cImg& o_image)
    {
        o_image = cImg();
        if (i_matrix.isEmpty())
            return true;
        cImg image(s_imageType<E>, i_matrix.getColumnCount(), i_matrix.getRowCount(), 1);
        std::memcpy(image.getData(), i_matrix.data(), image.getFrameSize());
        o_image = image;
        return true;
    }
};

/** A row for each row of the image; zeros if the image has no pixels that convert. */
template <class E> struct cValueConversion<cImg, cMatrix<E>> {
    static bool convert(const cImg& i_image, cMatrix<E>& o_matrix)
    {
        o_matrix = cMatrix<E>(i_image.getHeight(), i_image.getWidth(), nullptr);
        const cImg image = withElements<E>(i_image);
        if (!image.isValid())
            return true;
        // One block, which takes no account of pitches that differ from the matrix's rows; cut to the matrix.
        const std::size_t imageBytes = std::size_t(image.getYPitch()) * image.getHeight();
        std::memcpy(o_matrix.data(), image.getConstData(),
            std::min(imageBytes, o_matrix.getElementCount() * sizeof(E)));
        return true;
    }
};

/** Lists, element by element. */
template <class From, class To>
requires(s_isList<From>&& s_isList<To> && !std::is_same_v<From, To>) struct cValueConversion<From, To> {
    using FromElement = typename From::value_type;
    using ToElement = typename To::value_type;

    static bool convert(const From& i_from, To& o_to)
    {
        o_to = To();
        o_to.reserve(i_from.size());
        for (const FromElement& from : i_from) {
            ToElement to;
            cValueConversion<FromElement, ToElement>::convert(from, to);
            o_to.append(to);
        }
        return true;
    }
};

namespace {

template <class A, class B> struct BothWays {
    cTypeConverter<A, B> forth {true};
    cTypeConverter<B, A> back {true};
};

template <class E> struct Registration {
    BothWays<cImg, cMatrix<E>> single;
    BothWays<QList<cImg>, QList<cMatrix<E>>> listList;
    BothWays<QList<cImg>, QVector<cMatrix<E>>> listVector;
    BothWays<QVector<cImg>, QList<cMatrix<E>>> vectorList;
    BothWays<QVector<cImg>, QVector<cMatrix<E>>> vectorVector;
};

const Registration<int> s_intConverters;
const Registration<float> s_floatConverters;
const Registration<double> s_doubleConverters;

} // namespace
