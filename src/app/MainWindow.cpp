#include "app/MainWindow.h"

#include "app/AppInfo.h"

namespace vm {

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    setObjectName(QStringLiteral("MDIForm1"));
    setWindowTitle(QString::fromLatin1(kProgramName));
}

} // namespace vm
