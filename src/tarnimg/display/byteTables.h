#pragma once

#include <customipp/customipp.h>

#include <QVarLengthArray>
#include <QVector>
#include <initializer_list>

namespace display {

/** Bytes through tables of 256 values, one table for each channel of interleaved pixels. */
class ByteTables {
public:
    /**
     * The values are limited to bytes and copied.
     * @param i_values for each channel, 1, 3 or 4
     * @param i_levels 0 to 255
     */
    ByteTables(std::initializer_list<const int*> i_values, const int* i_levels);

    /** Maps pixels where they are. */
    void map(Ipp8u* io_pixels, int i_step, IppiSize i_size) const;

private:
    IppiLUT_Spec* specification() const { return reinterpret_cast<IppiLUT_Spec*>(m_specification.data()); }

    int m_channels;
    mutable QVarLengthArray<Ipp8u, 1280> m_specification; ///< is only read after it was made
};

/** 0 to 255. */
QVector<int> everyByte();

} // namespace display
