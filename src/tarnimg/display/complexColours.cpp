#include "display/complexColours.h"

#include "display/complexRows.h"

#include <customipp/customipp.h>
#include <tarnimg/cImg.h>

#include <QColor>
#include <QImage>
#include <QVector>
#include <algorithm>
#include <limits>

namespace display {

namespace {

/** The colours of all hues and values, and that of what is no number. */
const QVector<QRgb>& colourTable()
{
    static const QVector<QRgb> s_table = [] {
        QVector<QRgb> table(ComplexRowTable::s_noColour + 1);
        for (int i = 0; i < ComplexRowTable::s_noColour; ++i)
            table[i] = QColor::fromHsv(i / 256, 255, i % 256, 255).rgb();
        table[ComplexRowTable::s_noColour] = 0xFF000000;
        return table;
    }();
    return s_table;
}

/** A few pixels on their way, which stay in the first-level cache. */
class Segment {
public:
    static constexpr int s_greatest = 1024;

    /** Magnitudes and angles of the numbers, or of their logarithms, multiplied by the factor. */
    void load(const unsigned char* i_numbers, int i_count, bool i_useLog, Ipp32f i_factor)
    {
        m_size = {i_count, 1};
        const auto* numbers = reinterpret_cast<const Ipp32fc*>(i_numbers);
        if (i_useLog) {
            measure(numbers);
            ippiLn_32f_C1IR(m_magnitudes, s_floats, m_size); // 0 becomes minus infinity
            complexRowTable().combine(m_magnitudes, m_phases, i_factor, m_numbers, std::size_t(i_count));
            numbers = m_numbers;
        } else if (i_factor != 1.0f) {
            for (int x = 0; x < i_count; ++x)
                m_numbers[x] = {numbers[x].re * i_factor, numbers[x].im * i_factor};
            numbers = m_numbers;
        }
        measure(numbers);
    }

    float greatestMagnitude(float i_atLeast) const
    {
        float least = 0.0f, greatest = 0.0f;
        ippiMinMax_32f_C1R(m_magnitudes, s_floats, m_size, &least, &greatest);
        return greatest > i_atLeast ? greatest : i_atLeast; // NaN, of no numbers at all, is not greater
    }

    void store(double i_scale, QRgb* o_colours)
    {
        complexRowTable().colourIndices(
            m_magnitudes, m_phases, i_scale, m_indices, std::size_t(m_size.width));
        const QRgb* table = colourTable().constData();
        for (int x = 0; x < m_size.width; ++x)
            o_colours[x] = table[m_indices[x]];
    }

private:
    static constexpr int s_floats = s_greatest * int(sizeof(Ipp32f));

    void measure(const Ipp32fc* i_numbers)
    {
        constexpr int step = s_greatest * int(sizeof(Ipp32fc));
        ippiMagnitude_32fc32f_C1R(i_numbers, step, m_magnitudes, s_floats, m_size);
        ippiPhase_32fc32f_C1R(i_numbers, step, m_phases, s_floats, m_size);
    }

    IppiSize m_size {};
    alignas(64) Ipp32f m_magnitudes[s_greatest];
    alignas(64) Ipp32f m_phases[s_greatest];
    alignas(64) Ipp32fc m_numbers[s_greatest];
    alignas(64) qint32 m_indices[s_greatest];
};

const unsigned char* pixelOf(const cImg& i_image, qint64 i_x, qint64 i_y)
{
    return i_image.getConstData() + i_y * qint64(i_image.getYPitch()) + i_x * qint64(sizeof(Ipp32fc));
}

/** Calls an operation with first pixel and number of pixels of the pieces of a row. */
template <class Op> void inSegments(qint64 i_count, const Op& i_op)
{
    for (qint64 x = 0; x < i_count; x += Segment::s_greatest)
        i_op(x, int(std::min<qint64>(Segment::s_greatest, i_count - x)));
}

double scaleOf(const cImg& i_image, const ComplexColours& i_how)
{
    Segment segment;
    float greatest = -1.0f;
    for (qint64 y = 0; y < i_image.getHeight(); ++y)
        inSegments(i_image.getWidth() / 2, [&](qint64 x, int count) {
            segment.load(pixelOf(i_image, x, y), count, i_how.useLog, float(i_how.factor));
            greatest = segment.greatestMagnitude(greatest);
        });
    // One column has no left half.
    return (greatest >= 0.0f ? double(greatest) : std::numeric_limits<double>::lowest()) / 255.0;
}

} // namespace

void renderComplexColours(const cImg& i_image, const ComplexColours& i_how, QImage& io_picture)
{
    const double scale = scaleOf(i_image, i_how);
    const qint64 width = i_image.getWidth();
    const qint64 half = i_image.getHeight() / 2;
    const qint64 rows = i_how.moveCenter ? 2 * half : i_image.getHeight();
    const qint64 shift = i_how.moveCenter ? width / 2 : 0;
    Segment segment;
    for (qint64 y = 0; y < rows; ++y) {
        const qint64 from = !i_how.moveCenter ? y : y < half ? y + half : y - half;
        auto* to = reinterpret_cast<QRgb*>(io_picture.scanLine(int(y)));
        const auto render = [&](qint64 i_source, qint64 i_count, QRgb* o_colours) {
            inSegments(i_count, [&](qint64 x, int count) {
                segment.load(pixelOf(i_image, i_source + x, from), count, i_how.useLog, 1.0f);
                segment.store(scale, o_colours + x);
            });
        };
        render(shift, width - shift, to);
        render(0, shift, to + (width - shift));
    }
    for (qint64 y = rows; y < i_image.getHeight(); ++y)
        std::fill_n(reinterpret_cast<QRgb*>(io_picture.scanLine(int(y))), width, 0xFF000000);
}

} // namespace display
