// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "monosamples.h"

#include <QAudioBuffer>

namespace epr {

namespace {

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

} // namespace epr
