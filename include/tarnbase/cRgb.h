#pragma once

#include <tarnbase/export.h>

#include <QMetaType>

/** A colour of three bytes, in the order of an RGB pixel in memory. */
class TARNBASE_EXPORT cRgb {
public:
    constexpr cRgb() = default;
    constexpr cRgb(unsigned char i_red, unsigned char i_green, unsigned char i_blue)
        : m_red(i_red),
          m_green(i_green),
          m_blue(i_blue)
    {
    }

    constexpr unsigned char getRed() const { return m_red; }
    constexpr unsigned char getGreen() const { return m_green; }
    constexpr unsigned char getBlue() const { return m_blue; }

    friend constexpr bool operator==(const cRgb&, const cRgb&) = default;

private:
    unsigned char m_red = 0;
    unsigned char m_green = 0;
    unsigned char m_blue = 0;
};

Q_DECLARE_METATYPE(cRgb)
