#include "archives/ArchiveFolders.h"

#include "core/Format.h"
#include "metastock/FolderCheck.h"
#include "store/Database.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QStorageInfo>

namespace vm::archives {

namespace {

QString riga(std::initializer_list<QString> parti)
{
    return QStringList(parti).join(QLatin1Char('\n'));
}

// File systems that hold no user data: the search and the drive list leave them out.
bool sistemaVirtuale(const QByteArray &tipo)
{
    static const QList<QByteArray> virtuali { "proc", "sysfs", "devtmpfs", "devpts", "cgroup", "cgroup2", "securityfs",
        "pstore", "bpf", "tracefs", "debugfs", "mqueue", "hugetlbfs", "configfs", "fusectl", "autofs", "binfmt_misc",
        "efivarfs", "tmpfs", "ramfs", "nsfs", "rpc_pipefs", "squashfs" };
    return virtuali.contains(tipo);
}

bool supportoRimovibile(const QString &disco)
{
    return disco.startsWith(QLatin1String("/media/")) || disco.startsWith(QLatin1String("/mnt/"))
        || disco.startsWith(QLatin1String("/run/media/"));
}

bool dentro(const QString &percorso, const QString &radice)
{
    if (radice == QLatin1String("/"))
        return percorso.startsWith(QLatin1Char('/'));
    return percorso == radice || percorso.startsWith(radice + QLatin1Char('/'));
}

QString data(const QDate &d)
{
    return formatDate(d, "dd/mm/yy");
}

// Prices as they stand in the file, to the tenth of a thousandth the MBF single can carry.
QString prezzo(std::optional<float> v)
{
    return v ? formatPattern(double(*v), "###,##0.00##") : QString(metastock::kCampoAssente);
}

} // namespace

// --- drives ---

QStringList discoMontati()
{
    QStringList montati;
    const auto volumi = QStorageInfo::mountedVolumes();
    for (const QStorageInfo &v : volumi) {
        if (v.isValid() && !sistemaVirtuale(v.fileSystemType()))
            montati << v.rootPath();
    }
    montati.removeDuplicates();
    montati.sort();
    return montati;
}

QString discoDi(const QString &cartella, const QStringList &montati, const QString &utente)
{
    const QString pulita = QDir::cleanPath(QDir::fromNativeSeparators(cartella.trimmed()));
    QString migliore = QStringLiteral("/");
    for (const QString &m : montati) {
        if (m.size() > migliore.size() && dentro(pulita, m))
            migliore = m;
    }
    const QStringList parti = pulita.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QString chi = utente.isEmpty() ? qEnvironmentVariable("USER") : utente;
    QString rimovibile;
    if (parti.size() >= 2 && parti[0] == QLatin1String("mnt"))
        rimovibile = QStringLiteral("/mnt/") + parti[1];
    else if (parti.size() >= 3 && parti[0] == QLatin1String("media") && parti[1] == chi)
        rimovibile = QStringLiteral("/media/") + parti[1] + QLatin1Char('/') + parti[2];
    else if (parti.size() >= 2 && parti[0] == QLatin1String("media"))
        rimovibile = QStringLiteral("/media/") + parti[1];
    else if (parti.size() >= 4 && parti[0] == QLatin1String("run") && parti[1] == QLatin1String("media"))
        rimovibile = QStringLiteral("/run/media/") + parti[2] + QLatin1Char('/') + parti[3];
    return rimovibile.size() > migliore.size() ? rimovibile : migliore;
}

StatoDisco statoDisco(const QString &disco, const QStringList &montati)
{
    const QFileInfo info(disco);
    if (!info.isDir())
        return StatoDisco::Mancante;
    // The empty folder a medium is mounted on is no medium.
    if (supportoRimovibile(disco) && !montati.contains(disco))
        return StatoDisco::Mancante;
    if (!info.isReadable() || !info.isExecutable())
        return StatoDisco::NonLeggibile;
    return StatoDisco::Pronto;
}

QString testoStatoDisco(StatoDisco stato)
{
    switch (stato) {
    case StatoDisco::Mancante:
        return QStringLiteral("non trovato");
    case StatoDisco::NonLeggibile:
        return QStringLiteral("non leggibile");
    case StatoDisco::Pronto:
        break;
    }
    return QStringLiteral("pronto");
}

// --- the folder list ---

QString normalizzaCartella(const QString &cartella)
{
    const QString t = cartella.trimmed();
    if (t.isEmpty())
        return t;
    QString pulita = QDir::cleanPath(QDir::fromNativeSeparators(t));
    if (!pulita.endsWith(QLatin1Char('/')))
        pulita += QLatin1Char('/');
    return pulita;
}

bool stessaCartella(const QString &a, const QString &b)
{
    return normalizzaCartella(a).toUpper() == normalizzaCartella(b).toUpper();
}

Message TestMS(const QString &cartella)
{
    const QString titolo = QStringLiteral("Test cartelle dati metastock");
    if (cartella.trimmed().isEmpty() || !QFileInfo(cartella).isDir())
        return { riga({ QStringLiteral("Cartella"), cartella, QStringLiteral("metastock non trovata") }), titolo,
            MessageIcon::Exclamation };
    const auto letta = metastock::CartellaMS::leggi(cartella);
    if (!letta.haMaster())
        return { riga({ QStringLiteral("La cartella"), cartella, QStringLiteral("non contiene files metastock") }),
            titolo, MessageIcon::Information };
    if (!QFileInfo(letta.percorsoMaster).permission(QFileDevice::WriteOwner))
        return { riga({ QStringLiteral("ATTENZIONE! Altre applicazioni utilizzano i dati metastock sulla cartella"),
                     cartella }),
            titolo, MessageIcon::Exclamation, true };
    if (letta.marchio == metastock::kMarchioQuotaflusso)
        return { riga({ QStringLiteral("Cartella"), cartella, QStringLiteral("pronta") }), titolo,
            MessageIcon::Information };
    return { riga({ QStringLiteral("I dati metastock sulla cartella"), cartella,
                 QStringLiteral("non sono inseriti con Quotaflusso") }),
        QStringLiteral("Dati non visibili da Valorimetrico"), MessageIcon::Exclamation };
}

EsitoAggiunta aggiungiCartella(QStringList &elenco, const QString &cartella)
{
    EsitoAggiunta esito;
    const QString mostrata = QDir::toNativeSeparators(QDir::cleanPath(cartella.trimmed()));
    if (cartella.trimmed().isEmpty() || !metastock::CartellaMS::leggi(cartella.trimmed()).haMaster()) {
        esito.avviso = { QStringLiteral("La directory ") + mostrata + QStringLiteral(" non contiene files MetaStock."),
            {}, MessageIcon::Exclamation };
        return esito;
    }
    for (const QString &presente : std::as_const(elenco)) {
        if (stessaCartella(presente, cartella)) {
            esito.avviso = { QString::fromUtf8(kDirectoryGiaInserita), {}, MessageIcon::Exclamation };
            return esito;
        }
    }
    esito.cartella = normalizzaCartella(cartella);
    elenco << esito.cartella;
    esito.aggiunta = true;
    esito.avviso = TestMS(esito.cartella);
    return esito;
}

QString domandaRimozione(const QStringList &cartelle, bool tastoCanc)
{
    if (cartelle.size() > 1)
        return QStringLiteral("Confermi la rimozione di tutte le directory selezionate? \n");
    const QString percorso = cartelle.value(0);
    return (tastoCanc ? QStringLiteral("Confermi la rimozione dall'elenco della directory MetaStock: \n")
                      : QStringLiteral("Confermi la rimozione della directory MetaStock: \n"))
        + percorso + QStringLiteral(" ?");
}

QString titoloDomandaRimozione(bool tastoCanc)
{
    return tastoCanc ? QStringLiteral("Directory per l'aggiornamento da rimuovere")
                     : QStringLiteral("Eliminazione directory");
}

QString messaggioDiscoMancante(const QString &disco)
{
    return QStringLiteral("Disco ") + disco + QStringLiteral(" non trovato");
}

QList<StatoCartella> CHECKcartelleMS(const QStringList &cartelle, const QStringList &montati)
{
    QList<StatoCartella> stati;
    for (const QString &cartella : cartelle) {
        StatoCartella s;
        s.cartella = cartella;
        s.disco = discoDi(cartella, montati);
        const StatoDisco disco = statoDisco(s.disco, montati);
        if (disco != StatoDisco::Pronto) {
            s.discoMancante = true;
            s.stato = StatoCartella::Stato::NonTrovata;
            s.esito = messaggioDiscoMancante(s.disco);
        } else {
            const EsitoCartella e = verificaCartelle({ cartella }).esiti.value(0);
            s.esito = e.testo;
            switch (e.stato) {
            case EsitoCartella::Stato::Pronta:
                s.stato = StatoCartella::Stato::Pronta;
                break;
            case EsitoCartella::Stato::NonTrovata:
                s.stato = StatoCartella::Stato::NonTrovata;
                break;
            default:
                s.stato = StatoCartella::Stato::NonCompatibile;
                break;
            }
        }
        stati << s;
    }
    return stati;
}

QString testoStato(const QString &cartella, StatoCartella::Stato stato)
{
    switch (stato) {
    case StatoCartella::Stato::Pronta:
        return cartella + QStringLiteral(" pronta");
    case StatoCartella::Stato::NonCompatibile:
        return cartella + QStringLiteral(" non compatibile..");
    case StatoCartella::Stato::NonTrovata:
        break;
    }
    return cartella + QStringLiteral(" cartella non trovata.");
}

ElencoCartella CaricaMS(const QString &cartella)
{
    ElencoCartella elenco;
    elenco.trovata = !cartella.trimmed().isEmpty() && QFileInfo(cartella).isDir();
    if (!elenco.trovata)
        return elenco;
    const auto letta = metastock::CartellaMS::leggi(cartella);
    elenco.haMaster = letta.haMaster();
    elenco.compatibile = letta.marchio == metastock::kMarchioQuotaflusso;
    for (const auto &t : letta.titoli) {
        if (t.inCancellazione())
            continue;
        elenco.titoli << RigaTitolo { t.nome, t.simbolo, data(t.primaData), data(t.ultimaData), t.nomeFile, t.campi,
            letta.percorsoPrezzi(t) };
    }
    return elenco;
}

QString messaggioNonCompatibile(const QString &cartella)
{
    return riga({ QStringLiteral("I dati metastock sulla cartella"), cartella,
        QStringLiteral("non sono aggiornati con il programma Quotaflusso,"),
        QStringLiteral("i dati metastock selezionati non saranno gestiti dal programma."),
        QStringLiteral("Per utilizzare il programma, usare Quotaflusso"),
        QStringLiteral("per aggiornare l'archivio storico."), QString(),
        QStringLiteral("Oppure usare la compatibilità dati.") });
}

std::optional<QList<QStringList>> TrovaFileF(const RigaTitolo &titolo, QString *errore)
{
    const auto storia = metastock::leggiStoria(titolo.percorsoPrezzi, titolo.campi, errore);
    if (!storia)
        return std::nullopt;
    QList<QStringList> righe;
    righe.reserve(storia->size());
    for (const auto &q : *storia) {
        righe << QStringList { data(q.data), prezzo(q.apertura), prezzo(q.minimo), prezzo(q.massimo),
            prezzo(q.chiusura), formatPattern(double(q.volume), "###,###,###,##0"), prezzo(q.ufficiale) };
    }
    return righe;
}

QList<TitoloDoppio> titoliDoppi(const QStringList &cartelle)
{
    QList<QString> ordine; // symbols in order of first appearance
    QHash<QString, QList<TitoloDoppio>> perSimbolo;
    for (const QString &cartella : cartelle) {
        const auto letta = metastock::CartellaMS::leggi(cartella);
        for (const auto &t : letta.titoli) {
            if (t.inCancellazione() || t.simbolo.isEmpty())
                continue;
            const QString chiave = t.simbolo.toUpper();
            auto &gruppo = perSimbolo[chiave];
            if (gruppo.isEmpty())
                ordine << chiave;
            gruppo << TitoloDoppio { t.nome, t.simbolo, data(t.primaData), data(t.ultimaData), cartella };
        }
    }
    QList<TitoloDoppio> doppi;
    for (const QString &chiave : std::as_const(ordine)) {
        const auto &gruppo = perSimbolo[chiave];
        if (gruppo.size() > 1)
            doppi << gruppo;
    }
    return doppi;
}

QString notaDoppi()
{
    return QStringLiteral("E' importante che non ci siano titoli presenti due o più volte sull'archivio storico. "
                          "Quelli elencati sono presenti due volte, rimuovere uno di essi utilizzando gli appositi "
                          "programmi di gestione dei files metastock.");
}

EsitoRimozione rimuoviTitolo(store::Database &db, const TitoloDoppio &titolo)
{
    EsitoRimozione esito;
    // Only the folder of the line chosen: the same symbol in an earlier folder must stay.
    metastock::ArchivioMS archivio({ titolo.cartella });
    const metastock::EsitoEliminazione e = archivio.EliminaTitolo(titolo.simbolo);
    if (e.stato != metastock::EsitoEliminazione::Stato::Rimosso) {
        esito.avvisi << Message { e.messaggio(titolo.simbolo), {}, MessageIcon::Exclamation };
        return esito;
    }
    esito.rimosso = true;
    esito.riga.data = QDate::currentDate();
    esito.riga.zip = titolo.cartella;
    esito.riga.operazione = QString::fromUtf8(kOperazioneRimozione);
    esito.riga.descrizione = e.titolo.record.nome + QStringLiteral(" [") + e.titolo.record.simbolo
        + QStringLiteral("] rimosso dall'elenco dei titoli; file dei prezzi ") + e.titolo.record.nomeFile
        + QStringLiteral(" lasciato nella cartella");
    esito.registrato = db.appendArchiveLog(esito.riga);
    if (!esito.registrato)
        esito.avvisi << Message { QStringLiteral("Il titolo è stato rimosso dall'archivio, ma la rimozione non è stata "
                                                 "registrata nel registro degli archivi:\n")
                + db.lastError().message,
            {}, MessageIcon::Exclamation };
    return esito;
}

} // namespace vm::archives
