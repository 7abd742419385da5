#include "ArchiviProva.h"
#include "metastock/Master.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace vm::metastock;

Q_DECLARE_METATYPE(EsitoRicerca::Stato)

class TstMaster : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cartellaScritta_data();
    void cartellaScritta();
    void oltre255Titoli();
    void danni_data();
    void danni();
    void trovaTicker_data();
    void trovaTicker();
    void cercaPerLettera();
    void eliminaTitolo_data();
    void eliminaTitolo();
    void eliminaDaXMaster();
    void archiviReali_data();
    void archiviReali();

private:
    QString nuovaCartella(const QList<TitoloArchivio> &titoli, const OpzioniArchivio &opzioni = {});
    QTemporaryDir m_radice;
    int m_cartelle = 0;
};

QString TstMaster::nuovaCartella(const QList<TitoloArchivio> &titoli, const OpzioniArchivio &opzioni)
{
    const QString percorso = m_radice.filePath(QString::number(++m_cartelle));
    QDir().mkpath(percorso);
    QString errore;
    if (!scriviArchivio(percorso, titoli, opzioni, &errore))
        qFatal("%s", qPrintable(errore));
    return percorso;
}

void TstMaster::cartellaScritta_data()
{
    QTest::addColumn<int>("campi");
    QTest::addColumn<bool>("marcato");
    QTest::addColumn<bool>("minuscoli");
    QTest::addColumn<char>("riempimento");
    QTest::addColumn<QString>("simboloScritto");
    QTest::addColumn<QString>("simbolo");
    QTest::addColumn<QString>("nome");
    QTest::addColumn<int>("numeroFile");
    QTest::addColumn<QString>("nomeFile");

    QTest::newRow("7 fields, marked") << 7 << true << false << ' ' << "ENEL"
                                      << "ENEL"
                                      << "ENEL" << 1 << "F1.DAT";
    QTest::newRow("6 fields, unmarked, lower case") << 6 << false << true << ' ' << "A2A"
                                                    << "A2A"
                                                    << "A2A" << 7 << "f7.dat";
    QTest::newRow("5 fields, NUL padding") << 5 << false << false << '\0' << "TU2__1990U"
                                           << "TU2__1990U"
                                           << "2-Year Note C 19" << 131 << "F131.DAT";
    QTest::newRow("padded symbol, Windows-1252 name") << 7 << true << false << ' ' << "  CIT "
                                                      << "CIT"
                                                      << "CITTÀ" << 255 << "F255.DAT";
    QTest::newRow("file number 0, empty symbol") << 7 << false << false << '\0' << ""
                                                 << ""
                                                 << "APX" << 0 << "F0.DAT";
}

void TstMaster::cartellaScritta()
{
    QFETCH(int, campi);
    QFETCH(bool, marcato);
    QFETCH(bool, minuscoli);
    QFETCH(char, riempimento);
    QFETCH(QString, simboloScritto);
    QFETCH(QString, simbolo);
    QFETCH(QString, nome);
    QFETCH(int, numeroFile);
    QFETCH(QString, nomeFile);

    TitoloArchivio primo = prova::titolo(QStringLiteral("PRIMO"), QStringLiteral("Primo"));
    primo.quote = prova::quote(2, QDate(1990, 6, 22));
    TitoloArchivio t = prova::titolo(simboloScritto, nome, campi, 4); // 30/12/1999 to 02/01/2000
    t.numeroFile = numeroFile;
    primo.numeroFile = numeroFile == 1 ? 2 : 1;
    const QString percorso = nuovaCartella({ primo, t }, { marcato, minuscoli, riempimento });

    const CartellaMS c = CartellaMS::leggi(percorso);
    QCOMPARE(c.stato, CartellaMS::Stato::Letta);
    QCOMPARE(QFileInfo(c.percorsoMaster).fileName(), QString(minuscoli ? "master" : "MASTER"));
    QCOMPARE(c.conteggioMaster, 2);
    QCOMPARE(c.marchio.size(), 5);
    QCOMPARE(c.marchio == kMarchioQuotaflusso, marcato);
    QCOMPARE(c.titoli.size(), 2);
    QCOMPARE(c.titoli[0].primaData, QDate(1990, 6, 22));
    const RecordMaster &r = c.titoli[1];
    QCOMPARE(r.grezzo.size(), kLunghezzaRecordMaster);
    QCOMPARE(r.posizione, 3);
    QCOMPARE(r.simbolo, simbolo);
    QCOMPARE(r.nome, nome);
    QCOMPARE(r.campi, campi);
    QCOMPARE(r.numeroFile, numeroFile);
    QCOMPARE(r.nomeFile, nomeFile);
    QCOMPARE(r.primaData, QDate(1999, 12, 30));
    QCOMPARE(r.ultimaData, QDate(2000, 1, 2));
    QCOMPARE(r.marcato(), marcato);
    QCOMPARE(c.trovaSimbolo(QString(u' ' + simbolo + u' ')), &r);
    QVERIFY(QFile::exists(c.percorsoPrezzi(r)));
}

