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
            s.avvisi.append({ QStringLiteral("Cartella ") + percorso + QStringLiteral(" non trovata"),
                QString::fromLatin1(kProgramName), MessageIcon::None });
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

std::optional<Message> verificaRinomina(
    const QList<store::DossierRow> &dossier, qint64 idTitolo, const QString &nuovoSimbolo)
{
    const QString simbolo = nuovoSimbolo.trimmed();
    if (simbolo.isEmpty()) {
        return Message { QString::fromUtf8(kTestoNessunSimbolo), QString::fromLatin1(kTitoloAnagrafica),
            MessageIcon::None };
    }
    for (const store::DossierRow &r : dossier) {
        if (r.idTitolo != idTitolo && r.titolo.trimmed() == simbolo) {
            return Message { QStringLiteral("Il simbolo ") + simbolo + QStringLiteral(" appartiene già al titolo ")
                    + r.descrizione
                    + QStringLiteral(" del dossier: scegliere un altro simbolo. Nessuna modifica è stata fatta."),
                QString::fromLatin1(kTitoloAnagrafica), MessageIcon::Exclamation };
        }
    }
    return std::nullopt;
}

std::optional<Message> rinominaTitolo(
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
    return Message { testo, QString::fromLatin1(kTitoloAnagrafica), MessageIcon::Critical };
}

QString testoConfermaRimozione(const QString &nome)
{
    return QStringLiteral("Attenzione! Il titolo ") + nome + QStringLiteral(" sarà rimosso dal dosssier, confermi?");
}

std::optional<Message> rimuoviTitolo(store::Database &db, qint64 idTitolo)
{
    if (db.deleteTitle(idTitolo))
        return std::nullopt;
    return Message { db.lastError().message + QStringLiteral("\nIl titolo non è stato rimosso."),
        QString::fromLatin1(kTitoloRimozioneTitolo), MessageIcon::Critical };
}

} // namespace vm::dossier
