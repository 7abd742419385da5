#pragma once

// The archive folders the user manages in "form2": which folders may join the list, what state each
// is in, the titles and quotes of one, the titles that more than one folder holds, and the removal of
// a title from its archive. Plain data in, rows and messages out; the window only shows them.

#include "core/Message.h"
#include "metastock/Master.h"
#include "metastock/Prezzi.h"
#include "store/Records.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace vm::store {
class Database;
}

namespace vm::archives {

// --- drives ---
// On Linux the "drive" of a folder is the mounted file system that holds it. Folders under the usual
// places of removable media (/media/USER/NAME, /run/media/USER/NAME, /mnt/NAME) belong to that medium
// even while it is not mounted, so that an absent USB stick reads as a missing drive and not as a
// missing folder of the root file system.
enum class StatoDisco { Mancante = 1, NonLeggibile = 2, Pronto = 3 };

// The mount points of the mounted file systems that hold real data (no /proc, /sys and the like),
// sorted.
QStringList discoMontati();
// The drive of a folder, given the mount points; "/" at worst.
QString discoDi(const QString &cartella, const QStringList &montati, const QString &utente = {});
// 1: no such drive, or a removable medium's folder with nothing mounted on it; 2: present but its
// contents cannot be read; 3: ready.
StatoDisco statoDisco(const QString &disco, const QStringList &montati);
QString testoStatoDisco(StatoDisco stato);

// --- the folder list ---
// A folder as the list and table `directory` keep it: clean, absolute, ending in "/".
QString normalizzaCartella(const QString &cartella);
// The same folder for the list: equal once trimmed, with the final separator and in upper case.
bool stessaCartella(const QString &a, const QString &b);

// The folder test ("TestMS"): the first outcome that applies, as a box titled "Test cartelle dati
// metastock" (or "Dati non visibili da Valorimetrico" for an archive not kept by the companion program).
Message TestMS(const QString &cartella);

// Adding a folder ("Command1"): refused without a directory file or when the list holds it already;
// otherwise the normalised folder is appended and the folder test's box follows.
struct EsitoAggiunta {
    bool aggiunta = false;
    QString cartella; // as appended
    Message avviso;
};
EsitoAggiunta aggiungiCartella(QStringList &elenco, const QString &cartella);
inline constexpr auto kDirectoryGiaInserita = "Directory già inserita";

// Confirmations of the removal from the list, one folder or several ("Command2", the Delete key).
QString domandaRimozione(const QStringList &cartelle, bool tastoCanc = false);
QString titoloDomandaRimozione(bool tastoCanc = false);

// The check of every folder of the list ("CHECKcartelleMS").
struct StatoCartella {
    enum class Stato { Pronta, NonCompatibile, NonTrovata };
    QString cartella;
    Stato stato = Stato::NonTrovata;
    QString disco;
    bool discoMancante = false; // drive state 1 or 2: "Disco " + drive + " non trovato"
    QString esito; // the check's outcome line for the folder
};
QList<StatoCartella> CHECKcartelleMS(const QStringList &cartelle, const QStringList &montati);
QString messaggioDiscoMancante(const QString &disco);
// The state line of the selected folder: path + " pronta", " non compatibile.." or " cartella non trovata.".
QString testoStato(const QString &cartella, StatoCartella::Stato stato);

// The titles of one folder ("CaricaMS").
struct RigaTitolo {
    QString nome;
    QString simbolo;
    QString inizio; // "dd/mm/yy"
    QString fine;
    QString file; // the price file's name
    int campi = 0;
    QString percorsoPrezzi;
};
struct ElencoCartella {
    bool trovata = false; // the folder exists
    bool haMaster = false; // "Cartelle metastock non trovate" in the status bar otherwise
    bool compatibile = false; // marked "ZORLA"
    QList<RigaTitolo> titoli;
};
ElencoCartella CaricaMS(const QString &cartella);
// The warning for a folder not kept by the companion program.
QString messaggioNonCompatibile(const QString &cartella);
inline constexpr auto kCartelleNonTrovate = "Cartelle metastock non trovate";

// Every quote of a title for "ListView1" ("TrovaFileF"): date "dd/mm/yy", then open, low, high,
// close, volume, official price ("-" for a field the file lacks). Nothing when the file is unreadable,
// with the reason in *errore.
std::optional<QList<QStringList>> TrovaFileF(const RigaTitolo &titolo, QString *errore = nullptr);

// The duplicates list ("ListView3"): every title whose symbol, trimmed and in upper case, appears more
// than once over the folders of the list (in one folder or in several), one row per occurrence,
// grouped by symbol in list order. The valuation takes the first occurrence of a symbol in folder
// order, so a second copy, however old, is what leads it astray.
struct TitoloDoppio {
    QString nome;
    QString simbolo;
    QString inizio;
    QString fine;
    QString cartella;
};
QList<TitoloDoppio> titoliDoppi(const QStringList &cartelle);
QString notaDoppi();

// Removing a title from its archive ("Command4", "EliminaTitolo" on that one folder): the directory is
// rewritten without the title, then one row is added to LOG_ARCHIVIO.
struct EsitoRimozione {
    bool rimosso = false;
    bool registrato = false; // the log row was written
    QList<Message> avvisi;
    store::LogArchivioRow riga;
};
EsitoRimozione rimuoviTitolo(store::Database &db, const TitoloDoppio &titolo);
// What the log row holds: zip = the archive folder changed, operazione = this text, Descrizione =
// name, symbol and price file of the title removed.
inline constexpr auto kOperazioneRimozione = "Rimozione titolo";

} // namespace vm::archives