void TstMaster::oltre255Titoli()
{
    QList<TitoloArchivio> titoli;
    for (int i = 0; i < 300; ++i)
        titoli.append(prova::titolo(QStringLiteral("T%1").arg(i), QStringLiteral("Titolo %1").arg(i), 5 + i % 3, 1));
    const CartellaMS c = CartellaMS::leggi(nuovaCartella(titoli, { true, true, ' ', 255 }));
    QCOMPARE(c.conteggioMaster, 255);
    QCOMPARE(c.conteggioXMaster, 45);
    QCOMPARE(c.titoli.size(), 300);
    for (int i = 0; i < 300; ++i) {
        const RecordMaster &r = c.titoli[i];
        QCOMPARE(r.simbolo, titoli[i].simbolo);
        QCOMPARE(r.campi, titoli[i].campi);
        QCOMPARE(r.elenco, i < 255 ? Elenco::Master : Elenco::XMaster);
        QVERIFY2(r.marcato(), "an XMASTER title carries its folder's mark");
        QVERIFY(QFile::exists(c.percorsoPrezzi(r)));
    }
    QCOMPARE(c.titoli[255].nomeFile, "f256.mwd");
    QCOMPARE(c.titoli[255].primaData, QDate(1999, 12, 30));
}

void TstMaster::danni_data()
{
    QTest::addColumn<QByteArray>("master");
    QTest::addColumn<QByteArray>("xmaster"); // not written when empty
    QTest::addColumn<int>("titoli");

    QList<QByteArray> record;
    for (int i = 0; i < 300; ++i)
        record.append(recordMasterArchivio(prova::titolo(QStringLiteral("S%1").arg(i), QStringLiteral("N")), i, {}));
    const QByteArray tre = datiMasterArchivio(record.mid(0, 3), 3);
    QByteArray conteggioGrande = tre;
    conteggioGrande[0] = char(200);
    const QByteArray x = datiXMasterArchivio({ recordXMasterArchivio(prova::titolo("X", "X"), 256) }, 257);

    QTest::newRow("empty MASTER") << QByteArray() << QByteArray() << 0;
    QTest::newRow("MASTER shorter than a record") << tre.left(52) << QByteArray() << 0;
    QTest::newRow("header count 0") << datiMasterArchivio({}, 0) << QByteArray() << 0;
    QTest::newRow("count 0 with records after it")
        << tre.left(0).append(QByteArray(53, '\0')).append(record[0]) << QByteArray() << 0;
    QTest::newRow("count larger than the file") << conteggioGrande << QByteArray() << 3;
    QTest::newRow("last record cut short") << tre.left(tre.size() - 1) << QByteArray() << 2;
    QTest::newRow("16-bit count") << datiMasterArchivio(record, 300) << QByteArray() << 300;
    QTest::newRow("broken XMASTER") << tre << QByteArray("broken file\n") << 3;
    QTest::newRow("XMASTER count too large") << tre << QByteArray(x).replace(10, 1, "\x09") << 4;
    QTest::newRow("XMASTER record cut short") << tre << x.left(x.size() - 1) << 3;
}

