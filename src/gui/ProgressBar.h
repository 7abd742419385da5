#pragma once

#include <QWidget>

namespace vm {

// The percentage of step against total, whole, clamped to 0..100; 0 when the total is 0.
int progressPercent(qint64 step, qint64 total);

// The progress bar every long loop draws: the percentage followed by "%" centred over a bar that
// fills the left part of the box in proportion. The bar is drawn by exclusive-or over the text,
// so the part of the text over the bar shows in the inverse colour and stays readable.
class ProgressBar : public QWidget
{
    Q_OBJECT
public:
    explicit ProgressBar(QWidget *parent = nullptr);

    // Redraws at once, so loops that do not return to the event loop still show progress.
    void setProgress(qint64 step, qint64 total);
    void clear();
    int percent() const { return m_percent; }
    QString text() const; // "42%"; empty after clear()

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_percent = 0;
    bool m_shown = false;
};

} // namespace vm
