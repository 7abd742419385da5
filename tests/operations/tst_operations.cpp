// The amount rules, the keystroke filter, the fee settings and the purchase, sale and dividend rules, on the
// worked examples of a user's day at the desk.
#include "operations/Importi.h"
#include "operations/Operazioni.h"
#include "operations/Situazione.h"

#include "core/Settings.h"

#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::operations;

Q_DECLARE_METATYPE(vm::operations::CampoImporto)
Q_DECLARE_METATYPE(vm::operations::Finestra)
Q_DECLARE_METATYPE(vm::operations::Colore)

namespace {

double singolo(double v)
{
    return double(float(v));
}

store::DossierRow riga(double prezzo, qint64 qta)
{
    store::DossierRow r;
    r.idTitolo = 7;
    r.titolo = QStringLiteral("ABC");
    r.descrizione = QStringLiteral("ALFA BETA");
    r.giorno = QDate(2024, 1, 8);
    r.prezzo = prezzo;
    r.qta = qta;
    return r;
}

} // namespace

class TestOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Total shown for a quantity and a net price as typed; no total at all while a field is blank.
    void carico_data()
    {
        QTest::addColumn<QString>("quantita");
        QTest::addColumn<QString>("prezzo");
        QTest::addColumn<QString>("totale"); // empty: no recomputation

        QTest::newRow("100 x 2,5") << "100"
                                   << "2,5"
                                   << "250,0";
        QTest::newRow("3 x 0,3333 rounds to one decimal") << "3"
                                                          << "0,3333"
                                                          << "1,0";
        QTest::newRow("thousands grouped") << "1500"
                                           << "1,2345"
                                           << "1.851,75";
        QTest::newRow("three decimals at most") << "7"
                                                << "0,12345"
                                                << "0,864";
        QTest::newRow("quantity 0") << "0"
                                    << "12"
                                    << "0,0";
        QTest::newRow("price with a trailing comma") << "4"
                                                     << "3,"
                                                     << "12,0";
        QTest::newRow("quantity blank") << ""
                                        << "2,5"
                                        << "";
        QTest::newRow("quantity blanks only") << "  "
                                              << "2,5"
                                              << "";
        QTest::newRow("price blank") << "100"
                                     << ""
                                     << "";
        QTest::newRow("two commas") << "100"
                                    << "1,2,5"
                                    << "";
    }
    void carico()
    {
        QFETCH(QString, quantita);
        QFETCH(QString, prezzo);
        QFETCH(QString, totale);
        QCOMPARE(caricoDopoModifica(quantita, prezzo).value_or(QString()), totale);
    }

    // One keystroke into a field: the text after it, whether it was taken, and Enter moving on.
    void tasto_data()
    {
        QTest::addColumn<CampoImporto>("campo");
        QTest::addColumn<QString>("prima");
        QTest::addColumn<int>("inizio");
        QTest::addColumn<int>("lunghezza");
        QTest::addColumn<QString>("tasto");
        QTest::addColumn<QString>("dopo");
        QTest::addColumn<int>("cursore");
        QTest::addColumn<bool>("accettato");
        QTest::addColumn<bool>("avanti");

        const auto Q = CampoImporto::Quantita, M = CampoImporto::PrezzoMercato, N = CampoImporto::PrezzoNetto;
        QTest::newRow("digit appended") << Q << "12" << 2 << 0 << "3"
                                        << "123" << 3 << true << false;
        QTest::newRow("digit inserted") << Q << "13" << 1 << 0 << "2"
                                        << "123" << 2 << true << false;
        QTest::newRow("quantity: no comma") << Q << "12" << 2 << 0 << ","
                                            << "12" << 2 << false << false;
        QTest::newRow("quantity: no point") << Q << "12" << 2 << 0 << "."
                                            << "12" << 2 << false << false;
        QTest::newRow("quantity: no letter") << Q << "12" << 2 << 0 << "a"
                                             << "12" << 2 << false << false;
        QTest::newRow("quantity: no minus") << Q << "" << 0 << 0 << "-"
                                            << "" << 0 << false << false;
        QTest::newRow("Enter moves on") << Q << "12" << 2 << 0 << "\r"
                                        << "12" << 2 << false << true;
        QTest::newRow("Enter in a price") << N << "2,5" << 3 << 0 << "\r"
                                          << "2,5" << 3 << false << true;
        QTest::newRow("net: point becomes comma") << N << "2" << 1 << 0 << "."
                                                  << "2," << 2 << true << false;
        QTest::newRow("net: second comma removed") << N << "2,5" << 3 << 0 << ","
                                                   << "2,5" << 3 << true << false;
        QTest::newRow("net: second comma by point") << N << "2,5" << 1 << 0 << "."
                                                    << "2,5" << 1 << true << false;
        QTest::newRow("net: comma replacing the comma") << N << "2,5" << 1 << 1 << ","
                                                        << "2,5" << 2 << true << false;
        QTest::newRow("fee: point becomes comma") << CampoImporto::Commissione << "0" << 1 << 0 << "."
                                                  << "0," << 2 << true << false;
        QTest::newRow("market: comma") << M << "12" << 2 << 0 << ","
                                       << "12," << 3 << true << false;
        QTest::newRow("market: point refused") << M << "12" << 2 << 0 << "."
                                               << "12" << 2 << false << false;
        QTest::newRow("market: second comma removed") << M << "1,2" << 3 << 0 << ","
                                                      << "1,2" << 3 << true << false;
        QTest::newRow("Backspace") << N << "2,5" << 3 << 0 << "\b"
                                   << "2," << 2 << true << false;
        QTest::newRow("Backspace at the start") << N << "2,5" << 0 << 0 << "\b"
                                                << "2,5" << 0 << true << false;
        QTest::newRow("Backspace on a selection") << Q << "12345" << 1 << 3 << "\b"
                                                  << "15" << 1 << true << false;
        QTest::newRow("digit over a selection") << Q << "12345" << 0 << 5 << "9"
                                                << "9" << 1 << true << false;
        QTest::newRow("selection past the end") << Q << "12" << 5 << 9 << "3"
                                                << "123" << 3 << true << false;
    }
    void tasto()
    {
        QFETCH(CampoImporto, campo);
        QFETCH(QString, prima);
        QFETCH(int, inizio);
        QFETCH(int, lunghezza);
        QFETCH(QString, tasto);
        const EsitoTasto e = filtraTasto(campo, prima, inizio, lunghezza, tasto.at(0));
        QTEST(e.testo, "dopo");
        QTEST(e.cursore, "cursore");
        QTEST(e.accettato, "accettato");
        QTEST(e.campoSuccessivo, "avanti");
    }

    // Pasted text goes through the same rules, as if typed.
    void testoIncollato_data()
    {
        QTest::addColumn<CampoImporto>("campo");
        QTest::addColumn<QString>("incollato");
        QTest::addColumn<QString>("risultato");
        QTest::newRow("net 2.5") << CampoImporto::PrezzoNetto << "2.5"
                                 << "2,5";
        QTest::newRow("net 1.234,5") << CampoImporto::PrezzoNetto << "1.234,5"
                                     << "1,2345";
        QTest::newRow("quantity 1.000") << CampoImporto::Quantita << "1.000"
                                        << "1000";
        QTest::newRow("quantity with blanks") << CampoImporto::Quantita << " 12 a"
                                              << "12";
        QTest::newRow("market 1,2,3") << CampoImporto::PrezzoMercato << "1,2,3"
                                      << "1,23";
    }
    void testoIncollato()
    {
        QFETCH(CampoImporto, campo);
        QFETCH(QString, incollato);
        QTEST(filtraTesto(campo, incollato), "risultato");
    }

    // The fee settings as the frame shows them, from the file as it stands; and written back.
    void spese_data()
    {
        QTest::addColumn<QByteArray>("ini"); // null: no file at all
        QTest::addColumn<int>("tipo");
        QTest::addColumn<QStringList>("valori"); // commissione, spese, bolli, capital gain

        QTest::newRow("no file") << QByteArray() << 0 << QStringList { "0", "0", "0", "0" };
        QTest::newRow("Tipo 1") << QByteArray("[Commissioni]\nTipo=1\nValore=0,19\n") << 1
                                << QStringList { "0,19", "0", "0", "0" };
        QTest::newRow("Tipo absent") << QByteArray("[Commissioni]\nValore=9\n") << 0
                                     << QStringList { "9", "0", "0", "0" };
        QTest::newRow("Tipo out of range")
            << QByteArray("[Commissioni]\nTipo=2\n") << 0 << QStringList { "0", "0", "0", "0" };
        QTest::newRow("Tipo not a number")
            << QByteArray("[Commissioni]\nTipo=si\n") << 0 << QStringList { "0", "0", "0", "0" };
        QTest::newRow("Spese by caption") << QByteArray("[Spese]\nSpese=1,5\nBolli=2\nCapital Gain=26%\n") << 0
                                          << QStringList { "0", "1,5", "2", "26%" };
    }
    void spese()
    {
        QFETCH(QByteArray, ini);
        QFETCH(int, tipo);
        QFETCH(QStringList, valori);
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("valorimetrico.ini"));
        if (!ini.isNull()) {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(ini);
        }
        const ImpostazioniSpese letto = Leggi_SPESE(file);
        QCOMPARE(letto.tipoCommissione, tipo);
        QCOMPARE((QStringList { letto.commissione, letto.spese, letto.bolli, letto.capitalGain }), valori);

        // Written and read again, the same figures; a blank field is written as 0.
        ImpostazioniSpese scritto = letto;
        scritto.tipoCommissione = 1 - tipo;
        scritto.bolli = QStringLiteral("  ");
        QVERIFY(scriviSpese(file, scritto));
        scritto.bolli = QStringLiteral("0");
        QCOMPARE(Leggi_SPESE(file), scritto);
    }

    // The average after a further purchase: amount held in single precision, result to three decimals.
    void acquisto_data()
    {
        QTest::addColumn<double>("prezzo");
        QTest::addColumn<qint64>("qta");
        QTest::addColumn<double>("netto");
        QTest::addColumn<qint64>("quantita");
        QTest::addColumn<double>("nuovoPrezzo");
        QTest::addColumn<qint64>("nuovaQta");

        QTest::newRow("100 at 10 + 50 at 13") << 10.0 << 100LL << 13.0 << 50LL << 11.0 << 150LL;
        QTest::newRow("same price") << 10.0 << 100LL << 10.0 << 50LL << 10.0 << 150LL;
        QTest::newRow("quantity 0") << 10.0 << 100LL << 13.0 << 0LL << 10.0 << 100LL;
        QTest::newRow("rounded to three decimals") << 10.0 << 2LL << 11.0 << 1LL << singolo(10.333) << 3LL;
        QTest::newRow("half rounds up") << 1.0 << 1LL << 1.001 << 1LL << singolo(1.001) << 2LL;
        QTest::newRow("a fourth decimal of the price") << 0.3333 << 3LL << 0.3333 << 3LL << singolo(0.333) << 6LL;
        QTest::newRow("nothing held, nothing bought") << 12.5 << 0LL << 13.0 << 0LL << 12.5 << 0LL;
    }
    void acquisto()
    {
        QFETCH(double, prezzo);
        QFETCH(qint64, qta);
        QFETCH(double, netto);
        QFETCH(qint64, quantita);
        const store::DossierRow r = acquista(riga(prezzo, qta), { quantita, netto });
        QTEST(r.prezzo, "nuovoPrezzo");
        QTEST(r.qta, "nuovaQta");
    }

    // A sale: the shares left carry the cost not yet recovered; all of them remove the title.
    void vendita_data()
    {
        QTest::addColumn<qint64>("quantita");
        QTest::addColumn<double>("netto");
        QTest::addColumn<int>("stato");
        QTest::addColumn<double>("nuovoPrezzo");
        QTest::addColumn<qint64>("nuovaQta");
        QTest::addColumn<QString>("messaggio");

        const int P = int(EsitoVendita::Stato::Parziale), T = int(EsitoVendita::Stato::Totale),
                  R = int(EsitoVendita::Stato::Rifiutata);
        // From 100 shares at 10.
        QTest::newRow("40 at 12") << 40LL << 12.0 << P << singolo(8.667) << 60LL << "";
        QTest::newRow("at a loss") << 40LL << 8.0 << P << singolo(11.333) << 60LL << "";
        QTest::newRow("one fewer than held") << 99LL << 10.0 << P << 10.0 << 1LL << "";
        QTest::newRow("recovering more than the cost") << 99LL << 12.0 << P << -188.0 << 1LL << "";
        QTest::newRow("quantity 0") << 0LL << 12.0 << P << 10.0 << 100LL << "";
        QTest::newRow("all of it") << 100LL << 12.0 << T << 10.0 << 100LL << "";
        QTest::newRow("more than held") << 101LL << 12.0 << R << 10.0 << 100LL
                                        << "Verificare il numero di quote, risultano 100 disponibili.";
    }
    void vendita()
    {
        QFETCH(qint64, quantita);
        QFETCH(double, netto);
        const EsitoVendita v = vendi(riga(10, 100), { quantita, netto });
        QTEST(int(v.stato), "stato");
        QTEST(v.riga.prezzo, "nuovoPrezzo");
        QTEST(v.riga.qta, "nuovaQta");
        QTEST(v.messaggio ? v.messaggio->text : QString(), "messaggio");
        if (v.messaggio) {
            QCOMPARE(v.messaggio->title, QStringLiteral("Vendita"));
            QCOMPARE(v.messaggio->focus, QLatin1String(kQuantityField));
            QVERIFY(v.messaggio->selectAll);
        }
    }

    // The confirm button's checks, in their order, with their titles and focus.
    void controlli_data()
    {
        QTest::addColumn<Finestra>("finestra");
        QTest::addColumn<QString>("titolo");
        QTest::addColumn<QString>("quantita");
        QTest::addColumn<QString>("prezzo");
        QTest::addColumn<QString>("messaggio"); // "titolo|testo", empty when the checks pass
        QTest::addColumn<QString>("fuoco");

        const auto F61 = Finestra::NuovoTitolo, F6 = Finestra::Acquisto, F66 = Finestra::Vendita;
        QTest::newRow("61 no title") << F61 << " "
                                     << ""
                                     << ""
                                     << "Acquisto|Selezionare il titolo" << QString();
        QTest::newRow("6 no title") << F6 << ""
                                    << "1"
                                    << "1"
                                    << "Acquisto nuove quote|Selezionare il titolo" << QString();
        QTest::newRow("66 has no title check") << F66 << ""
                                               << ""
                                               << ""
                                               << "Vendita|Inserire il numero di azioni."
                                               << "Text2";
        QTest::newRow("quantity blank") << F61 << "ALFA"
                                        << "  "
                                        << "2,5"
                                        << "Acquisto|Inserire il numero di azioni."
                                        << "Text2";
        QTest::newRow("price blank") << F6 << "ALFA"
                                     << "10"
                                     << ""
                                     << "Acquisto nuove quote|Inserire il prezzo x azione."
                                     << "Text6";
        QTest::newRow("two commas") << F66 << ""
                                    << "10"
                                    << "1,2,3"
                                    << "Vendita|Verificare il prezzo."
                                    << "Text6";
        QTest::newRow("a lone comma") << F61 << "ALFA"
                                      << "10"
                                      << ","
                                      << "Acquisto|Verificare il prezzo."
                                      << "Text6";
        QTest::newRow("beyond the quantity column") << F61 << "ALFA"
                                                    << "2147483648"
                                                    << "1"
                                                    << "Acquisto|Verificare la quantità."
                                                    << "Text2";
        QTest::newRow("pasted letters") << F66 << ""
                                        << "12a"
                                        << "1"
                                        << "Vendita|Verificare la quantità."
                                        << "Text2";
        QTest::newRow("quantity 0 passes") << F61 << "ALFA"
                                           << "0"
                                           << "2,5"
                                           << "" << QString();
        QTest::newRow("largest quantity passes") << F6 << "ALFA"
                                                 << "2147483647"
                                                 << "0,001"
                                                 << "" << QString();
    }
    void controlli()
    {
        QFETCH(Finestra, finestra);
        QFETCH(QString, titolo);
        QFETCH(QString, quantita);
        QFETCH(QString, prezzo);
        const std::optional<Message> m = controllaOperazione(finestra, titolo, quantita, prezzo);
        QTEST(m ? m->title + u'|' + m->text : QString(), "messaggio");
        QTEST(m ? m->focus : QString(), "fuoco");
    }

    // The operation's date: weekends back to Friday, a future day refused with each window's own message.
    void data_data()
    {
        QTest::addColumn<Finestra>("finestra");
        QTest::addColumn<QDate>("scelta");
        QTest::addColumn<QDate>("oggi");
        QTest::addColumn<QDate>("data");
        QTest::addColumn<QString>("messaggio");

        const QDate mercoledi(2026, 11, 18), venerdi(2026, 11, 20), sabato(2026, 11, 21), domenica(2026, 11, 22);
        QTest::newRow("a weekday") << Finestra::NuovoTitolo << mercoledi << venerdi << mercoledi << "";
        QTest::newRow("today") << Finestra::Acquisto << venerdi << venerdi << venerdi << "";
        QTest::newRow("Saturday") << Finestra::NuovoTitolo << sabato << domenica << venerdi << "";
        QTest::newRow("Sunday") << Finestra::Vendita << domenica << domenica << venerdi << "";
        QTest::newRow("Sunday opening") << Finestra::Acquisto << domenica << domenica << venerdi << "";
        QTest::newRow("future, 61") << Finestra::NuovoTitolo << venerdi.addDays(3) << mercoledi << mercoledi
                                    << "La data selezionata non valida.";
        QTest::newRow("future, 6") << Finestra::Acquisto << venerdi << mercoledi << mercoledi
                                   << "La data selezionata è successiva all'attuale.";
        QTest::newRow("future, 66") << Finestra::Vendita << venerdi << mercoledi << mercoledi << "Verificare la data";
        QTest::newRow("future on a Sunday")
            << Finestra::Vendita << domenica.addDays(1) << domenica << venerdi << "Verificare la data";
    }
    void data()
    {
        QFETCH(Finestra, finestra);
        QFETCH(QDate, scelta);
        QFETCH(QDate, oggi);
        const DataScelta d = dataOperazione(finestra, scelta, oggi);
        QTEST(d.data, "data");
        QTEST(d.messaggio ? d.messaggio->text : QString(), "messaggio");
        if (d.messaggio)
            QCOMPARE(d.messaggio->title, QStringLiteral("Verifica la data"));
    }

    // The dividend window: what is stored and what the title window shows after it.
    void dividendo_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<double>("prezzoMedio");
        QTest::addColumn<qint64>("qta");
        QTest::addColumn<double>("stored");
        QTest::addColumn<QStringList>("figure"); // data, dividendo, totale, rendimento; empty: refused

        QTest::newRow("0,35 on 10") << "0,35" << 10.0 << 100LL << 0.35
                                    << QStringList { "20/11/2026", "0,35", "35", "3,5%" };
        QTest::newRow("0,35 on 7") << "0,35" << 7.0 << 10LL << 0.35
                                   << QStringList { "20/11/2026", "0,35", "3.5", "5,0%" };
        QTest::newRow("150 at 0,2") << "0,2" << 4.0 << 150LL << 0.2
                                    << QStringList { "20/11/2026", "0,2", "30", "5,0%" };
        QTest::newRow("0 clears") << "0" << 10.0 << 100LL << 0.0 << QStringList { "00/00/00", "0", "0", "0" };
        QTest::newRow("0,00 clears") << "0,00" << 10.0 << 100LL << 0.0 << QStringList { "00/00/00", "0", "0", "0" };
        QTest::newRow("blank clears") << "  " << 10.0 << 100LL << 0.0 << QStringList { "00/00/00", "0", "0", "0" };
        QTest::newRow("a lone comma") << "," << 10.0 << 100LL << 0.0 << QStringList {};
    }
    void dividendo()
    {
        QFETCH(QString, testo);
        QFETCH(double, prezzoMedio);
        QFETCH(qint64, qta);
        QFETCH(QStringList, figure);
        const auto esito = salvaDividendo(testo, QDate(2026, 11, 20), prezzoMedio, qta);
        if (figure.isEmpty()) {
            QVERIFY(std::holds_alternative<Message>(esito));
            return;
        }
        const auto &e = std::get<EsitoDividendo>(esito);
        QTEST(e.dividendo, "stored");
        QCOMPARE(e.cancellato, !e.dataStacco.isValid());
        QCOMPARE((QStringList { e.testoData, e.testoDividendo, e.testoTotale, e.testoRendimento }), figure);
    }

    // Calcola: the three figures and their colour from the holding and its current value.
    void calcola_data()
    {
        QTest::addColumn<double>("prezzo");
        QTest::addColumn<qint64>("qta");
        QTest::addColumn<double>("attuale"); // negative: no quote
        QTest::addColumn<QStringList>("testi");
        QTest::addColumn<Colore>("colore");

        QTest::newRow("gain") << 10.0 << 100LL << 1250.0 << QStringList { "1.000,0", "250,0", "25,0%" } << Colore::Blu;
        QTest::newRow("loss") << 11.0 << 150LL << 1500.0 << QStringList { "1.650,0", "-150,0", "-9,09%" }
                              << Colore::Rosso;
        QTest::newRow("exactly 0 keeps the colour")
            << 8.667 << 60LL << 520.02 << QStringList { "520,02", "0,0", "0,0%" } << Colore::Invariato;
        QTest::newRow("no quote") << 10.0 << 100LL << -1.0 << QStringList { "1.000,0", "n.d.", "n.d." }
                                  << Colore::Invariato;
        QTest::newRow("nothing bought") << 0.0 << 100LL << 50.0 << QStringList { "0,0", "50,0", "n.d." } << Colore::Blu;
    }
    void calcola()
    {
        QFETCH(double, prezzo);
        QFETCH(qint64, qta);
        QFETCH(double, attuale);
        const Calcolo c = Calcola(prezzo, qta, attuale < 0 ? std::nullopt : std::optional<double>(attuale));
        QTEST((QStringList { c.testoAcquisto, c.testoDifferenza, c.testoPercentuale }), "testi");
        QTEST(c.colore, "colore");
    }
};

QTEST_GUILESS_MAIN(TestOperations)
#include "tst_operations.moc"
