#pragma once

#include <QByteArray>

namespace vm::aux {

// The start-up chime: two sine tones a fifth apart, each dying away, as a complete WAV file
// (RIFF, PCM 16-bit mono) built in memory.
inline constexpr int kChimeSampleRate = 22050;
QByteArray chimeWav();

// The samples of chimeWav() without the 44-byte header.
QByteArray chimeSamples();

// Plays the chime once without blocking; silence when there is no audio output (GUI library).
void playChime();

} // namespace vm::aux
