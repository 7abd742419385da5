#include "app/IniFile.h"
#include "app/Settings.h"

#include <QTemporaryDir>
#include <QtTest>

class TestSettings : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    QString file;
    void writeFile(const QByteArray &bytes)
    {
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

private Q_SLOTS:
    void init()
    {
        file = dir.filePath(QStringLiteral("valorimetrico.ini"));
        QFile::remove(file);
    }

    // The chart defaults show in the rows below; these are the other settings' defaults, and
    // reading them never creates the file.
    void defaultsWithoutFile()
    {
        QVERIFY(vm::LeggiImpostazioniGrafico(file).ok());
        QVERIFY(vm::readSplash(file).value);
        QCOMPARE(vm::readSetting(file, vm::settings::StrumentiQuotaflusso),
            QStringLiteral("C:\\Programmi\\Quotaflusso\\quotaflusso.exe"));
        QCOMPARE(vm::readTotaliDal(file, QDate(2026, 3, 2)), QStringLiteral("25/02/26"));
        QCOMPARE(vm::readSettingDouble(file, vm::settings::SpeseCapitalGain).value, 0.0);
        QCOMPARE(vm::readSettingInt16(file, vm::settings::PerformanceTipo).value, qint16(3));
        QVERIFY(!QFileInfo::exists(file));
    }

    void chartSettings_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<int>("error");
        QTest::addColumn<QList<double>>("values"); // Dati, Sfondo, Assi, Tipo, Griglie, Periodo

        const int mismatch = vm::kErroreTipoNonCorrispondente;
        const struct {
            const char *tag, *contents;
            int error;
            QList<double> values;
        } rows[] = {
            { "all set", "[grafico]\nPeriodo=50\nGriglie=3\nTipo=2\nAssi=7\nSfondo=0\nDati=12\n", 0,
                { 12, 0, 7, 2, 3, 50 } },
            { "decimal type kept, defaults", "[Grafico]\nTipo=2,5\n", 0, { 2, 15, 0, 2.5, 1, 25 } },
            { "integer half to even down", "[Grafico]\nGriglie=2,5\n", 0, { 2, 15, 0, 1, 2, 25 } },
            { "integer half to even up", "[Grafico]\nGriglie=3,5\n", 0, { 2, 15, 0, 1, 4, 25 } },
            { "not a number", "[Grafico]\nDati=si\nSfondo=3\n", mismatch, { 2, 15, 0, 1, 1, 25 } },
            { "empty is not a number", "[Grafico]\nAssi=\n", mismatch, { 2, 15, 0, 1, 1, 25 } },
            { "overflow keeps earlier values", "[Grafico]\nDati=4\nPeriodo=40000\n", vm::kErroreOverflow,
                { 4, 15, 0, 1, 1, 25 } },
            { "largest 16-bit", "[Grafico]\nPeriodo=32.767\n", 0, { 2, 15, 0, 1, 1, 32767 } },
        };
        for (const auto &r : rows)
            QTest::newRow(r.tag) << QByteArray(r.contents) << r.error << r.values;
    }
    void chartSettings()
    {
        QFETCH(QByteArray, contents);
        QFETCH(int, error);
        QFETCH(QList<double>, values);
        writeFile(contents);
        const auto chart = vm::LeggiImpostazioniGrafico(file);
        QCOMPARE(chart.error, error);
        const auto &s = chart.value;
        QCOMPARE((QList<double> { double(s.ColoreDati), double(s.ColoreSfondo), double(s.ColoreAssi), s.TipoGrafico,
                     double(s.GriglieGrafico), double(s.PeriodoGrafico) }),
            values);
    }
};

QTEST_APPLESS_MAIN(TestSettings)
#include "tst_settings.moc"
