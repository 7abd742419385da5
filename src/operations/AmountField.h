#pragma once

#include "operations/Importi.h"

#include <QObject>

class QLineEdit;

namespace vm::operations {

// Makes a QLineEdit an amount field: every typed key goes through filtraTasto() (Enter moves to the next field,
// "." becomes "," in the net price, a second comma goes, digits only in a quantity), and pasted or dropped text
// through filtraTesto(), so the field never holds what the keyboard could not have typed.
class AmountField : public QObject
{
    Q_OBJECT
public:
    static void install(QLineEdit *field, CampoImporto campo);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    AmountField(QLineEdit *field, CampoImporto campo);
    QLineEdit *m_field;
    CampoImporto m_campo;
};

} // namespace vm::operations
