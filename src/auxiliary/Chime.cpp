#include "auxiliary/Chime.h"

#include <QtEndian>

#include <cmath>
#include <numbers>

namespace vm::aux {

QByteArray chimeSamples()
{
    // A5 then E6, the second starting while the first still rings.
    struct Tone {
        double frequency, start, length;
    };
    constexpr Tone tones[] = { { 880.0, 0.0, 0.55 }, { 1318.51, 0.16, 0.65 } };
    constexpr double total = 0.81;
    const int count = static_cast<int>(total * kChimeSampleRate);
    QByteArray pcm(count * 2, Qt::Uninitialized);
    for (int i = 0; i < count; ++i) {
        const double t = double(i) / kChimeSampleRate;
        double v = 0;
        for (const Tone &tone : tones) {
            const double local = t - tone.start;
            if (local < 0 || local >= tone.length)
                continue;
            // A 5 ms attack avoids a click; the exponential decay leaves nearly nothing at the end.
            const double attack = std::min(1.0, local / 0.005);
            const double decay = std::exp(-6.0 * local / tone.length);
            v += 0.35 * attack * decay * std::sin(2 * std::numbers::pi * tone.frequency * local);
        }
        const auto sample = static_cast<qint16>(std::lround(std::clamp(v, -1.0, 1.0) * 32767));
        qToLittleEndian(sample, pcm.data() + 2 * i);
    }
    return pcm;
}

QByteArray chimeWav()
{
    const QByteArray pcm = chimeSamples();
    QByteArray wav;
    wav.reserve(44 + pcm.size());
    auto u32 = [&wav](quint32 v) {
        char b[4];
        qToLittleEndian(v, b);
        wav.append(b, 4);
    };
    auto u16 = [&wav](quint16 v) {
        char b[2];
        qToLittleEndian(v, b);
        wav.append(b, 2);
    };
    wav.append("RIFF");
    u32(36 + pcm.size());
    wav.append("WAVEfmt ");
    u32(16); // format chunk size
    u16(1); // PCM
    u16(1); // mono
    u32(kChimeSampleRate);
    u32(kChimeSampleRate * 2); // bytes per second
    u16(2); // bytes per frame
    u16(16); // bits per sample
    wav.append("data");
    u32(pcm.size());
    wav.append(pcm);
    return wav;
}

} // namespace vm::aux
