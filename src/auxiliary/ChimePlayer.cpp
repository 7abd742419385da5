#include "auxiliary/Chime.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QBuffer>
#include <QCoreApplication>
#include <QMediaDevices>

namespace vm::aux {

void playChime()
{
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull())
        return;
    QAudioFormat format;
    format.setSampleRate(kChimeSampleRate);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Int16);
    if (!device.isFormatSupported(format))
        return;

    // The sink pulls from the buffer on its own; both live until the sound is over.
    auto *sink = new QAudioSink(device, format, qApp);
    auto *buffer = new QBuffer(sink);
    buffer->setData(chimeSamples());
    buffer->open(QIODevice::ReadOnly);
    QObject::connect(sink, &QAudioSink::stateChanged, sink, [sink](QAudio::State s) {
        if (s == QAudio::IdleState)
            sink->stop(); // comes back here as StoppedState
        else if (s == QAudio::StoppedState)
            sink->deleteLater();
    });
    sink->start(buffer);
    if (sink->error() != QAudio::NoError)
        sink->deleteLater();
}

} // namespace vm::aux
