#include "dossier/Rename.h"

#include "core/ProgramInfo.h"
#include "metastock/Master.h"
#include "store/Database.h"

#include <QSet>

namespace vm::dossier {

SimboliArchivi CaricaMS(const QStringList &cartelle)
{
    SimboliArchivi s;
    QSet<QString> visti;
    for (const QString &percorso : cartelle) {
        const auto cartella = metastock::CartellaMS::leggi(percorso);
        if (cartella.stato == metastock::CartellaMS::Stato::CartellaMancante) {
            s.avvisi.append({ QString::fromLatin1(kProgramName),
                QStringLiteral("Cartella ") + percorso + QStringLiteral(" non trovata"), Avviso::Icona::Nessuna,
                false });
            continue;
        }
        for (const metastock::RecordMaster &t : cartella.titoli) {
            if (t.simbolo.isEmpty() || t.inCancellazione() || visti.contains(t.simbolo))
                continue;
            visti.insert(t.simbolo);
            s.simboli.append(t.simbolo);
        }
    }
    return s;
}

std::optional<Avviso> verificaRinomina(
    const QList<store::DossierRow> &dossier, qint64 idTitolo, const QString &nuovoSimbolo)
{
    const QString simbolo = nuovoSimbolo.trimmed();
    if (simbolo.isEmpty()) {
        return Avviso { QString::fromLatin1(kTitoloAnagrafica), QString::fromUtf8(kTestoNessunSimbolo),
            Avviso::Icona::Nessuna, false };
    }
    for (const store::DossierRow &r : dossier) {
        if (r.idTitolo != idTitolo && r.titolo.trimmed() == simbolo) {
            return Avviso { QString::fromLatin1(kTitoloAnagrafica),
                QStringLiteral("Il simbolo ") + simbolo + QStringLiteral(" appartiene già al titolo ") + r.descrizione
                    + QStringLiteral(" del dossier: scegliere un altro simbolo. Nessuna modifica è stata fatta."),
                Avviso::Icona::Esclamazione, false };
        }
    }
    return std::nullopt;
}

std::optional<Avviso> rinominaTitolo(
    store::Database &db, qint64 idTitolo, const QString &nuovoSimbolo, const QString &nuovoNome)
{
    const QString simbolo = nuovoSimbolo.trimmed();
    if (db.renameTitle(idTitolo, simbolo, nuovoNome.trimmed()))
        return std::nullopt;
    QString testo;
    switch (db.lastError().number) {
    case store::ErrDuplicateKey:
        testo = QStringLiteral("Il simbolo ") + simbolo
            + QStringLiteral(" appartiene già a un altro titolo del dossier. Nessuna modifica è stata fatta.");
        break;
    case store::ErrNoRecord:
        testo = QStringLiteral("Il titolo non è più presente nel dossier.");
        break;
    default:
        testo = db.lastError().message + QStringLiteral("\nNessuna modifica è stata fatta.");
        break;
    }
    return Avviso { QString::fromLatin1(kTitoloAnagrafica), testo, Avviso::Icona::Critica, false };
}

QString testoConfermaRimozione(const QString &nome)
{
    return QStringLiteral("Attenzione! Il titolo ") + nome + QStringLiteral(" sarà rimosso dal dosssier, confermi?");
}

std::optional<Avviso> rimuoviTitolo(store::Database &db, qint64 idTitolo)
{
    if (db.deleteTitle(idTitolo))
        return std::nullopt;
    return Avviso { QString::fromLatin1(kTitoloRimozioneTitolo),
        db.lastError().message + QStringLiteral("\nIl titolo non è stato rimosso."), Avviso::Icona::Critica, false };
}

} // namespace vm::dossier
