#include "auxiliary/Chime.h"

#include <QTest>
#include <QtEndian>

#include <cmath>

class TestChime : public QObject
{
    Q_OBJECT

    static quint32 u32(const QByteArray &b, int at) { return qFromLittleEndian<quint32>(b.constData() + at); }
    static quint16 u16(const QByteArray &b, int at) { return qFromLittleEndian<quint16>(b.constData() + at); }
    static qint16 sample(const QByteArray &pcm, int i) { return qFromLittleEndian<qint16>(pcm.constData() + 2 * i); }

private Q_SLOTS:
    // Every header field a player checks before it plays a byte.
    void header_data()
    {
        const QByteArray wav = vm::aux::chimeWav();
        const int data = int(vm::aux::chimeSamples().size());
        QTest::addColumn<quint32>("actual");
        QTest::addColumn<quint32>("expected");
        QTest::newRow("RIFF size") << u32(wav, 4) << quint32(wav.size() - 8);
        QTest::newRow("fmt size") << u32(wav, 16) << 16u;
        QTest::newRow("PCM") << quint32(u16(wav, 20)) << 1u;
        QTest::newRow("mono") << quint32(u16(wav, 22)) << 1u;
        QTest::newRow("rate") << u32(wav, 24) << quint32(vm::aux::kChimeSampleRate);
        QTest::newRow("byte rate") << u32(wav, 28) << quint32(vm::aux::kChimeSampleRate * 2);
        QTest::newRow("block align") << quint32(u16(wav, 32)) << 2u;
        QTest::newRow("bits") << quint32(u16(wav, 34)) << 16u;
        QTest::newRow("data size") << u32(wav, 40) << quint32(data);
        QTest::newRow("file size") << quint32(wav.size()) << quint32(44 + data);
    }
    void header()
    {
        QFETCH(quint32, actual);
        QFETCH(quint32, expected);
        QCOMPARE(actual, expected);
    }

    void tags()
    {
        const QByteArray wav = vm::aux::chimeWav();
        QCOMPARE(wav.mid(0, 4), QByteArray("RIFF"));
        QCOMPARE(wav.mid(8, 8), QByteArray("WAVEfmt "));
        QCOMPARE(wav.mid(36, 4), QByteArray("data"));
    }

    // Audible, never clipped, short, and fading to near silence so that it ends without a click.
    void sound()
    {
        const QByteArray pcm = vm::aux::chimeSamples();
        const int count = int(pcm.size() / 2);
        QVERIFY(count > vm::aux::kChimeSampleRate / 4);
        QVERIFY(count < vm::aux::kChimeSampleRate * 2);
        int peak = 0;
        for (int i = 0; i < count; ++i)
            peak = std::max(peak, std::abs(int(sample(pcm, i))));
        QVERIFY(peak > 8000);
        QVERIFY(peak < 32767);
        QVERIFY(std::abs(sample(pcm, 0)) < 200); // the attack starts from silence
        int tail = 0;
        for (int i = count - 200; i < count; ++i)
            tail = std::max(tail, std::abs(int(sample(pcm, i))));
        QVERIFY2(tail < peak / 50, qPrintable(QString::number(tail)));
    }
};

QTEST_MAIN(TestChime)
#include "tst_chime.moc"
