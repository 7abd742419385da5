#include "metastock/FolderCheck.h"

#include "core/AtomicFile.h"
#include "core/ProgramInfo.h"

#include "metastock/Master.h"

#include <QFileInfo>

namespace vm {

namespace {

// Titles that the companion program writes carry exactly this many fields; the program's price
// readers and windows count on the official price in the seventh.
constexpr int kCampiStandard = 7;

EsitoCartella esito(EsitoCartella::Stato stato, const QString &percorso, const QString &danno = {})
{
    EsitoCartella e;
    e.stato = stato;
    e.percorso = percorso;
    switch (stato) {
    case EsitoCartella::Stato::Pronta:
        e.testo = QStringLiteral("Cartella ") + percorso + QStringLiteral(" pronta");
        break;
    case EsitoCartella::Stato::NonTrovata:
        e.testo = QStringLiteral("Cartella ") + percorso + QStringLiteral(" metastock non trovata");
        break;
    case EsitoCartella::Stato::SenzaMaster:
        e.testo = QStringLiteral("La directory ") + percorso + QStringLiteral(" non contiene files metastock");
        break;
    case EsitoCartella::Stato::InUso:
        e.testo
            = QStringLiteral("ATTENZIONE! Altre applicazioni utilizzano i dati metastock sulla cartella ") + percorso;
        break;
    case EsitoCartella::Stato::NonAggiornata:
        e.testo = QStringLiteral("Cartella ") + percorso + QStringLiteral(" non aggiornata con Quotaflusso");
        break;
    case EsitoCartella::Stato::Danneggiata:
        e.testo = QStringLiteral("Cartella ") + percorso + QStringLiteral(": archivio metastock danneggiato, ") + danno;
        break;
    }
    return e;
}

// On Windows another program holding the directory shows as the read-only attribute; here the
// counterpart is a directory file whose owner may not write it, which holds for every user, root too.
int attributiFile(const QString &file)
{
    return QFileInfo(file).permission(QFileDevice::WriteOwner) ? 0 : 1;
}

} // namespace

bool VerificaArchivi::archiviCompatibili(bool prima) const
{
    if (nessunaCartella)
        return prima;
    bool compatibili = nonPronti ? prima : true;
    if (titoliNonValidi)
        compatibili = false;
    return compatibili;
}

QString VerificaArchivi::testoEtichetta() const
{
    if (titoliNonValidi)
        return QStringLiteral("Alcuni titoli Metastock non sono conformi allo standard, verificare i titoli.");
    // A folder in error always leaves the archives not ready, so the warning about the folders' settings
    // is never the last word.
    if (nonPronti)
        return QStringLiteral("Verificare le cartelle Metastock");
    return QStringLiteral("Archivi Metastock verificati, nessun errore.");
}

QString VerificaArchivi::testoBarraStato() const
{
    if (errori > 0 || nonPronti)
        return QStringLiteral(
            "Errore sugli archivi metastock, verifica se i dati sono già utilizzati da altre applicazioni.");
    return QStringLiteral("Pronto");
}

VerificaArchivi verificaCartelle(const QStringList &cartelle, const AvanzamentoVerifica &avanzamento)
{
    VerificaArchivi v;
    if (cartelle.isEmpty()) {
        v.nessunaCartella = true;
        return v;
    }
    const int totale = int(cartelle.size());
    for (int i = 0; i < totale; ++i) {
        const QString &percorso = cartelle.at(i);
        EsitoCartella e;
        const QFileInfo info(percorso);
        if (percorso.trimmed().isEmpty() || !info.isDir()) {
            e = esito(EsitoCartella::Stato::NonTrovata, percorso);
        } else {
            const auto cartella = metastock::CartellaMS::leggi(percorso);
            if (cartella.danneggiata()) {
                e = esito(EsitoCartella::Stato::Danneggiata, percorso, cartella.danno);
            } else if (!cartella.haMaster()) {
                e = esito(EsitoCartella::Stato::SenzaMaster, percorso);
            } else {
                v.attributiMaster = attributiFile(cartella.percorsoMaster);
                if (v.attributiMaster == 1) {
                    e = esito(EsitoCartella::Stato::InUso, percorso);
                } else {
                    for (const auto &titolo : cartella.titoli) {
                        if (titolo.elenco != metastock::Elenco::Master || titolo.campi == kCampiStandard)
                            continue;
                        v.righeReport << QStringLiteral("Errore titolo non valido ") + titolo.nome;
                        v.titoliNonValidi = true;
                    }
                    e = esito(cartella.marchio == metastock::kMarchioQuotaflusso ? EsitoCartella::Stato::Pronta
                                                                                 : EsitoCartella::Stato::NonAggiornata,
                        percorso);
                }
            }
        }
        if (e.stato != EsitoCartella::Stato::Pronta) {
            v.nonPronti = true;
            v.righeReport << QStringLiteral("Errore ") + e.testo;
            // An unmarked archive is not ready but is no error of the folder itself.
            if (e.stato != EsitoCartella::Stato::NonAggiornata)
                ++v.errori;
        }
        v.esiti << e;
        if (avanzamento)
            avanzamento(i + 1, totale, e);
    }
    return v;
}

QString testoReport(const VerificaArchivi &verifica, const QDateTime &quando)
{
    QString testo;
    testo += QLatin1Char('\n');
    testo += QStringLiteral("Report Test Metastock files, stampato ")
        + quando.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss")) + QLatin1Char('\n');
    testo += QLatin1Char('\n');
    for (const auto &riga : verifica.righeReport)
        testo += riga + QLatin1Char('\n');
    if (verifica.titoliNonValidi) {
        testo += QStringLiteral(
            "I titoli non validi vanno aggiornati con Quotaflusso, che scrive i sette campi standard.\n");
        testo += QStringLiteral("Quotaflusso: ") + QLatin1String(kSitoQuotaflusso) + QLatin1Char('\n');
        testo += QStringLiteral("Assistenza: ") + QLatin1String(kPostaQuotaflusso) + QLatin1Char('\n');
    }
    return testo;
}

bool scriviReport(const QString &file, const VerificaArchivi &verifica, const QDateTime &quando, QString *errore)
{
    return writeFileAtomically(file, testoReport(verifica, quando).toUtf8(), errore);
}

QString messaggioNessunaCartella()
{
    return QStringList {
        QStringLiteral("Le cartelle metastock non sono inserite, per l'uso del programma"),
        QStringLiteral("è preferibile inserire le cartelle metastock aggiornate con il"),
        QStringLiteral("programma Quotaflusso, in questo modo si potrà usare completamente"),
        QString(),
        QStringLiteral("il programma."),
        QStringLiteral("Quotaflusso è un programma per la ricezione dei dati metastock"),
        QStringLiteral("disponibile gratuitamente al sito: ") + QLatin1String(kSitoQuotaflusso),
    }
        .join(QLatin1Char('\n'));
}

QString messaggioTitoliNonValidi()
{
    return QStringLiteral("Alcuni titoli non sono conformi e molte funzioni del\nprogramma non sono utilizzabili.");
}

} // namespace vm
