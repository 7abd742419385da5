#include "operations/AmountField.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>

namespace vm::operations {

void AmountField::install(QLineEdit *field, CampoImporto campo)
{
    field->installEventFilter(new AmountField(field, campo));
}

AmountField::AmountField(QLineEdit *field, CampoImporto campo)
    : QObject(field)
    , m_field(field)
    , m_campo(campo)
{
    connect(field, &QLineEdit::textEdited, this, [this](const QString &text) {
        const QString filtrato = filtraTesto(m_campo, text);
        if (filtrato != text)
            m_field->setText(filtrato);
    });
}

bool AmountField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_field || event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    auto *key = static_cast<QKeyEvent *>(event);
    // Shortcuts (copy, paste, undo, select all) keep their meaning; a paste is filtered by textEdited.
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;

    QChar tasto;
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
        tasto = kTastoInvio;
    else if (key->key() == Qt::Key_Backspace)
        tasto = kTastoIndietro;
    else if (key->text().size() == 1 && key->text().at(0).isPrint())
        tasto = key->text().at(0);
    else
        return false; // arrows, Delete, Home, Tab: as any field

    const int inizio = m_field->hasSelectedText() ? m_field->selectionStart() : m_field->cursorPosition();
    const int lunghezza = m_field->hasSelectedText() ? int(m_field->selectedText().size()) : 0;
    const EsitoTasto esito = filtraTasto(m_campo, m_field->text(), inizio, lunghezza, tasto);
    if (esito.campoSuccessivo) {
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QCoreApplication::sendEvent(m_field, &tab);
        return true;
    }
    if (esito.accettato && esito.testo != m_field->text()) {
        m_field->setText(esito.testo);
        m_field->setCursorPosition(esito.cursore);
    } else if (esito.accettato) {
        m_field->setCursorPosition(esito.cursore);
    }
    return true;
}

} // namespace vm::operations
