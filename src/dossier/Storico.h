#pragma once

// The portfolio history: the day's value of the dossier is recorded when no record holds it yet.

#include "dossier/Valuation.h"

#include <QDate>

namespace vm::store {
class Database;
}

namespace vm::dossier {

enum class EsitoStorico {
    Registrato, // a record (day, purchase total, current total) was added
    GiaRegistrato, // a record holds the same current total to the cent, whatever its day
    TotaleNullo, // a current total of 0 (no titles, or none found) is never recorded
    Errore, // the database refused: its lastError() says why
};

// Records the totals of a valuation as the overview shows them, with the day given. One record per
// distinct current total: the same total on another day adds nothing, a new total on the same day adds
// a second record for that day.
EsitoStorico Storico(store::Database &db, const TotaliDossier &totali, const QDate &oggi);

} // namespace vm::dossier
