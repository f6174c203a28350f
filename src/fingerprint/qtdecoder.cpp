// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "qtdecoder.h"

#include "analyser.h"
#include "externaltool.h"
#include "fingerprintpool.h"
#include "mediabackend.h"

#include <QAudioBuffer>

#include <utility>

namespace epr {

namespace {

constexpr qint64 limitRate = 48000; // Hz

QString errorText(FileDecoding::End end, const QString &error)
{
    switch (end) {
    case FileDecoding::End::Impossible:
        return FingerprintWorker::tr("No audio decoder available");
    case FileDecoding::End::TimedOut:
        return FingerprintWorker::tr("Timed out decoding audio");
    default:
        return error;
    }
}

float scaled(quint8 value)
{
    return (static_cast<float>(value) - 128.0F) * 0.0078125F; // 1 / 2^7
}

float scaled(qint16 value)
{
    return static_cast<float>(value) * 3.0517578e-05F; // 1 / 2^15
}

float scaled(qint32 value)
{
    return static_cast<float>(value) * 4.656613e-10F; // 1 / 2^31
}

float scaled(float value)
{
    return value;
}

template <typename Sample> QList<float> mixed(const QAudioBuffer &buffer)
{
    const int channels = buffer.format().channelCount();
    const float share = 1.0F / static_cast<float>(channels);
    const Sample *sample = buffer.constData<Sample>();
    QList<float> mono(buffer.frameCount());
    for (float &value : mono) {
        float sum = 0.0F;
        for (int channel = 0; channel < channels; ++channel)
            sum += scaled(*sample++);
        value = sum * share;
    }
    return mono;
}

} // namespace

QList<float> monoSamples(const QAudioBuffer &buffer)
{
    if (buffer.format().channelCount() <= 0 || buffer.frameCount() <= 0)
        return {};
    switch (buffer.format().sampleFormat()) {
    case QAudioFormat::UInt8:
        return mixed<quint8>(buffer);
    case QAudioFormat::Int16:
        return mixed<qint16>(buffer);
    case QAudioFormat::Int32:
        return mixed<qint32>(buffer);
    case QAudioFormat::Float:
        return mixed<float>(buffer);
    default:
        return {};
    }
}

QtDecodeLimits qtDecodeLimits(int seconds)
{
    return { seconds * limitRate, toolTimeouts(seconds).waitMs };
}

QtDecodeOutcome decodeWithQt(const QString &path, const QtDecodeLimits &limits, Analyser &analyser)
{
    QtDecodeOutcome outcome;
    bool isStarted = false;
    const auto take = [&](const QAudioBuffer &buffer) {
        if (!buffer.isValid())
            return true;
        if (!std::exchange(isStarted, true))
            analyser.reset(buffer.format().sampleRate());
        const QList<float> samples = monoSamples(buffer);
        analyser.feed(samples.constData(), samples.size());
        outcome.frames += samples.size();
        return outcome.frames < limits.frames;
    };
    FileDecoding decoding(take, limits.watchdogMs);
    const FileDecoding::End end = decoding.run(path);
    outcome.durationMs = decoding.durationMs();
    outcome.error = errorText(end, decoding.error());
    return outcome;
}

void decodeWithQt(const FingerprintWorker &worker, Analyser &analyser, const QString &path, qint64 &durationMs,
                  QString &error)
{
    const QtDecodeOutcome outcome = decodeWithQt(path, qtDecodeLimits(worker.seconds()), analyser);
    if (outcome.durationMs > 0)
        durationMs = outcome.durationMs;
    if (!outcome.error.isEmpty())
        error = outcome.error;
}

} // namespace epr
