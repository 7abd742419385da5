#include "app/DemoData.h"

#include "app/Format.h"
#include "app/IniFile.h"
#include "app/ProgramFolder.h"
#include "dossier/Valuation.h"
#include "metastock/ArchiveWriter.h"
#include "operations/Operazioni.h"
#include "store/Database.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <array>
#include <cmath>
#include <cstdint>

namespace vm::demo {

namespace {

using metastock::QuotaMS;
using metastock::TitoloArchivio;

struct Anagrafica {
    const char *simbolo;
    const char *nome; // at most 16 characters, as a directory record holds
    int campi;
};

// Fictional companies: any likeness to a listed name is chance.
const Anagrafica kPrincipale[] = {
    { "BVD", "BANCA VALDORSA", 7 },
    { "CRT", "CREDITO TORRESE", 7 },
    { "ASO", "ASSICUR. ORSINI", 7 },
    { "ENS", "ENERGIA SERRANA", 7 },
    { "GVP", "GAS VALPADANA", 7 },
    { "ACB", "ACCIAIERIE BRUNI", 7 },
    { "CLV", "CANTIERI LAVAGNO", 7 },
    { "OFM", "OFFICINE MARZOLI", 7 },
    { "FAR", "FARMA ROSELLI", 7 },
    { "RAR", "RETI ARGENTA", 7 },
    { "SAL", "STRADE ALPINE", 7 },
    { "IMC", "IMMOB. CORTESI", 7 },
    { "EFE", "EDIL FERRANTE", 7 },
    { "PLO", "PASTIFICIO LORI", 7 },
    { "MSA", "MOLINI SANTERNO", 7 },
    { "LGA", "LATTERIE GARDESE", 7 },
    { "CEV", "CERAMICHE VALLI", 7 },
    { "VCA", "VETRERIE CALDORO", 7 },
    { "TBE", "TESSILE BELLONI", 7 },
    { "TNO", "TRASPORTI NOVARO", 7 },
    { "DFO", "DISTILL. FOSCO", 7 },
    { "MTO", "MECC. TORNESI", 7 },
    { "ELS", "ELETTRONICA SAVI", 7 },
    { "CAV", "CARTIERE VOLPI", 7 },
    { "CER", "CEMENTI ROCCA", 7 },
    { "MDE", "MOTORI DELFINI", 7 },
    { "AEL", "AEROSPAZIO LUNI", 7 },
    { "SCI", "SISTEMI CIVETTA", 7 },
    { "ALF", "ALIMENTI FIORE", 7 },
    { "VCO", "VINI COLLEVERDE", 7 },
    { "PTI", "PORTI TIRRENICI", 7 },
    { "FOR", "FIN. ORSOLINA", 7 },
};

const Anagrafica kSecondaria[] = {
    { "PMB", "POP. MONTEBRUNO", 7 },
    { "CVS", "CASSA VALSERIO", 7 },
    { "AFE", "ASSIC. FENICE", 7 },
    { "IDS", "IDRO SARCENSE", 7 },
    { "SME", "SOLE MERIDIANO", 7 },
    { "TAR", "TUBIFICI ARNALDI", 7 },
    { "FCS", "FONDERIE CASTI", 7 },
    { "NSP", "NAVALE SPERONI", 7 },
    { "RVE", "ROBOTICA VEGLIO", 7 },
    { "LER", "LAB. ERBORISTA", 7 },
    { "BSA", "BIOTECH SANNIO", 7 },
    { "RSO", "RESIDENZE SOLARI", 7 },
    { "LBA", "LOGISTICA BARONE", 7 },
    { "OVA", "ORAFI VANNUCCI", 7 },
    { "MLI", "MODA LISANDRI", 7 },
    { "CBR", "CALZATURE BRENTI", 7 },
    { "OPE", "OTTICA PERLANA", 7 },
    { "DMO", "DOLCIARIA MORENA", 7 },
    { "CSP", "CAFFE SPERANZA", 7 },
    { "OSA", "OLEARIA SABINA", 7 },
    { "FRB", "FONTI ROCCABELLA", 7 },
    { "MGI", "MEDIA GIRASOLE", 7 },
    { "EAU", "EDITRICE AURORA", 7 },
    { "SLA", "SERVIZI LAGUNA", 7 },
    { "AVE", "AMBIENTE VERDE", 7 },
    { "DRO", "DATI RONDINELLA", 7 },
    { "PCE", "PARTECIP. CEDRO", 7 },
    { "TIS", "TURISMO ISOLANO", 7 },
};

const Anagrafica kCampiRidotti[] = {
    { "GPO", "GRANAGLIE POLESI", 5 },
    { "MFE", "METALLI FERRONI", 5 },
    { "RLO", "RISERIE LOMELLE", 5 },
    { "BOR31", "BUONO ORO 2031", 6 },
    { "CAR", "CERTIF. ARGENTO", 6 },
    { "FPR", "FONDO PRUDENTE", 6 },
};

// A small generator of our own, so that the same seed gives the same numbers with any standard library.
class Casuale
{
public:
    explicit Casuale(std::uint64_t seme)
        : m_stato(seme)
    { }
    std::uint64_t prossimo()
    {
        // splitmix64
        std::uint64_t z = (m_stato += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    double uniforme() { return double(prossimo() >> 11) * 0x1.0p-53; } // [0, 1)
    double normale()
    {
        const double u = 1.0 - uniforme(); // (0, 1]
        return std::sqrt(-2.0 * std::log(u)) * std::cos(6.283185307179586 * uniforme());
    }

private:
    std::uint64_t m_stato;
};

// Prices as a quote feed gives them and as the user types them: three decimals, four under one euro.
double prezzoDigitato(double p)
{
    const double scala = std::abs(p) < 1 ? 10000.0 : 1000.0;
    return std::round(p * scala) / scala;
}

float arrotondaPrezzo(double p)
{
    return float(prezzoDigitato(p));
}

QList<QDate> giorniDiBorsa(const QDate &primo, const QDate &ultimo)
{
    QList<QDate> giorni;
    for (QDate d = primo; d <= ultimo; d = d.addDays(1)) {
        if (d.dayOfWeek() <= 5)
            giorni.append(d);
    }
    return giorni;
}

QList<QuotaMS> serie(Casuale &caso, const QList<QDate> &giorni, int campi)
{
    double prezzo = 0.6 + 45.0 * caso.uniforme() * caso.uniforme();
    const double tendenza = (caso.uniforme() - 0.3) * 0.0008;
    const double volatilita = 0.007 + 0.014 * caso.uniforme();
    const double scambiMedi = 9.0 + 4.0 * caso.uniforme();
    QList<QuotaMS> quote;
    quote.reserve(giorni.size());
    for (const QDate &giorno : giorni) {
        const double apertura = prezzo * (1 + 0.3 * volatilita * caso.normale());
        prezzo *= std::exp(tendenza + volatilita * caso.normale());
        const double massimo = std::max(apertura, prezzo) * (1 + 0.4 * volatilita * std::abs(caso.normale()));
        const double minimo = std::min(apertura, prezzo) * (1 - 0.4 * volatilita * std::abs(caso.normale()));
        QuotaMS q;
        q.data = giorno;
        q.chiusura = arrotondaPrezzo(prezzo);
        q.massimo = arrotondaPrezzo(massimo);
        q.minimo = arrotondaPrezzo(minimo);
        q.volume = float(std::round(std::exp(scambiMedi + 0.6 * caso.normale())));
        if (campi >= 6)
            q.apertura = arrotondaPrezzo(apertura);
        if (campi == 7)
            q.ufficiale = arrotondaPrezzo((massimo + minimo + 2 * prezzo) / 4);
        quote.append(q);
    }
    return quote;
}

template<std::size_t N>
QList<TitoloArchivio> titoli(const Anagrafica (&elenco)[N], Casuale &caso, const QList<QDate> &giorni)
{
    QList<TitoloArchivio> t;
    for (const Anagrafica &a : elenco) {
        TitoloArchivio titolo;
        titolo.simbolo = QString::fromLatin1(a.simbolo);
        titolo.nome = QString::fromLatin1(a.nome);
        titolo.campi = a.campi;
        titolo.quote = serie(caso, giorni, a.campi);
        t.append(titolo);
    }
    return t;
}

// One title held: where it comes from and what was done with it, in trading days before the last one.
struct Posizione {
    int archivio; // 0 principale, 1 secondaria
    int indice;
    int acquisto; // trading days before the last
    double budget; // euro spent on the first purchase
    int ulteriore = 0; // a further purchase, when not 0
    int vendita = 0; // a sale of 40% of the shares, when not 0
    int stacco = 0; // a dividend detached, when not 0
};

const Posizione kDossier[] = {
    { 0, 0, 980, 12000, 700, 0, 120 }, // BVD
    { 1, 3, 910, 8000 }, // IDS
    { 0, 5, 820, 6000, 0, 300 }, // ACB
    { 0, 3, 760, 10000, 0, 0, 150 }, // ENS
    { 1, 0, 640, 9000, 400 }, // PMB
    { 0, 8, 580, 5000 }, // FAR
    { 1, 9, 470, 4000 }, // LER
    { 0, 13, 390, 3500 }, // PLO
    { 0, 22, 260, 7000 }, // ELS
    { 1, 17, 150, 3000 }, // DMO
};

// History records: trading days before the last one.
const int kGiorniStorico[] = { 25, 20, 15, 10, 5 };

struct Gruppo {
    const char *nome;
    std::array<std::pair<int, int>, 4> titoli; // archivio, indice
};

const Gruppo kGruppi[] = {
    { "Bancari", { { { 0, 0 }, { 0, 1 }, { 1, 0 }, { 1, 1 } } } },
    { "Energia", { { { 0, 3 }, { 0, 4 }, { 1, 3 }, { 1, 4 } } } },
};

class Scrittura
{
public:
    Scrittura(const QString &cartella, const QDate &oggi)
        : m_dir(cartella)
        , m_ultimo(ultimoGiornoDiBorsa(oggi))
        , m_giorni(giorniDiBorsa(ultimoGiornoDiBorsa(m_ultimo.addYears(-5).addDays(1)), m_ultimo))
        , m_caso(0x56414C4F44454D4FULL)
    { }

    bool esegui(QString &errore);

private:
    bool archivi(QString &errore);
    bool database(QString &errore);
    QString percorso(const char *sottocartella) const { return m_dir.filePath(QString::fromLatin1(sottocartella)); }
    const TitoloArchivio &titolo(int archivio, int indice) const { return m_archivi[archivio].at(indice); }
    // The quote of a title that many trading days before the last one.
    const QuotaMS &quota(int archivio, int indice, int giorniPrima) const
    {
        const QList<QuotaMS> &q = titolo(archivio, indice).quote;
        return q.at(q.size() - 1 - giorniPrima);
    }
    QDate giorno(int giorniPrima) const { return m_giorni.at(m_giorni.size() - 1 - giorniPrima); }
    bool fallito(store::Database &db, QString &errore)
    {
        errore = QStringLiteral("Errore %1 nella scrittura del database: %2")
                     .arg(db.lastError().number)
                     .arg(db.lastError().message);
        return false;
    }

    QDir m_dir;
    QDate m_ultimo;
    QList<QDate> m_giorni;
    Casuale m_caso;
    QList<TitoloArchivio> m_archivi[2];
};

bool Scrittura::archivi(QString &errore)
{
    m_archivi[0] = titoli(kPrincipale, m_caso, m_giorni);
    m_archivi[1] = titoli(kSecondaria, m_caso, m_giorni);
    const QList<TitoloArchivio> ridotti = titoli(kCampiRidotti, m_caso, m_giorni);
    const std::pair<const char *, const QList<TitoloArchivio> *> cartelle[] = {
        { kCartellaPrincipale, &m_archivi[0] },
        { kCartellaSecondaria, &m_archivi[1] },
        { kCartellaCampiRidotti, &ridotti },
    };
    for (const auto &[nome, elenco] : cartelle) {
        if (!m_dir.mkpath(QString::fromLatin1(nome))) {
            errore = QStringLiteral("Impossibile creare la cartella ") + percorso(nome);
            return false;
        }
        if (!metastock::scriviArchivio(percorso(nome), *elenco, {}, &errore))
            return false;
    }
    return true;
}

bool Scrittura::database(QString &errore)
{
    const QString file = m_dir.filePath(QString::fromLatin1(store::kDatabaseFileName));
    const store::StoreError creato = store::Database::create(file);
    if (creato.failed()) {
        errore = creato.message;
        return false;
    }
    store::Database db;
    const store::OpenResult aperto = db.open(file);
    if (!aperto.ok()) {
        errore = aperto.error.message;
        return false;
    }
    if (!db.replaceFolders({ QDir::cleanPath(percorso(kCartellaPrincipale)) + u'/',
            QDir::cleanPath(percorso(kCartellaSecondaria)) + u'/' }))
        return fallito(db, errore);

    // Purchases in the order they were made, so that the dossier lists the titles by their first day.
    for (const Posizione &p : kDossier) {
        const TitoloArchivio &t = titolo(p.archivio, p.indice);
        const double prezzo = prezzoDigitato(quota(p.archivio, p.indice, p.acquisto).chiusura);
        store::DossierRow riga;
        riga.titolo = t.simbolo;
        riga.descrizione = t.nome;
        riga.giorno = giorno(p.acquisto);
        riga.prezzo = prezzo;
        riga.qta = std::max<qint64>(50, qint64(std::round(p.budget / prezzo / 50)) * 50);
        if (p.stacco) {
            riga.dataStacco = giorno(p.stacco);
            riga.dividendo = std::round(quota(p.archivio, p.indice, p.stacco).chiusura * 3.5) / 100;
        }
        // The new-title window writes the symbol as the operation's name and the name as its symbol.
        store::Operazione op;
        op.inser = riga.giorno;
        op.tipo = QString::fromLatin1(store::kTipoAcquisto);
        op.data = riga.giorno;
        op.titolo = t.simbolo;
        op.ticker = t.nome;
        op.valore = prezzo;
        op.qta = riga.qta;
        const auto id = db.recordPurchase(riga, op);
        if (!id)
            return fallito(db, errore);
        riga.idTitolo = *id;

        const auto operazione = [&](const char *tipo, int giorniPrima, qint64 qta) {
            store::Operazione o;
            o.idDossier = riga.idTitolo;
            o.inser = giorno(giorniPrima);
            o.tipo = QString::fromLatin1(tipo);
            o.data = o.inser;
            o.titolo = t.nome;
            o.ticker = t.simbolo;
            o.valore = prezzoDigitato(quota(p.archivio, p.indice, giorniPrima).chiusura);
            o.qta = qta;
            return o;
        };
        if (p.ulteriore) {
            const store::Operazione o = operazione(store::kTipoAcquisto, p.ulteriore, riga.qta / 2);
            riga = operations::acquista(riga, { o.qta, o.valore });
            if (!db.recordOperation(riga, o))
                return fallito(db, errore);
        }
        if (p.vendita) {
            const store::Operazione o = operazione(store::kTipoVendita, p.vendita, riga.qta * 2 / 5);
            riga = operations::vendi(riga, { o.qta, o.valore }).riga;
            if (!db.recordOperation(riga, o))
                return fallito(db, errore);
        }
    }

    // The dossier's value on a few recent days, as the overview would have recorded it.
    const QList<store::DossierRow> dossier = db.dossierRows();
    double carico = 0;
    for (const store::DossierRow &r : dossier)
        carico += dossier::valoreMostrato(r.prezzo * double(r.qta));
    QSet<qint64> registrati;
    for (int giorniPrima : kGiorniStorico) {
        double attuale = 0;
        for (int i = 0; i < dossier.size(); ++i) {
            const Posizione &p = kDossier[i];
            attuale += dossier::valoreMostrato(
                double(quota(p.archivio, p.indice, giorniPrima).chiusura) * double(dossier[i].qta));
        }
        store::StoricoRow s;
        s.data = giorno(giorniPrima);
        s.carico = dossier::valoreMostrato(carico);
        s.attuale = dossier::valoreMostrato(attuale);
        if (registrati.contains(qint64(std::llround(s.attuale * 100))))
            continue;
        registrati.insert(qint64(std::llround(s.attuale * 100)));
        if (!db.insertStorico(s))
            return fallito(db, errore);
    }

    for (const Gruppo &g : kGruppi) {
        for (const auto &[archivio, indice] : g.titoli) {
            store::GruppoRow r;
            r.gruppo = QString::fromLatin1(g.nome);
            r.simbolo = titolo(archivio, indice).simbolo;
            r.titolo = titolo(archivio, indice).nome;
            if (db.addToGroup(r) != store::GroupAdd::Added)
                return fallito(db, errore);
        }
    }
    db.close();
    return true;
}

bool Scrittura::esegui(QString &errore)
{
    if (!archivi(errore) || !database(errore))
        return false;
    const QString ini = m_dir.filePath(QString::fromLatin1(kSettingsFileName));
    if (!ScriviIni(ini, u"Opzioni", u"Splash", u"1")) {
        errore = QStringLiteral("Impossibile scrivere il file delle impostazioni ") + ini;
        return false;
    }
    return true;
}

void usage(QTextStream &s)
{
    s << "Uso: valorimetrico-cli demo CARTELLA\n\n"
         "Crea in CARTELLA (nuova o vuota) una cartella del programma completa per provarlo: due archivi\n"
         "MetaStock di titoli di fantasia con cinque anni di quotazioni giornaliere fino all'ultimo giorno\n"
         "feriale prima di oggi, un terzo archivio non configurato con titoli a 5 e 6 campi, il database\n"
         "con il dossier, le operazioni, lo storico e due gruppi, e il file delle impostazioni. Due cartelle\n"
         "create lo stesso giorno contengono gli stessi dati.\n"
         "Poi: valorimetrico --cartella CARTELLA\n";
}

} // namespace

QDate ultimoGiornoDiBorsa(const QDate &oggi)
{
    QDate d = oggi.addDays(-1);
    while (d.dayOfWeek() > 5)
        d = d.addDays(-1);
    return d;
}

bool creaCartellaDemo(const QString &cartella, const QDate &oggi, QString *errore)
{
    QString motivo;
    const QFileInfo info(cartella);
    const bool esisteva = info.exists();
    if (esisteva && !info.isDir())
        motivo = QStringLiteral("%1 non è una cartella.").arg(cartella);
    else if (esisteva && !QDir(cartella).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System))
        motivo = QStringLiteral("La cartella %1 non è vuota: indicare una cartella nuova o vuota.").arg(cartella);
    else if (!QDir().mkpath(cartella))
        motivo = QStringLiteral("Impossibile creare la cartella %1.").arg(cartella);
    if (motivo.isEmpty()) {
        Scrittura scrittura(QFileInfo(cartella).absoluteFilePath(), oggi);
        if (scrittura.esegui(motivo))
            return true;
        // The folder was empty or new: whatever it holds now is ours and incomplete.
        QDir dir(cartella);
        if (esisteva) {
            for (const QFileInfo &f : dir.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
                f.isDir() ? QDir(f.filePath()).removeRecursively() : QFile::remove(f.filePath());
        } else {
            dir.removeRecursively();
        }
    }
    if (errore)
        *errore = motivo;
    return false;
}

int cmdDemo(const QStringList &args, cli::Io &io)
{
    if (cli::wantsHelp(args)) {
        usage(io.out);
        return cli::Ok;
    }
    if (args.size() != 1 || args.first().startsWith(u'-')) {
        usage(io.err);
        return cli::Usage;
    }
    QString errore;
    if (!creaCartellaDemo(args.first(), QDate::currentDate(), &errore)) {
        io.err << errore << "\n";
        return cli::Failure;
    }
    io.out << "Cartella dimostrativa creata in " << QDir::toNativeSeparators(QFileInfo(args.first()).absoluteFilePath())
           << "\n";
    return cli::Ok;
}

} // namespace vm::demo
