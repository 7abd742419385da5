#pragma once

#include <QDialog>

class QLineEdit;

namespace vm {
class MainWindow;
}

namespace vm::aux {

// "Form12", the tools window: where the companion download program is, stored as the user types.
class Form12 : public QDialog
{
    Q_OBJECT
public:
    // The one instance, created on first use and destroyed when closed.
    explicit Form12(QWidget *owner);

    static Form12 *instance();
    static Form12 *load();

    // The path a picker returned is the companion program only when it ends in this name,
    // letter case included.
    static bool isCompanionProgram(const QString &path);

private:
    void browse();
    void store(const QString &path);

    QLineEdit *m_text1 = nullptr;
};

// The main window's "&Impostazioni.." opens the tools window.
void installTools(MainWindow &mainWindow);

} // namespace vm::aux
