#include "auxiliary/Chime.h"

#include <QDataStream>
#include <QTest>
#include <QtEndian>

#include <cmath>

class TestChime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every header field a player checks before it plays a byte, written out here field by field.
    void header()
    {
        const QByteArray wav = vm::aux::chimeWav();
        const quint32 data = quint32(vm::aux::chimeSamples().size());
        QByteArray expected;
        QDataStream s(&expected, QIODevice::WriteOnly);
        s.setByteOrder(QDataStream::LittleEndian);
        s.writeRawData("RIFF", 4);
        s << quint32(36 + data);
        s.writeRawData("WAVEfmt ", 8);
        s << quint32(16) << quint16(1) << quint16(1) << quint32(vm::aux::kChimeSampleRate)
          << quint32(vm::aux::kChimeSampleRate * 2) << quint16(2) << quint16(16);
        s.writeRawData("data", 4);
        s << data;
        QCOMPARE(wav.left(44), expected);
        QCOMPARE(quint32(wav.size()), 44 + data);
        QCOMPARE(wav.mid(44), vm::aux::chimeSamples());
    }

    // Audible, never clipped, short, and fading to near silence so that it ends without a click.
    void sound()
    {
        const QByteArray pcm = vm::aux::chimeSamples();
        const int count = int(pcm.size() / 2);
        QVERIFY(count > vm::aux::kChimeSampleRate / 4 && count < vm::aux::kChimeSampleRate * 2);
        const auto peak = [&](int from, int to) {
            int p = 0;
            for (int i = from; i < to; ++i)
                p = std::max(p, std::abs(int(qFromLittleEndian<qint16>(pcm.constData() + 2 * i))));
            return p;
        };
        const int loudest = peak(0, count);
        QVERIFY(loudest > 8000 && loudest < 32767);
        QVERIFY(peak(0, 1) < 200); // the attack starts from silence
        QVERIFY2(peak(count - 200, count) < loudest / 50, qPrintable(QString::number(peak(count - 200, count))));
    }
};

QTEST_MAIN(TestChime)
#include "tst_chime.moc"
