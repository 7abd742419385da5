#include "metastock/Master.h"

#include "core/AtomicFile.h"
#include "core/RegularFile.h"

#include "core/Testo1252.h"
#include "metastock/Mbf.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace vm::metastock {

namespace {

int u16(QByteArrayView d, qsizetype at)
{
    return qFromLittleEndian<quint16>(d.data() + at);
}
quint32 u32(QByteArrayView d, qsizetype at)
{
    return qFromLittleEndian<quint32>(d.data() + at);
}
const std::uint8_t *bytes(QByteArrayView d, qsizetype at)
{
    return reinterpret_cast<const std::uint8_t *>(d.data() + at);
}

// XMASTER keeps dates as plain YYYYMMDD integers.
QDate dataAnnoMeseGiorno(quint32 n)
{
    if (n > 99991231)
        return QDate();
    return QDate(int(n / 10000), int(n / 100 % 100), int(n % 100));
}

// An XMASTER text field ends at its first NUL.
QString campoTerminato(QByteArrayView campo)
{
    const qsizetype nul = campo.indexOf('\0');
    return campoTesto(nul < 0 ? campo : campo.first(nul));
}

// Reads at most the bytes a damaged header count could claim: 65,536 records. Only a regular file is read.
QByteArray leggiTutto(const QString &percorso, qint64 massimo, bool *ok, QString *errore)
{
    QFile f;
    *ok = openRegularFile(f, percorso, errore);
    if (!*ok)
        return QByteArray();
    QByteArray dati = f.read(massimo);
    if (f.error() != QFileDevice::NoError) {
        *ok = false;
        *errore = QStringLiteral("Impossibile leggere il file ") + QDir::toNativeSeparators(percorso)
            + QStringLiteral(": ") + f.errorString();
        return QByteArray();
    }
    return dati;
}

// Why a directory file's bytes cannot be all there is: too short for its header, or a header that counts more
// titles than the file holds. Empty when sound.
QString dannoElenco(const QString &nome, QByteArrayView dati, int lunghezzaRecord, int conteggio)
{
    if (dati.size() < lunghezzaRecord)
        return QStringLiteral("il file %1 è lungo %2 byte, meno della sua intestazione").arg(nome).arg(dati.size());
    const qsizetype presenti = dati.size() / lunghezzaRecord - 1;
    if (conteggio > presenti)
        return QStringLiteral("il file %1 elenca %2 titoli ma ne contiene %3").arg(nome).arg(conteggio).arg(presenti);
    return QString();
}

} // namespace

bool RecordMaster::inCancellazione() const
{
    return simbolo == kSimboloInCancellazione;
}

QString nomeFilePrezzi(int numeroFile, Elenco elenco)
{
    return QLatin1String("F") + QString::number(numeroFile)
        + (elenco == Elenco::Master ? QLatin1String(".DAT") : QLatin1String(".MWD"));
}

int conteggioMaster(QByteArrayView master)
{
    return master.size() < kLunghezzaRecordMaster ? 0 : u16(master, 0);
}

RecordMaster recordMaster(QByteArrayView r, int posizione)
{
    RecordMaster t;
    t.grezzo = r.first(kLunghezzaRecordMaster).toByteArray();
    t.elenco = Elenco::Master;
    t.posizione = posizione;
    t.numeroFile = quint8(r[0]);
    t.campi = quint8(r[4]);
    t.nome = campoTesto(r.sliced(7, 16));
    t.primaData = dataDaNumeroMS(mbfToFloat(bytes(r, 25)));
    t.ultimaData = dataDaNumeroMS(mbfToFloat(bytes(r, 29)));
    t.simbolo = campoTesto(r.sliced(36, 14));
    const char marchio[5] = { r[3], r[5], r[6], r[50], r[52] };
    t.marchio = daWindows1252(QByteArrayView(marchio, 5));
    t.nomeFile = nomeFilePrezzi(t.numeroFile, Elenco::Master);
    return t;
}

QList<RecordMaster> titoliMaster(QByteArrayView master)
{
    const qsizetype presenti = master.size() / kLunghezzaRecordMaster - 1;
    const qsizetype n = std::min<qsizetype>(conteggioMaster(master), std::max<qsizetype>(presenti, 0));
    QList<RecordMaster> titoli;
    titoli.reserve(n);
    for (qsizetype i = 1; i <= n; ++i)
        titoli.append(recordMaster(master.sliced(i * kLunghezzaRecordMaster, kLunghezzaRecordMaster), int(i + 1)));
    return titoli;
}

int conteggioXMaster(QByteArrayView xmaster)
{
    return xmaster.size() < kLunghezzaRecordXMaster ? 0 : u16(xmaster, 10);
}

