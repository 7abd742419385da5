#pragma once

// Renaming a title of the dossier (a new symbol, a new name, or both) and removing one: the checks
// and messages, and the changes as one transaction of the store.

#include "dossier/Valuation.h"

namespace vm::store {
class Database;
}

namespace vm::dossier {

inline constexpr auto kTitoloAnagrafica = "Anagrafica titolo";
inline constexpr auto kTestoConfermaRinomina = "Confermi il cambio nome del titolo?";
inline constexpr auto kTestoNessunSimbolo = "Selezionare il nuovo Nome del titolo.";
inline constexpr auto kTitoloRimozioneTitolo = "ATTENZIONE! Rimozione titolo";

// Combo1 of the rename window: every symbol of the folders in their order (missing folders are
// skipped, each with "Cartella " + path + " non trovata"; a symbol in two folders is listed once).
struct SimboliArchivi {
    QStringList simboli;
    QList<Message> avvisi;
};
SimboliArchivi CaricaMS(const QStringList &cartelle);

// Why the chosen symbol cannot be taken, checked before asking for confirmation: no symbol, or a symbol
// that another title of the dossier holds (which would leave two rows of one symbol). Nothing when
// it can. Symbols are compared trimmed, as the valuation matches them.
std::optional<Message> verificaRinomina(
    const QList<store::DossierRow> &dossier, qint64 idTitolo, const QString &nuovoSimbolo);

// Changes the title's symbol and name in the dossier, in its operations and in giornata at once; the
// symbol replaced is the one stored when the change runs, whatever the window showed. The symbol and
// name are taken trimmed. On failure (a symbol taken meanwhile, the title gone, the database refusing)
// nothing changed and the message to show says why.
std::optional<Message> rinominaTitolo(
    store::Database &db, qint64 idTitolo, const QString &nuovoSimbolo, const QString &nuovoNome);

// "Attenzione! Il titolo <name> sarà rimosso dal dosssier, confermi?"
QString testoConfermaRimozione(const QString &nome);

// Deletes the title and its operations in one transaction; the message to show when it failed.
std::optional<Message> rimuoviTitolo(store::Database &db, qint64 idTitolo);

} // namespace vm::dossier
