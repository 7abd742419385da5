#include "gui/ProgressBar.h"

#include <QPainter>

namespace vm {

int progressPercent(qint64 step, qint64 total)
{
    if (total <= 0)
        return 0;
    const qint64 p = step * 100 / total;
    return static_cast<int>(std::clamp<qint64>(p, 0, 100));
}

ProgressBar::ProgressBar(QWidget *parent)
    : QWidget(parent)
{
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::white);
    pal.setColor(QPalette::WindowText, Qt::black);
    setPalette(pal);
}

void ProgressBar::setProgress(qint64 step, qint64 total)
{
    m_percent = progressPercent(step, total);
    m_shown = true;
    repaint();
}

void ProgressBar::clear()
{
    m_percent = 0;
    m_shown = false;
    repaint();
}

QString ProgressBar::text() const
{
    return m_shown ? QString::number(m_percent) + QLatin1Char('%') : QString();
}

QSize ProgressBar::sizeHint() const
{
    return { 200, fontMetrics().height() + 6 };
}

void ProgressBar::paintEvent(QPaintEvent *)
{
    if (!m_shown)
        return;
    QPainter p(this);
    p.setPen(palette().color(QPalette::WindowText));
    p.drawText(rect(), Qt::AlignCenter, text());
    // Exclusive-or turns the white background under the bar dark blue and the black text over it
    // light yellow, so the digits stay readable wherever the bar ends.
    p.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
    p.fillRect(QRect(0, 0, width() * m_percent / 100, height()), QColor(0xff, 0xff, 0x7f));
}

} // namespace vm
