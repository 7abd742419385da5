#pragma once

#include <QFontMetrics>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace vm {

// The program's sizes are written in twips, as its documentation gives them: 15 twips to a pixel on the
// classic screen, whose 8-point system font was 13 pixels high. Widths and heights drawn in text scale with the
// font in use, so that a larger font, another style or a high-density screen never clips a figure or a caption.
constexpr int px(int twips)
{
    return twips / 15;
}

inline int twips(const QFontMetrics &metrics, int twips)
{
    return int(std::lround(twips / 15.0 * std::max(1.0, metrics.height() / 13.0)));
}

inline int twips(const QWidget *widget, int value)
{
    return twips(widget->fontMetrics(), value);
}

// A window's documented size as its minimum at the font in use.
inline void setMinimumTwips(QWidget *widget, int width, int height)
{
    widget->setMinimumSize(twips(widget, width), twips(widget, height));
}

} // namespace vm
