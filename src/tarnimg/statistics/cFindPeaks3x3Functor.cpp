#include <tarnimg/statistics/cFindPeaks3x3Functor.h>

#include "frame/functorFrame.h"
#include "frame/ippConstants.h"
#include "frame/ippImages.h"

#include <QPainterPath>
#include <algorithm>
#include <customipp/customipp.h>
#include <limits>
#include <memory>
#include <tarnflow/cStationRegistration.h>
#include <tarnimg/cFunctorStationT.h>

namespace {

constexpr char s_operator[] = "cFindPeaks3x3Functor::operator ()";

using Points = QVector<c2DPoint<int>>;

struct Search {
    double threshold;
    int capacity; ///< most peaks
    IppiNorm norm;
    int border;
};

template <auto Query, auto Find> struct Peaks;

template <class T, IppStatus (*Query)(int, int*),
    IppStatus (*Find)(const T*, int, IppiSize, T, IppiPoint*, int, int*, IppiNorm, int, Ipp8u*)>
struct Peaks<Query, Find> {
    static IppStatus call(const cImg& i_image, const Search& i_search, Points& o_peaks)
    {
        const IppiSize size = frame::sizeOf(i_image);
        int bytes = 0, count = 0;
        if (const IppStatus status = Query(size.width, &bytes))
            return status;
        const std::unique_ptr<Ipp8u[]> buffer(new Ipp8u[std::size_t(bytes)]);
        // Without values, so that a long list costs what is found.
        const std::unique_ptr<IppiPoint[]> found(new IppiPoint[std::size_t(i_search.capacity)]);
        const IppStatus status = Find(frame::pixels<T>(i_image), frame::stepOf(i_image), size,
            frame::pixelConstant<T>("threshold", i_search.threshold), found.get(), i_search.capacity, &count,
            i_search.norm, i_search.border, buffer.get());
        o_peaks.reserve(count);
        for (int i = 0; i < count; ++i)
            o_peaks.append({found[std::size_t(i)].x, found[std::size_t(i)].y});
        return status;
    }
};

struct Variant {
    cImgType::ImageTypes type;
    unsigned channels;
    IppStatus (*call)(const cImg& i_image, const Search& i_search, Points& o_peaks);
};

constexpr Variant s_variants[] = {
    {cImgType::Float32, 1, Peaks<ippiFindPeaks3x3GetBufferSize_32f_C1R, ippiFindPeaks3x3_32f_C1R>::call},
    {cImgType::SInt32, 1, Peaks<ippiFindPeaks3x3GetBufferSize_32s_C1R, ippiFindPeaks3x3_32s_C1R>::call},
};

/** A cross of two lines over each peak, three pixels wide. */
QPainterPath crossesAt(const Points& i_peaks)
{
    QPainterPath path;
    for (const c2DPoint<int>& peak : i_peaks) {
        const int x = peak.getX(), y = peak.getY();
        path.moveTo(x - 1, y - 1);
        path.lineTo(x + 2, y + 2);
        path.moveTo(x - 1, y + 2);
        path.lineTo(x + 2, y - 1);
    }
    return path;
}

} // namespace

cFindPeaks3x3Functor::cFindPeaks3x3Functor() { addSupportedInputs(s_variants); }

QVector<c2DPoint<int>> cFindPeaks3x3Functor::operator()(const cImg& i_image) const
{
    frame::checkInput(*this, i_image, s_operator);
    if (m_maxPeaks == 0)
        frame::failBecause("maxPeaks must be > 0 and norm must be < 2.", s_operator);
    constexpr auto greatest = unsigned(std::numeric_limits<int>::max());
    const quint64 pixels = quint64(i_image.getWidth()) * i_image.getHeight();
    const Search search {double(m_threshold), int(std::min({quint64(m_maxPeaks), pixels, quint64(greatest)})),
        IppiNorm(frame::enumValue(staticMetaObject, "ENorm", m_norm)), int(std::min(m_border, greatest))};

    Points peaks;
    if (const Variant* variant = frame::find(s_variants, i_image))
        frame::checkStatus(variant->call(i_image, search, peaks), s_operator);
    return peaks;
}

void cFindPeaks3x3Functor::refreshParams(cObj* i_params)
{
    frame::bindParam(i_params, "threshold", m_threshold);
    frame::bindParam(i_params, "maxPeaks", m_maxPeaks);
    frame::bindParam(i_params, "border", m_border);
    frame::bindEnumParam(i_params, "norm", m_norm, staticMetaObject, "ENorm");
}

/** Gives the peaks as points, and as crosses to draw over the image. */
class cFindPeaks3x3Station
    : public cFunctorStationT<cFindPeaks3x3Functor, QVector<c2DPoint<int>>, cImg, void> {
public:
    cFindPeaks3x3Station() : cFunctorStationT(QStringLiteral("img"), QStringLiteral("peaks"), QString()) {}

protected:
    void process(cBufferT<cImg>* i_buffer) override
    {
        if (!m_out.requestsData() && !m_path.requestsData())
            return;
        const QVector<c2DPoint<int>> peaks = m_functor(i_buffer->getValue());
        m_out.send(peaks, i_buffer->getStamp());
        if (m_path.requestsData())
            m_path.send(crossesAt(peaks), i_buffer->getStamp());
    }

private:
    cOPort<QPainterPath> m_path {this, QStringLiteral("path"), defaultPoolSize<QPainterPath>};
};

static const cStationRegistration<cFindPeaks3x3Station> s_registration("ipp/image/statistics/findpeaks3x3",
    {"Pixels that are above a threshold and greater than each of their neighbours.",
        {{"threshold", "a peak is greater than this, pixel value; truncated on SInt32 images"},
            {"maxPeaks", "the search ends when so many peaks are found"},
            {"border", "rows and columns on each side without peaks, pixels"},
            {"norm", "NormInf: greater than all eight neighbours; NormL1: than the four that share a side"}},
        {"Peaks come row by row, so a small maxPeaks gives the topmost ones, not the highest."}});
#include "moc_cFindPeaks3x3Functor.cpp"
