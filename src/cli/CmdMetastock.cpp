#include "cli/CmdMetastock.h"

#include "metastock/Master.h"
#include "metastock/Prezzi.h"

#include <QDir>
#include <QLocale>

#include <charconv>

namespace vm::metastock {

namespace {

constexpr QLatin1StringView kFineRigaCsv { "\n" };

struct Argomenti {
    QStringList posizionali;
    bool csv = false;
    QString sconosciuto;
};

Argomenti leggiArgomenti(const QStringList &args)
{
    Argomenti a;
    for (const QString &s : args) {
        if (s == QLatin1String("--csv"))
            a.csv = true;
        else if (s.startsWith(u'-') && s.size() > 1 && a.sconosciuto.isEmpty())
            a.sconosciuto = s;
        else
            a.posizionali.append(s);
    }
    return a;
}

// Reads the folder and reports, on io.err, why it cannot be used.
bool apriCartella(const QString &percorso, CartellaMS &cartella, vm::cli::Io &io)
{
    cartella = CartellaMS::leggi(percorso);
    const QString nativo = QDir::toNativeSeparators(percorso);
    switch (cartella.stato) {
    case CartellaMS::Stato::Letta:
        // What could be read is still shown; the damage is said first.
        if (cartella.danneggiata())
            io.err << "Archivio metastock danneggiato in " << nativo << ": " << cartella.danno << ".\n";
        return true;
    case CartellaMS::Stato::CartellaMancante:
        io.err << "Cartella " << nativo << " non trovata.\n";
        return false;
    case CartellaMS::Stato::MasterMancante:
        if (cartella.danneggiata()) {
            io.err << "Impossibile leggere " << cartella.danno << ".\n";
            return false;
        }
        io.err << "La cartella " << nativo << " non contiene files metastock (manca il file MASTER).\n";
        return false;
    case CartellaMS::Stato::MasterIlleggibile:
        io.err << "Archivio metastock danneggiato in " << nativo << ": " << cartella.danno << "\n";
        return false;
    }
    return false;
}

QString dataIso(QDate d)
{
    return d.isValid() ? d.toString(u"yyyy-MM-dd") : QString();
}
QString dataItaliana(QDate d)
{
    return d.isValid() ? d.toString(u"dd/MM/yyyy") : QString();
}

// Italian digits with exactly the decimals the shortest CSV text needs.
QString testoFloatItaliano(float valore)
{
    const QString breve = testoFloatCsv(valore);
    const qsizetype punto = breve.indexOf(u'.');
    const int decimali = punto < 0 ? 0 : int(breve.size() - punto - 1);
    return QLocale(QLocale::Italian).toString(double(valore), 'f', decimali);
}

void scriviTabella(QTextStream &out, const QList<QStringList> &righe, const QList<bool> &aDestra)
{
    QList<qsizetype> larghezze(righe.first().size(), 0);
    for (const QStringList &r : righe) {
        for (qsizetype i = 0; i < r.size(); ++i)
            larghezze[i] = std::max(larghezze[i], r[i].size());
    }
    for (const QStringList &r : righe) {
        QString riga;
        for (qsizetype i = 0; i < r.size(); ++i) {
            if (i)
                riga += QLatin1String("  ");
            riga += aDestra[i] ? r[i].rightJustified(larghezze[i]) : r[i].leftJustified(larghezze[i]);
        }
        // Only the right end: an empty first column (archives with no symbols) must keep its room.
        while (riga.endsWith(u' '))
            riga.chop(1);
        out << riga << '\n';
    }
}

void usoTitoli(QTextStream &s)
{
    s << "Uso: valorimetrico-cli titoli CARTELLA [--csv]\n\n"
         "Elenca i titoli di una cartella di archivio MetaStock nell'ordine del file MASTER,\n"
         "seguiti da quelli del file XMASTER.\n"
         "  --csv   righe CSV: simbolo,nome,campi,file,primo,ultimo,marcato\n";
}

void usoQuotazioni(QTextStream &s)
{
    s << "Uso: valorimetrico-cli quotazioni CARTELLA SIMBOLO [--csv]\n\n"
         "Elenca tutte le quotazioni di un titolo, dalla più vecchia.\n"
         "  --csv   righe CSV: data,apertura,massimo,minimo,chiusura,volume,ufficiale\n";
}

// Help, usage errors and the folder: the exit status when the command ends here.
std::optional<int> prepara(const QStringList &args, qsizetype posizionali, void (*uso)(QTextStream &), vm::cli::Io &io,
    Argomenti &a, CartellaMS &cartella)
{
    if (vm::cli::wantsHelp(args)) {
        uso(io.out);
        return vm::cli::Ok;
    }
    a = leggiArgomenti(args);
    if (!a.sconosciuto.isEmpty() || a.posizionali.size() != posizionali) {
        if (!a.sconosciuto.isEmpty())
            io.err << "Opzione sconosciuta: " << a.sconosciuto << "\n";
        uso(io.err);
        return vm::cli::Usage;
    }
    if (!apriCartella(a.posizionali.first(), cartella, io))
        return vm::cli::Failure;
    return std::nullopt;
}

} // namespace

QString testoFloatCsv(float valore)
{
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, valore, std::chars_format::fixed);
    return QString::fromLatin1(buf, r.ptr - buf);
}

