#pragma once

// The title groups editor "Creazione gruppi titoli": the archive titles offered, the tree of groups,
// and the rules of creating, adding to and removing groups, with their messages. Plain logic over the
// store; the editor window shows what these functions return and answers the questions they ask.

#include "core/Message.h"
#include "store/Records.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace vm::store {
class Database;
}

namespace vm::quotes {

// At most this many titles checked at once, and in one group.
inline constexpr int kMassimoTitoliGruppo = 40;

inline constexpr auto kTitoloGruppi = "Valorimetrico";
inline constexpr auto kMessaggioOltre40Selezionati = "Non è possibile selezionare oltre 40 titoli.";
inline constexpr auto kMessaggioOltre40Gruppo = "Non posso creare gruppi con più di 40 titoli.";
inline constexpr auto kMessaggioNomeVuoto = "Digitare il nome del gruppo da creare.";
inline constexpr auto kMessaggioGruppoPresente = "Gruppo già presente";
inline constexpr auto kMessaggioNessunSelezionato = "Nessun titolo è stato selezionato, gruppo non creato.";
inline constexpr auto kTitoloGruppoNonCreato = "Gruppo non creato";
inline constexpr auto kMessaggioNessunTitoloAggiunta = "Nessun titoli è stato selezionato";
inline constexpr auto kMessaggioSelezionareGruppo = "Selezionare il gruppo.";
inline constexpr auto kTitoloRimozioneGruppo = "ATTENZIONE! Rimozione Gruppo";
inline constexpr auto kTitoloNoMetastock = "No metastock files";

// "Selezionati: N" (Label2).
QString testoSelezionati(int selezionati);
// "Il gruppo NOME è stato creato."
QString messaggioGruppoCreato(const QString &gruppo);
// The removal question, asked with a beep, Yes and No and the critical icon.
QString domandaRimozioneGruppo(const QString &gruppo);

// One title offered in the list (ListView1): key the symbol, text the name.
struct TitoloOfferto {
    QString simbolo;
    QString nome;
    QString cartella;
};

struct ElencoTitoli {
    QList<TitoloOfferto> titoli; // folders in order, records in file order
    QList<Message> avvisi; // one per folder missing or without MASTER
};

// `CaricaMS`: every title of every folder, with a message for a folder that does not exist ("Non trovo la
// directory " + path) or holds no directory file ("La cartella " + path + " non contiene dati metastock.").
ElencoTitoli CaricaMS(const QStringList &cartelle);

// Checking one more title when `giaSelezionati` are checked: the message that refuses it, or nothing.
std::optional<Message> controllaSelezione(int giaSelezionati);

// One node of the tree (TreeView1): a group with its titles.
struct NodoTitolo {
    qint64 id = 0; // Gruppi.ID
    QString titolo; // the node's text
    QString simbolo;
    QString chiave; // simbolo trimmed + ID: the same title in two groups has two keys
};
struct NodoGruppo {
    QString gruppo;
    QList<NodoTitolo> titoli;
};

// `CaricaGruppi`: the groups by name, each with its titles in storage order. Nothing when the read fails.
std::optional<QList<NodoGruppo>> CaricaGruppi(store::Database &db);
QString chiaveNodo(const store::GruppoRow &riga);

// What a command did: the messages to show in order, and what the window must then do.
struct EsitoGruppi {
    QList<Message> avvisi;
    bool scritto = false; // the table changed: reload the tree (and the board's group tabs after a creation)
    QList<int> salvati; // positions in the checked list of the titles written: unchecked by the window
    bool focusNome = false; // the focus goes back to the name field
};

// "&Salva": the group `nome` from the checked titles, in list order. The first 40 are written in one
// transaction; a 41st stops the walk with its message, those before it saved.
EsitoGruppi creaGruppo(store::Database &db, const QString &nome, const QList<TitoloOfferto> &selezionati);

// Command3: the checked titles added to the group in `nome`; those already in it skipped silently.
EsitoGruppi aggiungiAlGruppo(store::Database &db, const QString &nome, const QList<TitoloOfferto> &selezionati);

// A title node checked for removal, by its group and its text.
struct TitoloDaRimuovere {
    QString gruppo;
    QString titolo;
};

// "&Rimuovi": the checked titles removed from their groups, then, when a group is chosen and
// `conferma` (asked with domandaRimozioneGruppo) says yes, the whole group. One transaction.
EsitoGruppi rimuovi(store::Database &db, const QList<TitoloDaRimuovere> &titoli, const QString &gruppoScelto,
    const std::function<bool(const QString &domanda)> &conferma);

} // namespace vm::quotes