void TstMaster::danni()
{
    QFETCH(QByteArray, master);
    QFETCH(QByteArray, xmaster);
    QFETCH(int, titoli);
    const QString percorso = m_radice.filePath(QStringLiteral("danno%1").arg(++m_cartelle));
    QDir().mkpath(percorso);
    QVERIFY(scriviFile(percorso + "/MASTER", master));
    if (!xmaster.isEmpty())
        QVERIFY(scriviFile(percorso + "/XMASTER", xmaster));
    const CartellaMS c = CartellaMS::leggi(percorso);
    QCOMPARE(c.stato, CartellaMS::Stato::Letta);
    QCOMPARE(c.titoli.size(), titoli);
}

void TstMaster::trovaTicker_data()
{
    QTest::addColumn<QStringList>("cartelle"); // "-" names a folder that does not exist
    QTest::addColumn<QString>("simbolo");
    QTest::addColumn<EsitoRicerca::Stato>("stato");
    QTest::addColumn<int>("cartella"); // index of the folder found, or of the missing one
    QTest::addColumn<QString>("nomeFile");

    using S = EsitoRicerca::Stato;
    QTest::newRow("first folder holding it wins") << QStringList { "a", "b" } << "DUP" << S::Trovato << 0 << "F2.DAT";
    QTest::newRow("later folder") << QStringList { "a", "b" } << "SOLOB" << S::Trovato << 1 << "F1.DAT";
    QTest::newRow("padded on both sides") << QStringList { "a", "b" } << " PAD " << S::Trovato << 0 << "F3.DAT";
    QTest::newRow("case counts") << QStringList { "a", "b" } << "dup" << S::NonTrovato << -1 << "";
    QTest::newRow("missing folder before the match")
        << QStringList { "a", "-", "b" } << "SOLOB" << S::CartellaMancante << 1 << "";
    QTest::newRow("missing folder after the match") << QStringList { "a", "-" } << "DUP" << S::Trovato << 0 << "F2.DAT";
    QTest::newRow("no folders") << QStringList {} << "DUP" << S::NessunaCartella << -1 << "";
}

void TstMaster::trovaTicker()
{
    QFETCH(QStringList, cartelle);
    QFETCH(QString, simbolo);
    QFETCH(EsitoRicerca::Stato, stato);
    QFETCH(int, cartella);
    QFETCH(QString, nomeFile);
    using S = EsitoRicerca::Stato;

    static const QString a = nuovaCartella(
        { prova::titolo("ALFA", "Alfa"), prova::titolo("DUP", "Doppio A"), prova::titolo("PAD    ", "Pad") });
    static const QString b = nuovaCartella({ prova::titolo("SOLOB", "Solo B"), prova::titolo("DUP", "Doppio B") });
    QStringList percorsi;
    for (const QString &c : cartelle)
        percorsi.append(c == "a" ? a : c == "b" ? b : m_radice.filePath("manca"));

    ArchivioMS archivio(percorsi);
    const EsitoRicerca esito = archivio.TrovaTicker(simbolo);
    QCOMPARE(esito.stato, stato);
    if (stato == S::Trovato) {
        QCOMPARE(esito.titolo.cartella, percorsi[cartella]);
        QCOMPARE(esito.titolo.record.nomeFile, nomeFile);
        QCOMPARE(esito.titolo.percorsoPrezzi, QDir(percorsi[cartella]).filePath(nomeFile));
    }
    if (stato == S::CartellaMancante)
        QCOMPARE(esito.messaggio(), "Errore su lettura " + percorsi[cartella]);
    if (stato == S::NessunaCartella)
        QCOMPARE(esito.messaggio(), "Nessun titolo in archivio.");
}