QList<RecordMaster> titoliXMaster(QByteArrayView xmaster, const QString &marchioCartella)
{
    const qsizetype presenti = xmaster.size() / kLunghezzaRecordXMaster - 1;
    const qsizetype n = std::min<qsizetype>(conteggioXMaster(xmaster), std::max<qsizetype>(presenti, 0));
    QList<RecordMaster> titoli;
    titoli.reserve(n);
    for (qsizetype i = 1; i <= n; ++i) {
        const QByteArrayView r = xmaster.sliced(i * kLunghezzaRecordXMaster, kLunghezzaRecordXMaster);
        RecordMaster t;
        t.grezzo = r.toByteArray();
        t.elenco = Elenco::XMaster;
        t.posizione = int(i + 1);
        t.simbolo = campoTerminato(r.sliced(1, 14));
        t.nome = campoTerminato(r.sliced(16, 45));
        t.numeroFile = u16(r, 65);
        t.campi = std::popcount(quint8(r[70]) & 0x7Fu);
        t.primaData = dataAnnoMeseGiorno(u32(r, 108));
        t.ultimaData = dataAnnoMeseGiorno(u32(r, 116));
        t.marchio = marchioCartella;
        t.nomeFile = nomeFilePrezzi(t.numeroFile, Elenco::XMaster);
        titoli.append(t);
    }
    return titoli;
}

CartellaMS CartellaMS::leggi(const QString &percorso)
{
    CartellaMS c;
    c.percorso = percorso;
    const QDir dir(percorso);
    if (percorso.isEmpty() || !dir.exists()) {
        c.stato = Stato::CartellaMancante;
        return c;
    }
    // A folder the user may not list looks empty to entryList(): say why instead.
    const QFileInfo info(percorso);
    if (!info.isReadable() || !info.isExecutable()) {
        c.stato = Stato::MasterMancante;
        c.danno = QStringLiteral("la cartella %1 non è leggibile (permessi)").arg(QDir::toNativeSeparators(percorso));
        return c;
    }
    const QStringList nomi = dir.entryList(QDir::Files | QDir::Hidden | QDir::System);
    c.fileMinuscoli.reserve(nomi.size());
    for (const QString &nome : nomi)
        c.fileMinuscoli.insert(nome.toLower(), nome);

    const QString master = c.trovaFile(QStringLiteral("MASTER"));
    if (master.isEmpty()) {
        c.stato = Stato::MasterMancante;
        return c;
    }
    c.percorsoMaster = dir.filePath(master);
    bool ok = false;
    const QByteArray datiMaster = leggiTutto(c.percorsoMaster, qint64(65536) * kLunghezzaRecordMaster, &ok, &c.danno);
    if (!ok) {
        c.stato = Stato::MasterIlleggibile;
        return c;
    }
    c.stato = Stato::Letta;
    c.conteggioMaster = metastock::conteggioMaster(datiMaster);
    c.danno = dannoElenco(master, datiMaster, kLunghezzaRecordMaster,
        datiMaster.size() < kLunghezzaRecordMaster ? 0 : u16(datiMaster, 0));
    c.titoli = titoliMaster(datiMaster);
    if (!c.titoli.isEmpty())
        c.marchio = c.titoli.first().marchio;

    const QString xmaster = c.trovaFile(QStringLiteral("XMASTER"));
    if (!xmaster.isEmpty()) {
        c.percorsoXMaster = dir.filePath(xmaster);
        QString errore;
        const QByteArray datiX = leggiTutto(c.percorsoXMaster, qint64(65536) * kLunghezzaRecordXMaster, &ok, &errore);
        c.conteggioXMaster = metastock::conteggioXMaster(datiX);
        // The first fault found is the one reported: MASTER's, then XMASTER's.
        if (c.danno.isEmpty())
            c.danno = ok ? dannoElenco(xmaster, datiX, kLunghezzaRecordXMaster,
                          datiX.size() < kLunghezzaRecordXMaster ? 0 : u16(datiX, 10))
                         : errore;
        c.titoli.append(titoliXMaster(datiX, c.marchio));
    }
    for (RecordMaster &t : c.titoli) {
        const QString presente = c.trovaFile(t.nomeFile);
        if (!presente.isEmpty())
            t.nomeFile = presente;
    }
    return c;
}

const RecordMaster *CartellaMS::trovaSimbolo(QStringView simbolo) const
{
    if (indiceSimboli.isEmpty() && !titoli.isEmpty()) {
        indiceSimboli.reserve(titoli.size());
        for (qsizetype i = titoli.size() - 1; i >= 0; --i)
            indiceSimboli.insert(titoli.at(i).simbolo, i); // backwards: the first title in order stays
    }
    const auto bordo = [](QChar c) { return c == u' ' || c == u'\0'; };
    qsizetype inizio = 0;
    qsizetype fine = simbolo.size();
    while (inizio < fine && bordo(simbolo.at(inizio)))
        ++inizio;
    while (fine > inizio && bordo(simbolo.at(fine - 1)))
        --fine;
    const auto it = indiceSimboli.constFind(simbolo.sliced(inizio, fine - inizio).toString());
    return it == indiceSimboli.cend() ? nullptr : &titoli.at(*it);
}

QString CartellaMS::trovaFile(const QString &nome) const
{
    return fileMinuscoli.value(nome.toLower());
}

QString CartellaMS::percorsoPrezzi(const RecordMaster &titolo) const
{
    return QDir(percorso).filePath(titolo.nomeFile);
}

