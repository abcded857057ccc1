#pragma once

#include <tarnbase/cRect.h>

#include <QtGlobal>
#include <algorithm>

/** A rectangle within an image, in 64 bits: an image may be wider than an int. */
struct cImgArea {
    qint64 left = 0;
    qint64 top = 0;
    qint64 width = 0;
    qint64 height = 0;

    static cImgArea whole(unsigned i_width, unsigned i_height) { return {0, 0, i_width, i_height}; }

    /** The part of the rectangle (any numbers) that lies within an image; all zeros if none does. */
    static cImgArea within(
        qint64 i_left, qint64 i_top, qint64 i_right, qint64 i_bottom, unsigned i_width, unsigned i_height)
    {
        cImgArea area;
        area.left = std::max<qint64>(i_left, 0);
        area.top = std::max<qint64>(i_top, 0);
        area.width = std::min<qint64>(i_right, i_width) - area.left;
        area.height = std::min<qint64>(i_bottom, i_height) - area.top;
        return area.width > 0 && area.height > 0 ? area : cImgArea();
    }

    static cImgArea within(const cRect<int>& i_rect, unsigned i_width, unsigned i_height)
    {
        return within(
            i_rect.getLeft(), i_rect.getTop(), i_rect.getRight(), i_rect.getBottom(), i_width, i_height);
    }
};
