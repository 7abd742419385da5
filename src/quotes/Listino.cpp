#include "quotes/Listino.h"

#include "core/Format.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cmath>
#include <memory>
#include <unordered_map>

namespace vm::quotes {

using metastock::ArchivioMS;
using metastock::CartellaMS;
using metastock::Giornata;
using metastock::TitoloInCartella;

namespace {

QString testoOpzionale(const std::optional<float> &valore)
{
    return valore ? testoSingolo(*valore) : QString(metastock::kCampoAssente);
}

Message avvisoCartellaMancante(const QString &percorso)
{
    return { QString::fromUtf8(kPrefissoCartellaMancante) + percorso, QString::fromUtf8(kTitoloListino),
        MessageIcon::Exclamation };
}

Message avvisoNessunArchivio()
{
    return { QString::fromUtf8(kMessaggioNessunArchivio), QString::fromUtf8(kTitoloListino) };
}

// A whole small file through plain system calls; nothing when it cannot be opened.
std::optional<QByteArray> leggiFile(const QByteArray &percorso, qint64 massimo)
{
    const int fd = ::open(percorso.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    QByteArray dati;
    char buffer[65536];
    ssize_t n;
    while (dati.size() < massimo && (n = ::read(fd, buffer, sizeof buffer)) > 0)
        dati.append(buffer, n);
    ::close(fd);
    if (dati.size() > massimo)
        dati.truncate(massimo);
    return dati;
}

// The bytes a trimmed name skips at its start: blanks, NULs, the other ASCII spaces and the
// non-breaking space of Windows-1252.
bool spazioIniziale(quint8 b)
{
    return b == 0 || b == ' ' || (b >= 0x09 && b <= 0x0D) || b == 0xA0;
}

// The names of one folder, listed only when a file is not found under the name the companion program
// gives it: listing a folder of 256 files costs more than reading everything the board needs from it.
class NomiCartella
{
public:
    explicit NomiCartella(QByteArray radice)
        : m_radice(std::move(radice))
    { }
    const QByteArray &radice() const { return m_radice; }
    bool elencata() const { return m_lette; }

    // The file as it stands in the folder, whatever its letter case; empty when there is none. Without
    // `elencare`, only the upper-case, lower-case and capitalised spellings are tried, unless the folder
    // has been listed already.
    QByteArray trova(const QByteArray &nome, bool elencare = true)
    {
        if (esiste(nome))
            return nome;
        if (!m_lette && !elencare) {
            for (const QByteArray &altro : { nome.toLower(), nome.left(1) + nome.mid(1).toLower() }) {
                if (esiste(altro))
                    return altro;
            }
            return {};
        }
        if (!m_lette) {
            m_lette = true;
            if (DIR *d = ::opendir(m_radice.constData())) {
                while (const dirent *e = ::readdir(d)) {
                    if (e->d_type != DT_DIR) {
                        const QByteArray n(e->d_name);
                        m_nomi.insert(n.toLower(), n);
                    }
                }
                ::closedir(d);
            }
        }
        return m_nomi.value(nome.toLower());
    }

private:
    bool esiste(const QByteArray &nome) const
    {
        struct stat st;
        return ::stat((m_radice + nome).constData(), &st) == 0 && !S_ISDIR(st.st_mode);
    }

    QByteArray m_radice; // ends with "/"
    bool m_lette = false;
    QHash<QByteArray, QByteArray> m_nomi; // lower-case name -> name as it stands
};

// The letter list's directory reading, cut to what the list needs: MASTER read whole but only the
// records whose name can start with the letter decoded, the folder listed only when a name is not
// found as written. The outcome is ArchivioMS::CercaMS's, titles and missing folders alike, for the
// ASCII letters the board offers; any other character goes through ArchivioMS.
QList<TitoloInCartella> titoliDellaLettera(const QStringList &cartelle, QChar lettera, QStringList &mancanti)
{
    const QChar cercata = lettera.toUpper();
    if (cercata < u'A' || cercata > u'Z') {
        ArchivioMS archivio(cartelle);
        return archivio.CercaMS(lettera, &mancanti);
    }
    const char maiuscola = char(cercata.unicode());
    QList<TitoloInCartella> trovati;
    for (const QString &percorso : cartelle) {
        if (percorso.isEmpty() || !QFileInfo(percorso).isDir()) {
            mancanti.append(percorso);
            continue;
        }
        QByteArray radice = QFile::encodeName(percorso);
        if (!radice.endsWith('/'))
            radice += '/';
        NomiCartella nomi(radice);
        const QByteArray nomeMaster = nomi.trova("MASTER");
        if (nomeMaster.isEmpty())
            continue;
        const auto master = leggiFile(radice + nomeMaster, qint64(65536) * metastock::kLunghezzaRecordMaster);
        if (!master)
            continue;
        // CartellaMS::percorsoPrezzi's form: the folder's clean path, a slash, the name.
        const QString base = QDir(percorso).path() + u'/';
        // The price file's name is checked when it is opened: a folder is listed only for a file that
        // is not there as the directory names it.
        const auto aggiungi = [&](metastock::RecordMaster t) {
            if (nomi.elencata()) {
                const QByteArray presente = nomi.trova(QFile::encodeName(t.nomeFile));
                if (!presente.isEmpty())
                    t.nomeFile = QFile::decodeName(presente);
            }
            const QString prezzi = base + t.nomeFile;
            trovati.append({ percorso, std::move(t), prezzi });
        };

        const qsizetype presenti = master->size() / metastock::kLunghezzaRecordMaster - 1;
        const qsizetype n = std::min<qsizetype>(metastock::conteggioMaster(*master), std::max<qsizetype>(presenti, 0));
        QString marchio;
        for (qsizetype i = 1; i <= n; ++i) {
            const QByteArrayView r = QByteArrayView(*master).sliced(
                i * metastock::kLunghezzaRecordMaster, metastock::kLunghezzaRecordMaster);
            if (i == 1)
                marchio = metastock::recordMaster(r, 2).marchio;
            qsizetype k = 7;
            while (k < 23 && spazioIniziale(quint8(r[k])))
                ++k;
            if (k == 23 || (r[k] & ~0x20) != maiuscola)
                continue;
            metastock::RecordMaster t = metastock::recordMaster(r, int(i + 1));
            if (!t.nome.isEmpty() && t.nome.front().toUpper() == cercata)
                aggiungi(std::move(t));
        }
        const QByteArray nomeX = nomi.trova("XMASTER", false);
        if (!nomeX.isEmpty()) {
            const auto x = leggiFile(radice + nomeX, qint64(65536) * metastock::kLunghezzaRecordXMaster);
            for (metastock::RecordMaster &t : metastock::titoliXMaster(x.value_or(QByteArray()), marchio)) {
                if (!t.nome.isEmpty() && t.nome.front().toUpper() == cercata)
                    aggiungi(std::move(t));
            }
        }
    }
    return trovati;
}

// GiornataMS through plain system calls: the file's size and its last two records, nothing else.
// A file that does not open goes through GiornataMS, which says why in Italian.
std::optional<Giornata> giornata(TitoloInCartella &t, QString &errore, NomiCartella *nomi = nullptr)
{
    const metastock::RecordMaster &r = t.record;
    int fd = ::open(QFile::encodeName(t.percorsoPrezzi).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0 && nomi) {
        // Named in another letter case than the directory says: the name as it stands in the folder.
        const QByteArray presente = nomi->trova(QFile::encodeName(r.nomeFile));
        if (!presente.isEmpty() && presente != QFile::encodeName(r.nomeFile)) {
            t.record.nomeFile = QFile::decodeName(presente);
            t.percorsoPrezzi = QDir(t.cartella).path() + u'/' + t.record.nomeFile;
            fd = ::open(QFile::encodeName(t.percorsoPrezzi).constData(), O_RDONLY | O_CLOEXEC);
        }
    }
    struct stat st;
    if (fd < 0 || ::fstat(fd, &st) != 0 || metastock::lunghezzaRecordPrezzi(r.campi) == 0) {
        if (fd >= 0)
            ::close(fd);
        return metastock::GiornataMS(t.cartella, r.nomeFile, r.nome, r.simbolo, r.campi, &errore);
    }
    const qint64 lunghezza = st.st_size;
    const qint64 inizio = metastock::inizioCodaPrezzi(lunghezza, r.campi);
    QByteArray coda(lunghezza - inizio, Qt::Uninitialized);
    const ssize_t letti = coda.isEmpty() ? 0 : ::pread(fd, coda.data(), size_t(coda.size()), inizio);
    ::close(fd);
    if (letti != coda.size())
        return metastock::GiornataMS(t.cartella, r.nomeFile, r.nome, r.simbolo, r.campi, &errore);
    const metastock::UltimeQuote u = metastock::ultimeDaCoda(coda, lunghezza, r.campi);
    Giornata g;
    g.nome = r.nome;
    g.simbolo = r.simbolo;
    if (!u.ultima)
        return g;
    const metastock::QuotaMS &q = *u.ultima;
    g.data = q.data;
    g.chiusura = q.chiusura;
    g.massimo = q.massimo;
    g.minimo = q.minimo;
    g.volume = q.volume;
    g.apertura = q.apertura;
    g.ufficiale = q.ufficiale;
    const double precedente = u.precedente ? u.precedente->chiusura : 0.0;
    if (precedente > 0)
        g.variazione = (double(q.chiusura) - precedente) / precedente;
    return g;
}

} // namespace

quint32 rgbVariazione(ColoreVariazione colore)
{
    switch (colore) {
    case ColoreVariazione::Rosso:
        return 0xFF0000;
    case ColoreVariazione::Blu:
        return 0x0000FF;
    default:
        return 0x000000;
    }
}

QString testoSingolo(float valore)
{
    if (!std::isfinite(valore))
        return QStringLiteral("n.d.");
    if (valore == 0)
        return QStringLiteral("0");
    char buffer[64];
    const auto esito = std::to_chars(buffer, buffer + sizeof buffer, valore, std::chars_format::fixed);
    QString testo = QString::fromLatin1(buffer, esito.ptr - buffer);
    testo.replace(u'.', u',');
    return testo;
}

RigaListino rigaListino(const TitoloInCartella &titolo, const QDate &oggi)
{
    QString errore;
    TitoloInCartella t = titolo;
    auto g = giornata(t, errore);
    return rigaListino(t, std::move(g), errore, oggi);
}

RigaListino rigaListino(
    const TitoloInCartella &titolo, std::optional<Giornata> giornata, const QString &errore, const QDate &oggi)
{
    RigaListino r;
    r.cartella = titolo.cartella;
    r.record = titolo.record;
    r.percorsoPrezzi = titolo.percorsoPrezzi;
    r.giornata = std::move(giornata);
    r.errore = errore;

    auto &t = r.testi;
    t[ColTitolo] = r.record.nome;
    t[ColDirectory] = r.cartella;
    t[ColFile] = r.record.nomeFile;
    if (!r.compatibile()) {
        // Nothing to show but the title: the date that marks the line as not selectable.
        t[ColData] = QString::fromLatin1(kDataNonCompatibile);
        t[ColVariazione] = QString(metastock::kVariazioneNonDisponibile);
        return r;
    }
    const Giornata &g = *r.giornata;
    r.aggiornato = g.data == oggi;
    t[ColData] = formatDate(g.data, u"dd/mm/yyyy");
    t[ColChiusura] = testoSingolo(g.chiusura);
    t[ColUfficiale] = testoOpzionale(g.ufficiale);
    t[ColVariazione] = g.testoVariazione();
    t[ColApertura] = testoOpzionale(g.apertura);
    t[ColMinimo] = testoSingolo(g.minimo);
    t[ColMassimo] = testoSingolo(g.massimo);
    t[ColVolumi] = testoSingolo(g.volume);
    if (g.variazione && *g.variazione < 0)
        r.colore = ColoreVariazione::Rosso;
    else if (g.variazione && *g.variazione > 0)
        r.colore = ColoreVariazione::Blu;
    return r;
}

Listino CercaMS(const QStringList &cartelle, QChar lettera, const QDate &oggi, const Avanzamento &avanzamento)
{
    Listino l;
    if (cartelle.isEmpty()) {
        l.avvisi.append(avvisoNessunArchivio());
        return l;
    }
    l.eseguito = true;
    QStringList mancanti;
    QList<TitoloInCartella> trovati = titoliDellaLettera(cartelle, lettera, mancanti);
    std::unordered_map<QString, std::unique_ptr<NomiCartella>> cartelleNomi;
    for (const QString &m : mancanti)
        l.avvisi.append(avvisoCartellaMancante(m));
    l.righe.reserve(trovati.size());
    for (int i = 0; i < trovati.size(); ++i) {
        TitoloInCartella &t = trovati[i];
        auto &nomi = cartelleNomi[t.cartella];
        if (!nomi) {
            QByteArray radice = QFile::encodeName(t.cartella);
            if (!radice.endsWith('/'))
                radice += '/';
            nomi = std::make_unique<NomiCartella>(radice);
        }
        QString errore;
        auto g = giornata(t, errore, nomi.get());
        l.righe.append(rigaListino(t, std::move(g), errore, oggi));
        if (avanzamento)
            avanzamento(i + 1, int(trovati.size()));
    }
    return l;
}

Listino CercaTitoli(
    const QStringList &cartelle, const QStringList &simboli, const QDate &oggi, const Avanzamento &avanzamento)
{
    Listino l;
    if (cartelle.isEmpty()) {
        l.avvisi.append(avvisoNessunArchivio());
        return l;
    }
    l.eseguito = true;
    ArchivioMS archivio(cartelle);
    QList<bool> segnalata(cartelle.size(), false);
    for (int s = 0; s < simboli.size(); ++s) {
        const QString simbolo = simboli.at(s).trimmed();
        bool trovato = false;
        for (int i = 0; i < cartelle.size() && !trovato; ++i) {
            const CartellaMS &c = archivio.cartella(i);
            if (c.stato == CartellaMS::Stato::CartellaMancante) {
                // Said once per load: a dossier of two hundred titles would say it two hundred times.
                if (!segnalata[i])
                    l.avvisi.append(avvisoCartellaMancante(c.percorso));
                segnalata[i] = true;
                continue;
            }
            if (const metastock::RecordMaster *t = c.trovaSimbolo(simbolo)) {
                l.righe.append(rigaListino({ c.percorso, *t, c.percorsoPrezzi(*t) }, oggi));
                trovato = true;
            }
        }
        if (!trovato)
            l.nonTrovati.append(simboli.at(s));
        if (avanzamento)
            avanzamento(s + 1, int(simboli.size()));
    }
    return l;
}

QStringList lettereListino()
{
    QStringList lettere;
    for (char c = 'A'; c <= 'Z'; ++c)
        lettere.append(QString(QLatin1Char(c)));
    return lettere;
}

} // namespace vm::quotes
