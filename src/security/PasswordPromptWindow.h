#pragma once

#include "security/PasswordWindow.h"

namespace vm::security {

// "Form8": the prompt that stands before a protected dossier.
class PasswordPromptWindow : public MainWindowBlocker
{
    Q_OBJECT
public:
    static PasswordPromptWindow *open(const WindowContext &context);
    static PasswordPromptWindow *instance();

private:
    explicit PasswordPromptWindow(const WindowContext &context);
    friend class SingleWindow<PasswordPromptWindow>;
    void confirm(); // Command1

    QLineEdit *m_answer = nullptr; // Text1
};

} // namespace vm::security
