// The quote board's chart data: period scroll bar and zoom steps, the points of the period, the scale,
// the trend line and the caption.
#include "quotes/GraficoListino.h"

#include <QTest>

using namespace vm::quotes;
using vm::metastock::QuotaMS;

namespace {

// Quotes on consecutive days from 1/3/2010, closes as given; high = close + 1, low = close - 2.
QList<QuotaMS> storia(const QList<float> &chiusure, int campi = 7)
{
    QList<QuotaMS> s;
    for (qsizetype i = 0; i < chiusure.size(); ++i) {
        QuotaMS q;
        q.data = QDate(2010, 3, 1).addDays(i);
        q.chiusura = chiusure[i];
        q.massimo = chiusure[i] + 1;
        q.minimo = chiusure[i] - 2;
        q.volume = float(100 * (i + 1));
        if (campi >= 6)
            q.apertura = chiusure[i];
        if (campi == 7)
            q.ufficiale = chiusure[i] + 0.5f;
        s << q;
    }
    return s;
}

QString chiusure(const DatiGrafico &d)
{
    QStringList c;
    for (const QuotaMS &q : d.punti)
        c << QString::number(q.chiusura);
    return c.join(u' ');
}

} // namespace

class TestGraficoListino : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void periodo_data()
    {
        QTest::addColumn<int>("n");
        QTest::addColumn<int>("salvato");
        QTest::addColumn<int>("massimo");
        QTest::addColumn<int>("valore");
        QTest::newRow("saved period fits") << 100 << 25 << 99 << 25;
        QTest::newRow("saved period one short of the top") << 100 << 98 << 99 << 98;
        QTest::newRow("saved period equal to n - 1") << 100 << 99 << 99 << 99;
        QTest::newRow("saved period too long") << 10 << 25 << 9 << 9;
        QTest::newRow("saved period below 2") << 100 << 0 << 99 << 2;
        QTest::newRow("two quotes") << 3 << 25 << 2 << 2;
    }
    void periodo()
    {
        QFETCH(int, n);
        QFETCH(int, salvato);
        QFETCH(int, massimo);
        QFETCH(int, valore);
        const Periodo p = periodoIniziale(n, salvato);
        QCOMPARE(p.minimo, 2);
        QCOMPARE(p.massimo, massimo);
        QCOMPARE(p.valore, valore);
        QCOMPARE(periodoPerTitolo(n, salvato).valore, std::clamp(salvato, 2, massimo));
    }

    void zoom_data()
    {
        QTest::addColumn<bool>("sinistro");
        QTest::addColumn<int>("valore");
        QTest::addColumn<int>("massimo");
        QTest::addColumn<int>("atteso");
        QTest::newRow("left: 15 more") << true << 25 << 200 << 40;
        QTest::newRow("left: 17 below the top still steps") << true << 183 << 200 << 198;
        QTest::newRow("left: 16 below the top jumps to it") << true << 184 << 200 << 200;
        QTest::newRow("left at the maximum keeps it") << true << 200 << 200 << 200;
        QTest::newRow("left on a short history") << true << 2 << 9 << 9;
        QTest::newRow("right: 15 fewer") << false << 46 << 200 << 31;
        QTest::newRow("right just above 31") << false << 32 << 200 << 17;
        QTest::newRow("right at 31 days sets 2") << false << 31 << 200 << 2;
        QTest::newRow("right at 2 stays") << false << 2 << 200 << 2;
    }
    void zoom()
    {
        QFETCH(bool, sinistro);
        QFETCH(int, valore);
        QFETCH(int, massimo);
        QFETCH(int, atteso);
        QCOMPARE(sinistro ? periodoTastoSinistro(valore, massimo) : periodoTastoDestro(valore), atteso);
    }

    // The points follow record s (records counted from the header as 1), the scale over what is shown.
    void punti_data()
    {
        QTest::addColumn<QList<float>>("valori");
        QTest::addColumn<int>("periodo");
        QTest::addColumn<bool>("storico");
        QTest::addColumn<int>("tipo");
        QTest::addColumn<QString>("punti");
        QTest::addColumn<double>("minimo");
        QTest::addColumn<double>("massimo");

        const QList<float> v { 5, 9, 3, 7, 4, 6 }; // n = 7
        QTest::newRow("period 3: the last three") << v << 3 << false << 2 << "7 4 6" << 4.0 << 7.0;
        QTest::newRow("period 2: the last two") << v << 2 << false << 2 << "4 6" << 4.0 << 6.0;
        QTest::newRow("period n - 1: every quote") << v << 6 << false << 2 << "5 9 3 7 4 6" << 3.0 << 9.0;
        QTest::newRow("history: after the first quote") << v << 3 << true << 3 << "9 3 7 4 6" << 3.0 << 9.0;
        QTest::newRow("bars: scale from lows and highs") << v << 3 << false << 1 << "7 4 6" << 2.0 << 8.0;
        QTest::newRow("period beyond the file") << v << 50 << false << 2 << "5 9 3 7 4 6" << 3.0 << 9.0;
        QTest::newRow("two quotes") << QList<float> { 1, 2 } << 25 << false << 2 << "1 2" << 1.0 << 2.0;
    }
    void punti()
    {
        QFETCH(QList<float>, valori);
        QFETCH(int, periodo);
        QFETCH(bool, storico);
        QFETCH(int, tipo);
        QFETCH(QString, punti);
        QFETCH(double, minimo);
        QFETCH(double, massimo);
        const DatiGrafico d = datiGrafico(storia(valori), 7, periodo, storico, tipoGrafico(tipo));
        QVERIFY(d.disegnabile());
        QCOMPARE(d.n, valori.size() + 1);
        QCOMPARE(d.primaData, QDate(2010, 3, 1));
        QCOMPARE(chiusure(d), punti);
        QCOMPARE(d.minimo, minimo);
        QCOMPARE(d.massimo, massimo);
        QCOMPARE(d.volumeMassimo, 100.0 * valori.size());
    }

    void nienteDaDisegnare_data()
    {
        QTest::addColumn<QList<float>>("valori");
        QTest::newRow("no quote") << QList<float> {};
        QTest::newRow("one quote") << QList<float> { 3 };
    }
    void nienteDaDisegnare()
    {
        QFETCH(QList<float>, valori);
        const DatiGrafico d = datiGrafico(storia(valori), 7, 25, false, TipoGrafico::Linea);
        QVERIFY(!d.disegnabile());
        QVERIFY(d.punti.isEmpty());
        QVERIFY(!d.trend);
        QVERIFY(d.didascalia.isEmpty());
    }

    void trend_data()
    {
        QTest::addColumn<QList<double>>("valori");
        QTest::addColumn<double>("inizio");
        QTest::addColumn<double>("fine");
        QTest::newRow("a line is its own trend") << QList<double> { 1, 3, 5, 7 } << 1.0 << 7.0;
        QTest::newRow("flat") << QList<double> { 4, 4, 4 } << 4.0 << 4.0;
        QTest::newRow("two points") << QList<double> { 10, 8 } << 10.0 << 8.0;
        // x = 0..3, y = 2 1 4 3: slope 0.6, intercept 1.6.
        QTest::newRow("noisy") << QList<double> { 2, 1, 4, 3 } << 1.6 << 3.4;
        QTest::newRow("large prices stay exact") << QList<double> { 1e6 + 1, 1e6 + 2, 1e6 + 3 } << 1e6 + 1 << 1e6 + 3;
    }
    void trend()
    {
        QFETCH(QList<double>, valori);
        QFETCH(double, inizio);
        QFETCH(double, fine);
        const auto t = trendMinimiQuadrati(valori);
        QVERIFY(t);
        QVERIFY(qAbs(t->inizio - inizio) < 1e-9);
        QVERIFY(qAbs(t->fine - fine) < 1e-9);
        QVERIFY(!trendMinimiQuadrati({ 1 }));
    }

    void didascalia_data()
    {
        QTest::addColumn<int>("campi");
        QTest::addColumn<QString>("testo");
        QTest::newRow("7 fields") << 7 << "Ultima 05/03/10   Chius.:4,25  Max:5,25  Min:2,25  Vol:500  Uffic.:4,75 [3]";
        QTest::newRow("6 fields") << 6 << "Ultima quotazione 05/03/10   Chiusura:4,25  Max:5,25  Min:2,25  Vol:500";
        QTest::newRow("5 fields") << 5 << "Ultima quotazione 05/03/10   Chiusura:4,25  Max:5,25  Min:2,25  Vol:500";
    }
    void didascalia()
    {
        QFETCH(int, campi);
        QFETCH(QString, testo);
        const DatiGrafico d = datiGrafico(storia({ 1, 2, 3, 4, 4.25f }, campi), campi, 3, false, TipoGrafico::Hlc);
        QCOMPARE(d.didascalia, testo);
    }
};

QTEST_GUILESS_MAIN(TestGraficoListino)
#include "tst_grafico_listino.moc"
