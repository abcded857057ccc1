#pragma once

#include <tarnbase/export.h>

#include <QMetaType>

/** A colour of four bytes, in the order of an RGB pixel with alpha in memory; opaque unless told otherwise.
 */
class TARNBASE_EXPORT cRgba {
public:
    constexpr cRgba() = default;
    constexpr cRgba(
        unsigned char i_red, unsigned char i_green, unsigned char i_blue, unsigned char i_alpha = 255)
        : m_red(i_red),
          m_green(i_green),
          m_blue(i_blue),
          m_alpha(i_alpha)
    {
    }

    constexpr unsigned char getRed() const { return m_red; }
    constexpr unsigned char getGreen() const { return m_green; }
    constexpr unsigned char getBlue() const { return m_blue; }
    constexpr unsigned char getAlpha() const { return m_alpha; }

    friend constexpr bool operator==(const cRgba&, const cRgba&) = default;

private:
    unsigned char m_red = 0;
    unsigned char m_green = 0;
    unsigned char m_blue = 0;
    unsigned char m_alpha = 255;
};

Q_DECLARE_METATYPE(cRgba)
