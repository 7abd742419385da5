#pragma once

// The amount rules shared by the three operation windows (new title, further purchase, sale): the total of an
// operation, what each numeric field accepts keystroke by keystroke, and the fee settings shown beside them.
// Plain logic: the windows hand their texts in and show what comes back.

#include <QString>
#include <QStringView>

#include <optional>

namespace vm::operations {

// Totals and average prices: at least one integer digit, one to three decimals.
inline constexpr auto kFormatoCarico = u"###,##0.0##";

// CalcolaCarico: quantity × net price with "###,##0.0##". Texts that do not read as numbers count as 0, as the
// windows never let such text through.
QString CalcolaCarico(QStringView quantita, QStringView prezzoNetto);

// The total after a change of the quantity or of the net price: none while either field is blank (the last
// total stays on screen) or while the net price holds more than one comma.
std::optional<QString> caricoDopoModifica(QStringView quantita, QStringView prezzoNetto);

// The numeric fields of the operation windows.
enum class CampoImporto {
    Quantita, // Text2: digits only
    PrezzoMercato, // Text1: digits and one comma
    PrezzoNetto, // Text6: digits and one comma; "." is taken as ","
    Commissione, // the fee fields and the dividend: as the net price
};

// A key as the field's key-press handler sees it.
inline constexpr QChar kTastoInvio = u'\r';
inline constexpr QChar kTastoIndietro = u'\b';

// What one keystroke does to a field: the text and cursor after it, or a move to the next field (Enter).
struct EsitoTasto {
    QString testo;
    int cursore = 0;
    bool accettato = false; // false: the key was discarded and the text is unchanged
    bool campoSuccessivo = false; // Enter: focus goes to the next control
};

// Applies one typed character to the field's text, the selection [inizioSelezione, +lunghezzaSelezione) being
// replaced as a text field replaces it. A second comma in a price is removed at once, as typing it and
// pressing Backspace would.
EsitoTasto filtraTasto(
    CampoImporto campo, const QString &testo, int inizioSelezione, int lunghezzaSelezione, QChar tasto);

// Pasted or programmatic text through the same rules, character by character: what the field would hold had
// the user typed it.
QString filtraTesto(CampoImporto campo, QStringView testo);

// The fee settings (sections Commissioni and Spese of the settings file), as the frame "Spese applicate"
// shows them. The three keys of Spese are the captions of the labels beside their fields.
struct ImpostazioniSpese {
    int tipoCommissione = 0; // Option1(0) or Option1(1)
    QString commissione = QStringLiteral("0"); // Text4(0)
    QString spese = QStringLiteral("0"); // Text4(1), caption "Spese"
    QString bolli = QStringLiteral("0"); // Text4(2), caption "Bolli"
    QString capitalGain = QStringLiteral("0"); // Text7, caption "Capital Gain"

    bool operator==(const ImpostazioniSpese &) const = default;
};

inline constexpr auto kEtichettaSpese = "Spese";
inline constexpr auto kEtichettaBolli = "Bolli";
inline constexpr auto kEtichettaCapitalGain = "Capital Gain";
inline constexpr auto kTitoloCornice = "Spese applicate";

// Leggi_SPESE: every key read with default "0"; Tipo selects the second option only when its value is 1.
ImpostazioniSpese Leggi_SPESE(const QString &fileIni);

// Writes the five keys; false (with nothing more written) as soon as one write fails. The texts are written
// trimmed, an empty one as "0".
bool scriviSpese(const QString &fileIni, const ImpostazioniSpese &spese);

} // namespace vm::operations
