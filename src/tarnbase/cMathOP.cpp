#include <tarnbase/cMathOP.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <type_traits>

namespace {

template <class E> bool isNumber(E i_value)
{
    if constexpr (std::is_floating_point_v<E>)
        return !std::isnan(i_value);
    else
        return true;
}

template <class E> unsigned int indexOf(const E* i_values, unsigned int i_count, E i_value)
{
    return static_cast<unsigned int>(std::find(i_values, i_values + i_count, i_value) - i_values);
}

constexpr quint64 s_step = 0x9e3779b97f4a7c15u;
std::atomic<quint64> s_state {0};

// The state only counts on, so that threads never wait; the mixing makes random bits of it.
quint64 nextRandom()
{
    quint64 bits = s_state.fetch_add(s_step, std::memory_order_relaxed) + s_step;
    bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9u;
    bits = (bits ^ (bits >> 27)) * 0x94d049bb133111ebu;
    return bits ^ (bits >> 31);
}

} // namespace

double cMathOP::cTrigonometry::rad2deg(double i_radians) { return i_radians * (180.0 / M_PI); }
double cMathOP::cTrigonometry::deg2rad(double i_degrees) { return i_degrees * (M_PI / 180.0); }

template <class E>
void cMathOP::cStatistic::minMax(const E* i_values, unsigned int i_count, E& o_min, E& o_max,
    unsigned int* o_minIndex, unsigned int* o_maxIndex)
{
    const E* const end = i_values + i_count;
    const E* const first = std::find_if(i_values, end, isNumber<E>);
    E low {};
    E high {};
    if (first != end) {
        // Independent lanes, so that the loop becomes vector code. A value that is no number compares false
        // and is gone.
        constexpr int lanes = 16;
        E lows[lanes];
        E highs[lanes];
        std::fill_n(lows, lanes, *first);
        std::fill_n(highs, lanes, *first);
        const E* value = first;
        for (; end - value >= lanes; value += lanes) {
            for (int lane = 0; lane < lanes; ++lane) {
                lows[lane] = value[lane] < lows[lane] ? value[lane] : lows[lane];
                highs[lane] = value[lane] > highs[lane] ? value[lane] : highs[lane];
            }
        }
        for (; value != end; ++value) {
            lows[0] = *value < lows[0] ? *value : lows[0];
            highs[0] = *value > highs[0] ? *value : highs[0];
        }
        low = *std::min_element(lows, lows + lanes);
        high = *std::max_element(highs, highs + lanes);
    }
    o_min = low;
    o_max = high;
    if (o_minIndex != nullptr)
        *o_minIndex = first != end ? indexOf(i_values, i_count, low) : 0;
    if (o_maxIndex != nullptr)
        *o_maxIndex = first != end ? indexOf(i_values, i_count, high) : 0;
}

template void cMathOP::cStatistic::minMax<int>(
    const int*, unsigned int, int&, int&, unsigned int*, unsigned int*);
template void cMathOP::cStatistic::minMax<float>(
    const float*, unsigned int, float&, float&, unsigned int*, unsigned int*);
template void cMathOP::cStatistic::minMax<double>(
    const double*, unsigned int, double&, double&, unsigned int*, unsigned int*);

double cMathOP::cStatistic::randInRange(double i_low, double i_high)
{
    const double low = std::min(i_low, i_high);
    const double high = std::max(i_low, i_high);
    const double fraction = double(nextRandom() >> 11) * 0x1p-53;
    const double value = low + fraction * (high - low);
    return value < high ? value : low; // rounding can reach the end
}

void cMathOP::cStatistic::seed(quint64 i_seed) { s_state.store(i_seed); }
