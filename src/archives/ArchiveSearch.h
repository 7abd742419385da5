#pragma once

// The search of a drive, or of a folder, for MetaStock archive folders ("Form9", "DirUt").

#include "core/Progress.h"

#include <QList>
#include <QString>

#include <atomic>
#include <functional>

namespace vm::archives {

struct ArchivioTrovato {
    QString cartella; // ending in "/"
    bool compatibile = false; // its directory carries the companion program's mark
};

struct OpzioniRicerca {
    bool soloCompatibili = false; // "Solo compatibili"; otherwise "Nessun filtro"
};

// Walks a tree the way the archive search does. Every folder is entered, hidden and read-only ones
// too, but not symbolic links (a link loop cannot trap the search) and not the file systems mounted
// below the starting folder (the search covers one drive, as the drive list offers them one by one).
// Folders that cannot be read are skipped and counted. A folder holding a file named "master" in any
// letter case is an archive.
class RicercaArchivi
{
public:
    // Called with each archive as it is found.
    using Trovato = std::function<void(const ArchivioTrovato &)>;
    // Called every few hundredths of a second, so that a window can draw and take a click on "Chiudi".
    using Pausa = std::function<void()>;

    // The archives found under radice (radice included), in the order met; stops early after ferma().
    QList<ArchivioTrovato> DirUt(const QString &radice, const OpzioniRicerca &opzioni, const Trovato &trovato = {},
        const Progress &avanzamento = {}, const Pausa &pausa = {});

    // The stop mark: the walk ends at the next folder.
    void ferma() { m_fermata = true; }
    bool fermata() const { return m_fermata; }

    // How often pausa and avanzamento are called; 0: after every folder.
    void setIntervalloPausa(int millisecondi) { m_intervallo = millisecondi; }

    int cartelleVisitate() const { return m_visitate; }
    int cartelleIlleggibili() const { return m_illeggibili; }

private:
    std::atomic<bool> m_fermata = false;
    int m_visitate = 0;
    int m_illeggibili = 0;
    int m_intervallo = 40;
};

// The mount points of the system, from /proc/self/mountinfo.
QStringList puntiDiMontaggio();

inline constexpr auto kFineRicerca = "Fine ricerca cartelle metastock";

} // namespace vm::archives
