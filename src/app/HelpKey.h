#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QWidget;

namespace vm {

class MainWindow;

// F1 anywhere in the program opens the help topic of the window it was pressed in: the window's
// objectName names its topic (the main window's active view counts as the window). Installed on the
// application, it takes F1 before any shortcut does.
class HelpKey : public QObject
{
    Q_OBJECT
public:
    using ShowTopic = std::function<void(QWidget *window, const QString &objectName)>;
    HelpKey(MainWindow &mainWindow, ShowTopic showTopic);

    // The name whose topic F1 opens, for the widget holding the focus.
    QString windowName(QWidget *widget) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    MainWindow &m_mainWindow;
    ShowTopic m_showTopic;
};

} // namespace vm
