#include "app/Screenshot.h"

#include "auxiliary/SplashWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <memory>

namespace vm {

void saveScreenshotWhenSettled(QWidget *window, const QString &file, int maxWaitMs)
{
    auto *poll = new QTimer(qApp);
    auto started = std::make_shared<QElapsedTimer>();
    started->start();
    QObject::connect(
        poll, &QTimer::timeout, qApp, [poll, started, target = QPointer<QWidget>(window), file, maxWaitMs] {
            const bool settled = !aux::SplashWindow::instance() && !QApplication::activeModalWidget();
            if (!settled && started->elapsed() < maxWaitMs)
                return;
            poll->stop();
            poll->deleteLater();
            const bool saved = target && target->grab().save(file);
            QCoreApplication::exit(saved ? 0 : 1);
        });
    // A little after the last change, so that the window has painted what the check wrote.
    poll->start(500);
}

} // namespace vm