QString EsitoRicerca::messaggio() const
{
    switch (stato) {
    case Stato::NessunaCartella:
        return QStringLiteral("Nessun titolo in archivio.");
    case Stato::CartellaMancante:
        return QStringLiteral("Errore su lettura ") + cartellaMancante;
    default:
        return QString();
    }
}

QString EsitoEliminazione::messaggio(QStringView simbolo) const
{
    switch (stato) {
    case Stato::NonTrovato:
        return QStringLiteral("Il titolo ") + simbolo.toString() + QStringLiteral(" non trovato in archivio.");
    case Stato::SoloInXMaster:
        return QStringLiteral("Il titolo ") + simbolo.toString()
            + QStringLiteral(" è elencato nel file XMASTER e non può essere rimosso dall'archivio.");
    case Stato::ErroreScrittura:
        return QStringLiteral("Impossibile riscrivere l'elenco dei titoli di ") + titolo.cartella + QStringLiteral(": ")
            + errore;
    default:
        return QString();
    }
}

ArchivioMS::ArchivioMS(QStringList cartelle)
    : m_cartelle(std::move(cartelle))
{
    m_lette.resize(m_cartelle.size());
}

const CartellaMS &ArchivioMS::cartella(int indice)
{
    auto &letta = m_lette.at(indice);
    if (!letta)
        letta = std::make_unique<CartellaMS>(CartellaMS::leggi(m_cartelle.at(indice)));
    return *letta;
}

void ArchivioMS::ricarica()
{
    for (auto &letta : m_lette)
        letta.reset();
}

EsitoRicerca ArchivioMS::TrovaTicker(QStringView simbolo)
{
    EsitoRicerca esito;
    if (m_cartelle.isEmpty()) {
        esito.stato = EsitoRicerca::Stato::NessunaCartella;
        return esito;
    }
    for (int i = 0; i < m_cartelle.size(); ++i) {
        const CartellaMS &c = cartella(i);
        if (c.stato == CartellaMS::Stato::CartellaMancante) {
            esito.stato = EsitoRicerca::Stato::CartellaMancante;
            esito.cartellaMancante = c.percorso;
            return esito;
        }
        if (const RecordMaster *t = c.trovaSimbolo(simbolo)) {
            esito.stato = EsitoRicerca::Stato::Trovato;
            esito.titolo = { c.percorso, *t, c.percorsoPrezzi(*t) };
            return esito;
        }
    }
    return esito;
}

QList<TitoloInCartella> ArchivioMS::CercaMS(
    QChar lettera, QStringList *cartelleMancanti, const Avanzamento &avanzamento)
{
    const QChar cercata = lettera.toUpper();
    QList<TitoloInCartella> trovati;
    for (int i = 0; i < m_cartelle.size(); ++i) {
        const CartellaMS &c = cartella(i);
        if (c.stato == CartellaMS::Stato::CartellaMancante) {
            if (cartelleMancanti)
                cartelleMancanti->append(c.percorso);
            continue;
        }
        const int totale = int(c.titoli.size()) + 1;
        for (int r = 0; r < c.titoli.size(); ++r) {
            const RecordMaster &t = c.titoli.at(r);
            if (avanzamento)
                avanzamento(r + 2, totale);
            if (!t.nome.isEmpty() && t.nome.front().toUpper() == cercata)
                trovati.append({ c.percorso, t, c.percorsoPrezzi(t) });
        }
    }
    return trovati;
}

EsitoEliminazione ArchivioMS::EliminaTitolo(QStringView simbolo)
{
    EsitoEliminazione esito;
    const QString cercato = simbolo.trimmed().toString().toUpper();
    for (int i = 0; i < m_cartelle.size(); ++i) {
        const CartellaMS &c = cartella(i);
        const RecordMaster *trovato = nullptr;
        for (const RecordMaster &t : c.titoli) {
            if (t.simbolo.toUpper() == cercato) {
                trovato = &t;
                break;
            }
        }
        if (!trovato)
            continue;
        esito.titolo = { c.percorso, *trovato, c.percorsoPrezzi(*trovato) };
        if (trovato->elenco == Elenco::XMaster) {
            esito.stato = EsitoEliminazione::Stato::SoloInXMaster;
            return esito;
        }

        QByteArray nuovo(kLunghezzaRecordMaster, ' ');
        int copiati = 0;
        for (const RecordMaster &t : c.titoli) {
            if (t.elenco != Elenco::Master || &t == trovato || t.inCancellazione())
                continue;
            nuovo.append(t.grezzo);
            ++copiati;
        }
        nuovo[0] = char(copiati & 0xFF);
        nuovo[1] = char(copiati >> 8);

        const QString master = c.percorsoMaster;
        m_lette.at(i).reset(); // whatever happens next, the folder is read again on next use
        if (!writeFileAtomically(master, nuovo, &esito.errore)) {
            esito.stato = EsitoEliminazione::Stato::ErroreScrittura;
            return esito;
        }
        esito.stato = EsitoEliminazione::Stato::Rimosso;
        return esito;
    }
    return esito;
}

} // namespace vm::metastock
