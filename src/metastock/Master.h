#pragma once

#include "core/Progress.h"
#include <QByteArray>
#include <QByteArrayView>
#include <QDate>

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <memory>
#include <vector>

namespace vm::metastock {

inline constexpr int kLunghezzaRecordMaster = 53;
inline constexpr int kLunghezzaRecordXMaster = 150;
inline constexpr QLatin1StringView kMarchioQuotaflusso { "ZORLA" };
// A symbol field of fourteen "X" marks a record being removed.
inline constexpr QLatin1StringView kSimboloInCancellazione { "XXXXXXXXXXXXXX" };

// Which directory file lists a title: MASTER ("F<n>.DAT", up to 255 titles) or XMASTER ("F<n>.MWD").
enum class Elenco { Master, XMaster };

// One title record of a directory file, the raw bytes kept beside the decoded fields.
struct RecordMaster {
    QByteArray grezzo; // 53 bytes from MASTER, 150 from XMASTER
    Elenco elenco = Elenco::Master;
    int posizione = 0; // record number in its file; the header is record 1
    int numeroFile = 0;
    int campi = 0; // fields per price record: 5, 6 or 7 in sound archives
    QString nome; // decoded from Windows-1252, trimmed of blanks and NULs
    QString simbolo; // likewise
    QDate primaData; // invalid when the stored number is no date
    QDate ultimaData;
    // The five characters at offsets 3, 5, 6, 50 and 52. A title of XMASTER has no such bytes and
    // carries its folder's mark, that of the first MASTER title.
    QString marchio;
    QString nomeFile; // the price file as it stands in the folder, or its usual name when absent

    bool marcato() const { return marchio == kMarchioQuotaflusso; }
    bool inCancellazione() const;
};

// "F" + n + ".DAT" for MASTER titles, ".MWD" for XMASTER titles.
QString nomeFilePrezzi(int numeroFile, Elenco elenco);

// Decoding of raw directory bytes. The header's 16-bit count is read in full; a count larger than
// the data holds yields the records that are there, and a record cut short is ignored.
int conteggioMaster(QByteArrayView master);
QList<RecordMaster> titoliMaster(QByteArrayView master);
RecordMaster recordMaster(QByteArrayView record53, int posizione);
int conteggioXMaster(QByteArrayView xmaster);
QList<RecordMaster> titoliXMaster(QByteArrayView xmaster, const QString &marchioCartella);

// One archive folder, read once: its directory files and the names of the files it holds.
struct CartellaMS {
    enum class Stato { Letta, CartellaMancante, MasterMancante, MasterIlleggibile };

    Stato stato = Stato::CartellaMancante;
    QString percorso;
    QString percorsoMaster; // the MASTER file found whatever its letter case; empty when none
    QString percorsoXMaster;
    int conteggioMaster = 0; // the header's count as stored, which damage may make too large
    int conteggioXMaster = 0;
    QString marchio; // mark of the first MASTER title record; empty when MASTER has none
    QList<RecordMaster> titoli; // MASTER titles in file order, then those of XMASTER
    QHash<QString, QString> fileMinuscoli; // lower-case name -> name as it stands
    mutable QHash<QString, qsizetype> indiceSimboli; // symbol -> first title holding it; built on first use
    // Why the directory cannot be trusted whole, in Italian: a MASTER that cannot be read (not a regular file,
    // no permission), or a directory file shorter than its header or whose count exceeds the records it holds.
    // Empty for a sound folder. The titles that could be read are kept all the same.
    QString danno;

    static CartellaMS leggi(const QString &percorso);

    bool haMaster() const { return !percorsoMaster.isEmpty(); }
    bool leggibile() const { return stato == Stato::Letta; }
    bool danneggiata() const { return !danno.isEmpty(); }
    // The one symbol lookup of the program: the symbol sought is trimmed of blanks and NULs at both ends,
    // as the records' symbols are, letter case counts, the first title in order (MASTER, then XMASTER)
    // wins. The folder's symbols are indexed on the first lookup.
    const RecordMaster *trovaSimbolo(QStringView simbolo) const;
    // A file of the folder whatever its letter case; empty when there is none.
    QString trovaFile(const QString &nome) const;
    QString percorsoPrezzi(const RecordMaster &titolo) const;
};

// A title found in one of the configured folders.
struct TitoloInCartella {
    QString cartella;
    RecordMaster record;
    QString percorsoPrezzi;
};

struct EsitoRicerca {
    enum class Stato { Trovato, NonTrovato, NessunaCartella, CartellaMancante };
    Stato stato = Stato::NonTrovato;
    TitoloInCartella titolo; // when Trovato
    QString cartellaMancante; // when CartellaMancante

    bool trovato() const { return stato == Stato::Trovato; }
    // The Italian message for the failures that the user is told about; empty otherwise.
    QString messaggio() const;
};

struct EsitoEliminazione {
    enum class Stato { Rimosso, NonTrovato, SoloInXMaster, ErroreScrittura };
    Stato stato = Stato::NonTrovato;
    TitoloInCartella titolo; // the record removed, or the one that could not be
    QString errore; // when ErroreScrittura: what the system said

    QString messaggio(QStringView simbolo) const;
};

// The configured archive folders in their order. Each folder's directory is read on first use and
// kept, so a valuation that looks up hundreds of symbols reads every MASTER once.
class ArchivioMS
{
public:
    explicit ArchivioMS(QStringList cartelle = {});

    const QStringList &cartelle() const { return m_cartelle; }
    const CartellaMS &cartella(int indice);
    // Forgets what was read, so that the next query reads the folders again.
    void ricarica();

    // Folders in order, then records in file order; the first exact match of the trimmed symbol
    // wins. A missing folder met before a match ends the search.
    EsitoRicerca TrovaTicker(QStringView simbolo);

    // Every title, over all folders, whose trimmed name begins with the letter, compared in upper
    // case. Missing folders are skipped and listed in cartelleMancanti. The progress function is
    // called with the record number reached and the folder's count + 1.
    using Avanzamento = Progress;
    QList<TitoloInCartella> CercaMS(
        QChar lettera, QStringList *cartelleMancanti = nullptr, const Avanzamento &avanzamento = {});

    // Removes the first title whose symbol matches, trimmed and in upper case, from the directory
    // of the first folder holding it: the other records are written to "MSMASTER", which is
    // flushed to disk and renamed over "MASTER", so that a crash leaves either directory whole.
    // The price file stays. A title that only XMASTER lists is not removed.
    EsitoEliminazione EliminaTitolo(QStringView simbolo);

private:
    QStringList m_cartelle;
    std::vector<std::unique_ptr<CartellaMS>> m_lette;
};

} // namespace vm::metastock
