#pragma once

// "Form1": gives a title of the dossier a new symbol from the archives and a new name, in the dossier,
// its operations and giornata at once.

#include "gui/SingleWindow.h"
#include "gui/WindowContext.h"
#include "store/Records.h"

#include <QWidget>

#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;

namespace vm::dossier {

class RenameTitleWindow : public QWidget
{
    Q_OBJECT
public:
    // Opens the one instance on a title (found by its symbol, or only the symbol when the seek failed).
    // A title renamed is announced with DataEvents::titleRenamed.
    static RenameTitleWindow *open(
        const WindowContext &context, const std::optional<store::DossierRow> &titolo, const QString &simbolo);
    static RenameTitleWindow *instance();

    void conferma(); // Command1

private:
    friend class SingleWindow<RenameTitleWindow>;
    explicit RenameTitleWindow(const WindowContext &context);
    void carica(const std::optional<store::DossierRow> &titolo, const QString &simbolo);

    WindowContext m_context;
    QLabel *m_simbolo = nullptr; // Label2
    QLabel *m_nome = nullptr; // Label7
    QLabel *m_id = nullptr; // Label5, hidden
    QComboBox *m_nuovoSimbolo = nullptr; // Combo1
    QLineEdit *m_nuovoNome = nullptr; // Text1
};

} // namespace vm::dossier
