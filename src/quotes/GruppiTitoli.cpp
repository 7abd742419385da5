#include "quotes/GruppiTitoli.h"

#include "metastock/Master.h"
#include "store/Database.h"

#include <QSet>

namespace vm::quotes {

namespace {

Message avviso(const QString &testo, MessageIcon icona = MessageIcon::None,
    const QString &titolo = QString::fromUtf8(kTitoloGruppi))
{
    return { testo, titolo, icona };
}

Message avvisoErrore(const store::Database &db)
{
    return avviso(db.lastError().message, MessageIcon::Critical);
}

store::GruppoRow riga(const QString &gruppo, const TitoloOfferto &t)
{
    store::GruppoRow r;
    r.gruppo = gruppo;
    r.simbolo = t.simbolo.trimmed();
    r.titolo = t.nome.trimmed();
    return r;
}

} // namespace

QString testoSelezionati(int selezionati)
{
    return QStringLiteral("Selezionati: ") + QString::number(selezionati);
}

QString messaggioGruppoCreato(const QString &gruppo)
{
    return QStringLiteral("Il gruppo ") + gruppo + QStringLiteral(" è stato creato.");
}

QString domandaRimozioneGruppo(const QString &gruppo)
{
    return QStringLiteral("ATTENZIONE!, si è deciso di rimuove il gruppo ") + gruppo + QStringLiteral("  Confermi ?");
}

ElencoTitoli CaricaMS(const QStringList &cartelle)
{
    ElencoTitoli e;
    for (const QString &percorso : cartelle) {
        const metastock::CartellaMS c = metastock::CartellaMS::leggi(percorso);
        if (c.stato == metastock::CartellaMS::Stato::CartellaMancante) {
            e.avvisi.append(avviso(QStringLiteral("Non trovo la directory ") + percorso));
            continue;
        }
        if (!c.haMaster()) {
            e.avvisi.append(
                avviso(QStringLiteral("La cartella ") + percorso + QStringLiteral(" non contiene dati metastock."),
                    MessageIcon::None, QString::fromUtf8(kTitoloNoMetastock)));
            continue;
        }
        for (const metastock::RecordMaster &t : c.titoli)
            e.titoli.append({ t.simbolo, t.nome, c.percorso });
    }
    return e;
}

std::optional<Message> controllaSelezione(int giaSelezionati)
{
    if (giaSelezionati + 1 > kMassimoTitoliGruppo)
        return avviso(QString::fromUtf8(kMessaggioOltre40Selezionati));
    return std::nullopt;
}

QString chiaveNodo(const store::GruppoRow &riga)
{
    return riga.simbolo.trimmed() + QString::number(riga.id);
}

std::optional<QList<NodoGruppo>> CaricaGruppi(store::Database &db)
{
    const auto gruppi = db.groups();
    if (!gruppi)
        return std::nullopt;
    QList<NodoGruppo> albero;
    albero.reserve(gruppi->size());
    for (const QString &g : *gruppi) {
        const auto righe = db.titlesOfGroup(g);
        if (!righe)
            return std::nullopt;
        NodoGruppo nodo { g, {} };
        for (const store::GruppoRow &r : *righe)
            nodo.titoli.append({ r.id, r.titolo, r.simbolo, chiaveNodo(r) });
        albero.append(nodo);
    }
    return albero;
}

EsitoGruppi creaGruppo(store::Database &db, const QString &nomeScritto, const QList<TitoloOfferto> &selezionati)
{
    EsitoGruppi e;
    const QString nome = nomeScritto.trimmed();
    if (nome.isEmpty()) {
        e.avvisi.append(avviso(QString::fromUtf8(kMessaggioNomeVuoto)));
        e.focusNome = true;
        return e;
    }
    if (db.groupExists(nome)) {
        e.avvisi.append(avviso(QString::fromUtf8(kMessaggioGruppoPresente)));
        return e;
    }
    if (db.lastError().failed()) {
        e.avvisi.append(avvisoErrore(db));
        return e;
    }
    if (selezionati.isEmpty()) {
        e.avvisi.append(avviso(QString::fromUtf8(kMessaggioNessunSelezionato), MessageIcon::Exclamation,
            QString::fromUtf8(kTitoloGruppoNonCreato)));
        e.focusNome = true;
        return e;
    }

    const qsizetype daScrivere = std::min<qsizetype>(selezionati.size(), kMassimoTitoliGruppo);
    QList<store::GruppoRow> righe;
    righe.reserve(daScrivere);
    for (qsizetype i = 0; i < daScrivere; ++i)
        righe.append(riga(nome, selezionati.at(i)));
    // Asked again inside the change: another editor may have made the group since the question above.
    bool presente = false;
    const bool scritto = db.transaction([&] {
        presente = db.groupExists(nome);
        return !presente && !db.lastError().failed() && db.addGroup(nome, righe).has_value();
    });
    if (!scritto) {
        e.avvisi.append(presente ? avviso(QString::fromUtf8(kMessaggioGruppoPresente)) : avvisoErrore(db));
        return e;
    }
    e.scritto = true;
    for (int i = 0; i < daScrivere; ++i)
        e.salvati.append(i);
    if (selezionati.size() > kMassimoTitoliGruppo)
        e.avvisi.append(avviso(QString::fromUtf8(kMessaggioOltre40Gruppo)));
    e.avvisi.append(avviso(messaggioGruppoCreato(nome)));
    return e;
}

EsitoGruppi aggiungiAlGruppo(store::Database &db, const QString &nomeScritto, const QList<TitoloOfferto> &selezionati)
{
    EsitoGruppi e;
    const QString nome = nomeScritto.trimmed();
    if (selezionati.isEmpty()) {
        e.avvisi.append(avviso(QString::fromUtf8(kMessaggioNessunTitoloAggiunta)));
        return e;
    }
    if (nome.isEmpty()) {
        e.avvisi.append(avviso(QString::fromUtf8(kMessaggioSelezionareGruppo)));
        return e;
    }
    // A group never grows past 40 titles, however they came in: the titles beyond are not written. The
    // group is read inside the transaction that adds to it, so that two editors cannot both fill it.
    bool oltre = false;
    const bool scritto = db.transaction([&] {
        const auto presenti = db.titlesOfGroup(nome);
        if (!presenti)
            return false;
        QSet<QString> nelGruppo;
        for (const store::GruppoRow &r : *presenti)
            nelGruppo.insert(r.titolo);
        QList<store::GruppoRow> nuove;
        for (int i = 0; i < selezionati.size(); ++i) {
            const store::GruppoRow r = riga(nome, selezionati.at(i));
            if (nelGruppo.size() >= kMassimoTitoliGruppo) {
                oltre = true;
                break;
            }
            if (!nelGruppo.contains(r.titolo)) {
                nelGruppo.insert(r.titolo);
                nuove.append(r);
            }
            e.salvati.append(i);
        }
        return db.addGroup(nome, nuove).has_value();
    });
    if (!scritto) {
        e.salvati.clear();
        e.avvisi.append(avvisoErrore(db));
        return e;
    }
    e.scritto = true;
    if (oltre)
        e.avvisi.append(avviso(QString::fromUtf8(kMessaggioOltre40Gruppo)));
    return e;
}

EsitoGruppi rimuovi(store::Database &db, const QList<TitoloDaRimuovere> &titoli, const QString &gruppoScelto,
    const std::function<bool(const QString &domanda)> &conferma)
{
    EsitoGruppi e;
    const QString gruppo = gruppoScelto.trimmed();
    // The titles go whatever the answer, so asking first changes nothing the user sees, and lets one
    // transaction hold the whole removal.
    const bool viaGruppo = !gruppo.isEmpty() && conferma && conferma(domandaRimozioneGruppo(gruppo));
    if (titoli.isEmpty() && !viaGruppo)
        return e;
    const bool scritto = db.transaction([&] {
        for (const TitoloDaRimuovere &t : titoli) {
            if (!db.removeFromGroup(t.gruppo, t.titolo))
                return false;
        }
        return !viaGruppo || db.deleteGroup(gruppo);
    });
    if (!scritto) {
        e.avvisi.append(avvisoErrore(db));
        return e;
    }
    e.scritto = true;
    return e;
}

} // namespace vm::quotes