void TstMaster::cercaPerLettera()
{
    const QString a = nuovaCartella({ prova::titolo("A1", "acea"), prova::titolo("B1", "Banca"),
        prova::titolo("A2", "  Alfa", 5), prova::titolo("E", "") });
    const QString b = nuovaCartella({ prova::titolo("A3", "Anima") });
    const QString manca = m_radice.filePath("manca");
    ArchivioMS archivio({ a, manca, b });
    QStringList mancanti;
    QList<int> passi;
    const auto trovati
        = archivio.CercaMS(u'a', &mancanti, [&](int record, int totale) { passi.append(record * 100 + totale); });
    QStringList simboli;
    for (const auto &t : trovati)
        simboli.append(t.record.simbolo);
    QCOMPARE(simboli, QStringList({ "A1", "A2", "A3" }));
    QCOMPARE(mancanti, QStringList { manca });
    QCOMPARE(passi, QList<int>({ 205, 305, 405, 505, 202 }));
}

void TstMaster::eliminaTitolo_data()
{
    QTest::addColumn<QStringList>("simboli");
    QTest::addColumn<QString>("daRimuovere");
    QTest::addColumn<QStringList>("restano");
    QTest::newRow("the only title") << QStringList { "SOLO" } << "SOLO" << QStringList {};
    QTest::newRow("middle one, order kept") << QStringList { "A", "B", "C" } << "B" << QStringList { "A", "C" };
    QTest::newRow("asked in lower case") << QStringList { "A", "B" } << " a " << QStringList { "B" };
    QTest::newRow("first of two equal") << QStringList { "A", "B", "A" } << "A" << QStringList { "B", "A" };
    QTest::newRow("records being deleted go too")
        << QStringList { "A", QString(kSimboloInCancellazione), "B" } << "B" << QStringList { "A" };
    QTest::newRow("not there") << QStringList { "A" } << "Z" << QStringList { "A" };
}

void TstMaster::eliminaTitolo()
{
    QFETCH(QStringList, simboli);
    QFETCH(QString, daRimuovere);
    QFETCH(QStringList, restano);
    QList<TitoloArchivio> titoli;
    for (const QString &s : simboli)
        titoli.append(prova::titolo(s, "Nome " + s));
    const QString percorso = nuovaCartella(titoli, { true, true, ' ', 255 });
    const QByteArray prima = prova::leggi(percorso + "/master");

    ArchivioMS archivio({ m_radice.filePath("manca"), percorso });
    const EsitoEliminazione esito = archivio.EliminaTitolo(daRimuovere);
    const bool rimosso = restano.size() < simboli.size();
    QCOMPARE(esito.stato, rimosso ? EsitoEliminazione::Stato::Rimosso : EsitoEliminazione::Stato::NonTrovato);
    if (!rimosso) {
        QCOMPARE(esito.messaggio(daRimuovere), "Il titolo " + daRimuovere + " non trovato in archivio.");
        QCOMPARE(prova::leggi(percorso + "/master"), prima);
        return;
    }
    QCOMPARE(esito.titolo.cartella, percorso);
    QVERIFY(!QFile::exists(percorso + "/MSMASTER"));
    QVERIFY(!QFile::exists(percorso + "/MASTER"));
    QVERIFY(QFile::exists(esito.titolo.percorsoPrezzi));

    const QByteArray dopo = prova::leggi(percorso + "/master");
    QCOMPARE(dopo.size(), kLunghezzaRecordMaster * (restano.size() + 1));
    QCOMPARE(dopo.mid(2, 51), QByteArray(51, ' '));
    QStringList letti;
    for (const RecordMaster &t : archivio.cartella(1).titoli) {
        letti.append(t.simbolo);
        QVERIFY(prima.contains(t.grezzo)); // records are copied byte for byte
    }
    QCOMPARE(letti, restano);
    QCOMPARE(archivio.cartella(1).conteggioMaster, restano.size());
}

