#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace vm {

// What the check found for one configured archive folder.
struct EsitoCartella {
    // Danneggiata: a directory file that is no regular file, cannot be read, or holds fewer records than it counts.
    enum class Stato { Pronta, NonTrovata, SenzaMaster, InUso, NonAggiornata, Danneggiata };
    Stato stato = Stato::NonTrovata;
    QString percorso;
    QString testo; // the outcome line shown in the progress panel
};

// The outcome of one run of the MetaStock folder check over the folders of table `directory`.
struct VerificaArchivi {
    bool nessunaCartella = false;
    QList<EsitoCartella> esiti;
    // Problem lines of the report, in the order found ("Errore ..." lines).
    QStringList righeReport;
    int errori = 0;
    bool nonPronti = false; // some folder failed or is not kept by the companion program
    bool titoliNonValidi = false; // some title record has a field count other than 7
    int attributiMaster = 0; // of the last directory file examined: 1 when read-only, else 0

    // `ArchiviCompatibili` after this run, given its value before it: a run with a folder not ready
    // leaves it as it was.
    bool archiviCompatibili(bool prima) const;
    // The progress label's last text and the status bar's text once the run is over.
    QString testoEtichetta() const;
    QString testoBarraStato() const;
    // True when the quote-based commands may be used: every folder ready.
    bool pronti() const { return !nessunaCartella && !nonPronti; }
};

// Called after each folder with its number (from 1) and the number of folders, so that a window can
// draw its progress and process pending events.
using AvanzamentoVerifica = std::function<void(int cartella, int totale, const EsitoCartella &esito)>;

// `VerificaDirMS` without its window: checks every folder in order and never stops at a problem.
VerificaArchivi verificaCartelle(const QStringList &cartelle, const AvanzamentoVerifica &avanzamento = {});

// The report "MstkTestFiles.txt" as the check writes it.
QString testoReport(const VerificaArchivi &verifica, const QDateTime &quando);
// Writes the report atomically; false (with the system's reason in errore) when it cannot.
bool scriviReport(
    const QString &file, const VerificaArchivi &verifica, const QDateTime &quando, QString *errore = nullptr);

// Message boxes of the check (text; their titles below).
QString messaggioNessunaCartella();
QString messaggioTitoliNonValidi();
inline constexpr auto kTitoloNessunaCartella = "Cartelle metastock non inserite";
inline constexpr auto kTitoloTitoliNonValidi = "Titoli non validi";
inline constexpr auto kArchiviNonCompatibili
    = "Archivi metastock, non compatibili molte funzioni non sono disponibili.";

} // namespace vm
