#pragma once

#include <QDialog>

class QLineEdit;

namespace vm {
class SettingsFile;
}

namespace vm::aux {

// "Form12", the tools window: where the companion download program is, stored as the user types.
class ToolsWindow : public QDialog
{
    Q_OBJECT
public:
    // The one instance, created on first use and destroyed when closed.
    ToolsWindow(const SettingsFile &settings, QWidget *owner);

    static ToolsWindow *instance();
    static ToolsWindow *open(const SettingsFile &settings, QWidget *owner);

    // The path a picker returned is the companion program only when it ends in this name,
    // letter case included.
    static bool isCompanionProgram(const QString &path);

private:
    void browse();
    void store(const QString &path);

    const SettingsFile &m_settings;
    QLineEdit *m_text1 = nullptr;
};

} // namespace vm::aux
