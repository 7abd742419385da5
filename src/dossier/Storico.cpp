#include "dossier/Storico.h"

#include "store/Database.h"

namespace vm::dossier {

EsitoStorico Storico(store::Database &db, const TotaliDossier &totali, const QDate &oggi)
{
    if (totali.valoreAttuale == 0)
        return EsitoStorico::TotaleNullo;
    if (db.findStoricoByAttuale(totali.valoreAttuale))
        return EsitoStorico::GiaRegistrato;
    if (db.lastError().failed())
        return EsitoStorico::Errore;
    store::StoricoRow riga;
    riga.data = oggi;
    riga.carico = totali.valoreAcquisto;
    riga.attuale = totali.valoreAttuale;
    return db.insertStorico(riga) ? EsitoStorico::Registrato : EsitoStorico::Errore;
}

} // namespace vm::dossier
