#include "operations/AveragePrice.h"

#include "core/Format.h"

namespace vm::operations {

namespace {

// The price as "###,##0.0##" shows it, read back and kept as a single.
double arrotondato(double prezzo)
{
    const double mostrato = parseNumber(formatPattern(prezzo, u"###,##0.0##")).value_or(0.0);
    return double(float(mostrato));
}

double caricoSingolo(double prezzo, qint64 qta)
{
    return double(float(double(qta) * prezzo));
}

} // namespace

double prezzoMedioDopoAcquisto(double prezzo, qint64 qta, double prezzoNetto, qint64 quantita)
{
    const double nuovaQta = double(float(double(quantita + qta)));
    if (nuovaQta == 0)
        return prezzo; // nothing held before or after: nothing to average
    return arrotondato((prezzoNetto * double(quantita) + caricoSingolo(prezzo, qta)) / nuovaQta);
}

double prezzoMedioDopoVendita(double prezzo, qint64 qta, double prezzoNetto, qint64 quantita)
{
    const double rimanenti = double(float(double(qta - quantita)));
    if (rimanenti <= 0)
        return 0;
    return arrotondato((caricoSingolo(prezzo, qta) - prezzoNetto * double(quantita)) / rimanenti);
}

} // namespace vm::operations
