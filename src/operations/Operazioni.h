#pragma once

// Purchases, sales and dividends as plain rules: the average price after each, the checks of the operation
// windows with their messages, the date rules, the rows written, and the replay that rebuilds a title's row
// from its operations after one is deleted. The windows, the demo data and the command-line tool share them.

#include "core/Message.h"
#include "store/Records.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringView>

#include <optional>
#include <variant>

namespace vm::operations {

// --- the operation windows' checks ---

enum class Finestra {
    NuovoTitolo, // Form61
    Acquisto, // Form6
    Vendita, // Form66
};

// The fields the checks' messages send the focus to, by the name they carry in every operation window.
inline constexpr auto kQuantityField = "Text2";
inline constexpr auto kNetPriceField = "Text6";
inline constexpr auto kDateField = "DTPicker1";
inline constexpr auto kDividendField = "Text1"; // in the dividend window

// The window titles of the messages.
QString titoloMessaggi(Finestra finestra);

// What the user typed, read: the quantity and the net price.
struct Importo {
    qint64 quantita = 0;
    double netto = 0;
};

// The checks of the confirm button, in order; the first that fails is the message. titolo is the chosen
// title (Combo1's text, Label10's caption); a sale has no such check.
std::optional<Message> controllaOperazione(
    Finestra finestra, QStringView titolo, QStringView quantita, QStringView prezzoNetto);
// The typed texts as numbers, once controllaOperazione() has passed them.
Importo leggiImporto(QStringView quantita, QStringView prezzoNetto);

// --- dates ---

// The date an operation window keeps for a picked date: a future day is refused (messaggio set) and today is
// used instead; a Saturday or a Sunday moves back to the Friday before it.
struct DataScelta {
    QDate data;
    std::optional<Message> messaggio;
};
DataScelta dataOperazione(Finestra finestra, QDate scelta, QDate oggi);

// --- the rows written ---

// Form61: the dossier row of a new title and its "AQ" row. The new-title window writes the symbol into the
// operation's `titolo` and the name into its `ticker`, the other way round from the other windows.
store::DossierRow nuovoTitolo(const QString &simbolo, const QString &descrizione, QDate giorno, const Importo &importo);
store::Operazione operazioneNuovoTitolo(
    const QString &simbolo, const QString &descrizione, QDate data, const Importo &importo, QDate oggi);

// Form6 and Form66: the operation row; nome and simbolo as the title window passes them.
store::Operazione operazione(const char *tipo, qint64 idTitolo, const QString &nome, const QString &simbolo, QDate data,
    const Importo &importo, const QString &note, QDate oggi);

// The dossier row after a further purchase.
store::DossierRow acquista(const store::DossierRow &riga, const Importo &importo);

// The dossier row after a sale: refused with its message when more shares are sold than held; removed when
// all of them are.
struct EsitoVendita {
    enum class Stato { Rifiutata, Parziale, Totale };
    Stato stato = Stato::Rifiutata;
    store::DossierRow riga; // Parziale: the row with the shares left and their price
    std::optional<Message> messaggio; // Rifiutata
};
EsitoVendita vendi(const store::DossierRow &riga, const Importo &importo);

// Form6 and Form66 when the title's row is gone (renamed or removed meanwhile).
Message messaggioTitoloScomparso(Finestra finestra);

// Form61's check of a title already held, three lines.
Message messaggioGiaInDossier(const QString &descrizione);
// Form61's frame caption once a title not yet held is chosen.
QString titoloCorniceAcquisto(const QString &descrizione);

// --- dividends ---

// What saving the dividend window does: the values stored and the four figures of the title window.
struct EsitoDividendo {
    QDate dataStacco; // invalid when cleared
    double dividendo = 0;
    bool cancellato = false;
    QString testoData; // "Data stacco"
    QString testoDividendo; // "Dividendo"
    QString testoTotale; // "Totale"
    QString testoRendimento; // "Yeld %"
};
// testo is the dividend as typed: blank or 0 clears. A text that is no number is refused with a message.
std::variant<EsitoDividendo, Message> salvaDividendo(QStringView testo, QDate data, double prezzoMedio, qint64 qta);

// A number as a locale-independent conversion writes it: "." as decimal point, up to 15 significant digits.
QString numeroSemplice(double valore);

// --- deleting an operation ---

// The operations of a title in the order the title window lists them: by date, then as entered.
QList<store::Operazione> inOrdine(QList<store::Operazione> operazioni);

// The title's row rebuilt from its operations: the first purchase as the new-title window stores it, then
// every further purchase and sale, by date, through the same rules as the windows. No row when the
// operations do not make a holding (a sale of as many shares as held, or more, before the end; none left).
std::optional<store::DossierRow> ripercorri(
    const store::DossierRow &attuale, const QList<store::Operazione> &operazioni);

// The RecomputeTitle of Database::deleteOperation: the replay, or the row unchanged when there is none.
store::DossierRow ricalcolaTitolo(const store::DossierRow &attuale, const QList<store::Operazione> &rimanenti);

// Whether an operation may be deleted, and the question to ask. A refusal (the earliest of several
// operations; one whose removal leaves a sale of shares not held) has its message and nothing to ask.
struct ControlloRimozione {
    std::optional<Message> rifiuto;
    Message domanda;
    bool rimuoveTitolo = false; // the only operation: the title leaves the dossier with it
};
ControlloRimozione controllaRimozione(
    const store::DossierRow &riga, const QList<store::Operazione> &operazioni, qint64 idOperazione);

// Told after the last operation went and the title with it.
Message messaggioTitoloRimosso();

} // namespace vm::operations
