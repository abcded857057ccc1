#pragma once

#include <tarnbase/export.h>

#include <QtGlobal>

/** Small mathematical helpers, grouped by subject. */
class TARNBASE_EXPORT cMathOP {
public:
    class TARNBASE_EXPORT cTrigonometry {
    public:
        static double rad2deg(double i_radians);
        static double deg2rad(double i_degrees);
    };

    class TARNBASE_EXPORT cStatistic {
    public:
        /**
         * Least and greatest of i_count values, and the index of the first of each where a pointer is given.
         *
         * Values that are not a number are passed over. If there is no value at all, both results are 0 and
         * both indices 0. E is int, float or double.
         */
        template <class E>
        static void minMax(const E* i_values, unsigned int i_count, E& o_min, E& o_max,
            unsigned int* o_minIndex = nullptr, unsigned int* o_maxIndex = nullptr);

        /**
         * A random number from the smaller of the two up to, but without, the greater; if they are equal,
         * that number.
         *
         * May be called from any thread. A process draws the same sequence on each run.
         */
        static double randInRange(double i_low, double i_high);

        /** Starts the sequence of randInRange again. */
        static void seed(quint64 i_seed);
    };
};

extern template TARNBASE_EXPORT void cMathOP::cStatistic::minMax<int>(
    const int*, unsigned int, int&, int&, unsigned int*, unsigned int*);
extern template TARNBASE_EXPORT void cMathOP::cStatistic::minMax<float>(
    const float*, unsigned int, float&, float&, unsigned int*, unsigned int*);
extern template TARNBASE_EXPORT void cMathOP::cStatistic::minMax<double>(
    const double*, unsigned int, double&, double&, unsigned int*, unsigned int*);