void TstMaster::eliminaDaXMaster()
{
    const QString percorso
        = nuovaCartella({ prova::titolo("M", "M"), prova::titolo("X", "X") }, { true, false, ' ', 1 });
    const QByteArray prima = prova::leggi(percorso + "/MASTER");
    ArchivioMS archivio({ percorso });
    QCOMPARE(archivio.EliminaTitolo(u"X").stato, EsitoEliminazione::Stato::SoloInXMaster);
    QCOMPARE(prova::leggi(percorso + "/MASTER"), prima);
}

void TstMaster::archiviReali_data()
{
    QTest::addColumn<QString>("cartella");
    QTest::addColumn<int>("titoli");
    QTest::addColumn<int>("indice");
    QTest::addColumn<QString>("nomeFile");
    QTest::addColumn<QString>("simbolo");
    QTest::addColumn<QString>("nome");
    QTest::addColumn<int>("campi");
    QTest::addColumn<QDate>("primo");
    QTest::addColumn<QDate>("ultimo");

    QTest::newRow("ASR") << "italia-2010" << 462 << 0 << "F1.DAT"
                         << "ASR"
                         << "A.S. ROMA" << 7 << QDate(2010, 1, 4) << QDate(2010, 7, 9);
    QTest::newRow("ENEL") << "italia-2010" << 462 << 127 << "F128.DAT"
                          << "ENEL"
                          << "ENEL." << 7 << QDate(2010, 1, 4) << QDate(2010, 7, 9);
    QTest::newRow("RAT") << "italia-2010" << 462 << 254 << "F255.DAT"
                         << "RAT"
                         << "RATTI" << 7 << QDate(2010, 1, 4) << QDate(2010, 7, 9);
    QTest::newRow("RCF") << "italia-2010" << 462 << 255 << "F256.MWD"
                         << "RCF"
                         << "RCF GROUP" << 7 << QDate(2010, 1, 5) << QDate(2010, 7, 9);
    QTest::newRow("AEMI") << "italia-bbfinance" << 40 << -1 << "F20.DAT"
                          << "AEMI"
                          << "A2A" << 7 << QDate(1998, 7, 22) << QDate(2014, 6, 27);
    QTest::newRow("APX") << "sei-campi" << 25 << 0 << "F1.DAT"
                         << ""
                         << "APX" << 6 << QDate(1985, 1, 1) << QDate(2021, 10, 29);
    QTest::newRow("TU2") << "futures-2y-note" << 131 << 0 << "F1.dat"
                         << "TU2__1990U"
                         << "2-Year Note C 19" << 7 << QDate(1990, 6, 22) << QDate(1990, 9, 19);
}

void TstMaster::archiviReali()
{
    QFETCH(QString, cartella);
    QFETCH(int, titoli);
    QFETCH(int, indice);
    QFETCH(QString, nomeFile);
    QFETCH(QString, simbolo);
    QFETCH(QString, nome);
    QFETCH(int, campi);
    QFETCH(QDate, primo);
    QFETCH(QDate, ultimo);
    const QString percorso = QStringLiteral(VM_FIXTURES_DIR) + u'/' + cartella;
    if (!QDir(percorso).exists())
        QSKIP("real archives not present");

    const CartellaMS c = CartellaMS::leggi(percorso);
    QCOMPARE(c.stato, CartellaMS::Stato::Letta);
    QCOMPARE(c.titoli.size(), titoli);
    QVERIFY(!c.marchio.isEmpty());
    QVERIFY(c.marchio != kMarchioQuotaflusso);
    const RecordMaster *t = indice >= 0 ? &c.titoli[indice] : c.trovaSimbolo(simbolo);
    QVERIFY(t);
    QCOMPARE(t->nomeFile, nomeFile);
    QCOMPARE(t->simbolo, simbolo);
    QCOMPARE(t->nome, nome);
    QCOMPARE(t->campi, campi);
    QCOMPARE(t->primaData, primo);
    QCOMPARE(t->ultimaData, ultimo);
    QVERIFY(!t->marcato());
}

QTEST_APPLESS_MAIN(TstMaster)
#include "tst_master.moc"
