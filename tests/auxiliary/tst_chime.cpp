#include "auxiliary/Chime.h"

#include <QDataStream>
#include <QTest>
#include <QtEndian>

#include <cmath>

class TestChime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every header field a player checks before it plays a byte, written out here field by field. The
    // sound is audible, never clipped, short, and fades to near silence so that it ends without a click.
    void chime()
    {
        const QByteArray pcm = vm::aux::chimeSamples();
        const quint32 rate = vm::aux::kChimeSampleRate, data = quint32(pcm.size());
        QByteArray expected;
        QDataStream s(&expected, QIODevice::WriteOnly);
        s.setByteOrder(QDataStream::LittleEndian);
        s.writeRawData("RIFF", 4);
        s << quint32(36 + data);
        s.writeRawData("WAVEfmt ", 8);
        s << quint32(16) << quint16(1) << quint16(1) << rate << rate * 2 << quint16(2) << quint16(16);
        s.writeRawData("data", 4);
        s << data;
        QCOMPARE(vm::aux::chimeWav(), expected + pcm);

        const int count = int(data / 2);
        QVERIFY(count > int(rate) / 4 && count < int(rate) * 2);
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
