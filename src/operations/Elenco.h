#pragma once

// The titles the new-title window offers: every title of every configured archive folder, with its symbol
// and its price file, and the last price of the one chosen.

#include "metastock/Master.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace vm::operations {

// CaricaElenco's three parallel lists (Combo1, List2, List1), plus the field count each price file needs.
struct ElencoTitoli {
    QStringList descrizioni; // Combo1
    QStringList simboli; // List2: the dossier key
    QStringList percorsi; // List1: the price file; empty when the folder does not hold it
    QList<int> campi;

    qsizetype size() const { return descrizioni.size(); }
};

// The folders in the order of table `directory`, each folder's MASTER titles then its XMASTER titles; a symbol
// met again in a later folder is left out (the valuation would find the first one anyway), as are records
// being removed and titles without a symbol. Folders that cannot be read are skipped and named in
// *cartelleMancanti. The lists come sorted by description, which is how a user looks for a title among
// hundreds, the three kept in step.
ElencoTitoli CaricaElenco(metastock::ArchivioMS &archivio, QStringList *cartelleMancanti = nullptr);

// Label16: the last close written as a locale-independent conversion writes it (a leading blank for a
// positive number, "." as decimal point), "   data " and its date "dd/mm/yyyy". None when the file has no
// quote or cannot be read.
std::optional<QString> ultimoPrezzo(const QString &percorsoPrezzi, int campi);

} // namespace vm::operations
