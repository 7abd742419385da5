#pragma once

#include <QtGlobal>

namespace vm::operations {

// The average load price per share that a title's row carries after an operation. The amount held
// (quantity × price) is kept in single precision and the new price is rounded as "###,##0.0##" shows it
// (three decimals at most, halves away from zero) and kept in single precision too, so that the stored
// price is the one the purchase and sale windows show.

// After a further purchase of `quantita` shares at `prezzoNetto`: 100 at 10 plus 50 at 13 gives 11. With no share
// before or after, the price unchanged.
double prezzoMedioDopoAcquisto(double prezzo, qint64 qta, double prezzoNetto, qint64 quantita);

// After a sale of `quantita` of the `qta` shares at `prezzoNetto`: the remaining shares carry what the sale
// did not recover (100 at 10, selling 40 at 12, leaves 60 at 8,667). A sale that recovers more than the cost
// gives a negative price. Selling every share leaves no price: 0.
double prezzoMedioDopoVendita(double prezzo, qint64 qta, double prezzoNetto, qint64 quantita);

} // namespace vm::operations