int cmdTitoli(const QStringList &args, vm::cli::Io &io)
{
    Argomenti a;
    CartellaMS cartella;
    if (const auto fine = prepara(args, 1, usoTitoli, io, a, cartella))
        return *fine;

    if (a.csv) {
        io.out << "simbolo,nome,campi,file,primo,ultimo,marcato" << kFineRigaCsv;
        for (const RecordMaster &t : cartella.titoli) {
            io.out << vm::cli::csvText(t.simbolo) << ',' << vm::cli::csvText(t.nome) << ',' << t.campi << ','
                   << vm::cli::csvField(t.nomeFile) << ',' << dataIso(t.primaData) << ',' << dataIso(t.ultimaData)
                   << ',' << (t.marcato() ? 1 : 0) << kFineRigaCsv;
        }
        return cartella.danneggiata() ? vm::cli::Failure : vm::cli::Ok;
    }
    QList<QStringList> righe { { QStringLiteral("Simbolo"), QStringLiteral("Nome"), QStringLiteral("Campi"),
        QStringLiteral("File"), QStringLiteral("Prima quotazione"), QStringLiteral("Ultima quotazione"),
        QStringLiteral("Quotaflusso") } };
    for (const RecordMaster &t : cartella.titoli) {
        righe.append({ t.simbolo, t.nome, QString::number(t.campi), t.nomeFile, dataItaliana(t.primaData),
            dataItaliana(t.ultimaData), t.marcato() ? QStringLiteral("sì") : QStringLiteral("no") });
    }
    scriviTabella(io.out, righe, { false, false, true, false, false, false, false });
    io.out << "\n" << cartella.titoli.size() << " titoli in " << QDir::toNativeSeparators(cartella.percorso) << "\n";
    return cartella.danneggiata() ? vm::cli::Failure : vm::cli::Ok;
}

int cmdQuotazioni(const QStringList &args, vm::cli::Io &io)
{
    Argomenti a;
    CartellaMS cartella;
    if (const auto fine = prepara(args, 2, usoQuotazioni, io, a, cartella))
        return *fine;
    const QString &simbolo = a.posizionali.at(1);
    const RecordMaster *titolo = cartella.trovaSimbolo(simbolo);
    if (!titolo) {
        io.err << "Il titolo " << simbolo.trimmed() << " non si trova nella cartella "
               << QDir::toNativeSeparators(cartella.percorso) << ".\n";
        return vm::cli::Failure;
    }
    QString errore;
    const auto storia = leggiStoria(cartella.percorsoPrezzi(*titolo), titolo->campi, &errore);
    if (!storia) {
        io.err << errore << "\n";
        return vm::cli::Failure;
    }
    if (lunghezzaRecordPrezzi(titolo->campi) == 0) {
        io.err << "Il titolo " << titolo->simbolo << " dichiara " << titolo->campi
               << " campi per quotazione: nessuna quotazione letta.\n";
    }

    const auto facoltativo = [](const std::optional<float> &v, auto testo) { return v ? testo(*v) : QString(); };
    if (a.csv) {
        io.out << "data,apertura,massimo,minimo,chiusura,volume,ufficiale" << kFineRigaCsv;
        for (const QuotaMS &q : *storia) {
            io.out << dataIso(q.data) << ',' << facoltativo(q.apertura, testoFloatCsv) << ','
                   << testoFloatCsv(q.massimo) << ',' << testoFloatCsv(q.minimo) << ',' << testoFloatCsv(q.chiusura)
                   << ',' << testoFloatCsv(q.volume) << ',' << facoltativo(q.ufficiale, testoFloatCsv) << kFineRigaCsv;
        }
        return vm::cli::Ok;
    }
    const auto oTrattino
        = [&](const std::optional<float> &v) { return v ? testoFloatItaliano(*v) : QString(kCampoAssente); };
    QList<QStringList> righe { { QStringLiteral("Data"), QStringLiteral("Apertura"), QStringLiteral("Massimo"),
        QStringLiteral("Minimo"), QStringLiteral("Chiusura"), QStringLiteral("Volume"), QStringLiteral("Ufficiale") } };
    for (const QuotaMS &q : *storia) {
        righe.append(
            { dataItaliana(q.data), oTrattino(q.apertura), testoFloatItaliano(q.massimo), testoFloatItaliano(q.minimo),
                testoFloatItaliano(q.chiusura), testoFloatItaliano(q.volume), oTrattino(q.ufficiale) });
    }
    scriviTabella(io.out, righe, { false, true, true, true, true, true, true });
    io.out << "\n"
           << storia->size() << " quotazioni di " << titolo->simbolo << " (" << titolo->nome << "), file "
           << titolo->nomeFile << "\n";
    return vm::cli::Ok;
}

} // namespace vm::metastock
