// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "envelopebuilder.h"

#include <QAudioBuffer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace epr {

namespace {

constexpr int bucketsPerSecond = 1000 / Envelope::bucketMs;
constexpr float fullHeight = 0.98F;

float level(quint8 value)
{
    return std::abs(static_cast<float>(value) - 128.0F) * 0.0078125F; // 1 / 2^7
}

float level(qint16 value)
{
    return std::abs(static_cast<float>(value)) * 3.0517578e-05F; // 1 / 2^15
}

float level(qint32 value)
{
    return std::abs(static_cast<float>(value)) * 4.656613e-10F; // 1 / 2^31
}

// What is not a number is no level either, and an infinite one would leave nothing to draw of the rest.
float level(float value)
{
    return std::isfinite(value) ? std::abs(value) : 0.0F;
}

template <typename Sample> float peakOf(const Sample *sample, qsizetype frames, int stride)
{
    float peak = 0.0F;
    for (qsizetype frame = 0; frame < frames; ++frame)
        peak = std::max(peak, level(sample[frame * stride]));
    return peak;
}

void raise(Envelope &envelope)
{
    const auto highest = std::max_element(envelope.peak.cbegin(), envelope.peak.cend());
    if (highest == envelope.peak.cend() || *highest <= 0.0F || *highest >= fullHeight)
        return;
    const float factor = fullHeight / *highest;
    for (QList<float> *list : { &envelope.left, &envelope.right, &envelope.peak }) {
        for (float &value : *list)
            value *= factor;
    }
}

} // namespace

void EnvelopeBuilder::add(const QAudioBuffer &buffer)
{
    if (!buffer.isValid() || buffer.format().channelCount() < 1)
        return;
    if (m_channels == 0) {
        m_channels = buffer.format().channelCount();
        m_bucketFrames = std::max(buffer.format().sampleRate() / bucketsPerSecond, 1);
    }
    switch (buffer.format().sampleFormat()) {
    case QAudioFormat::UInt8:
        return addSamples<quint8>(buffer);
    case QAudioFormat::Int16:
        return addSamples<qint16>(buffer);
    case QAudioFormat::Int32:
        return addSamples<qint32>(buffer);
    case QAudioFormat::Float:
        return addSamples<float>(buffer);
    default: // a format without a sample size, and so without frames
        return;
    }
}

// Each buffer is walked with its own number of channels, which in a damaged stream may not be that of the first.
template <typename Sample> void EnvelopeBuilder::addSamples(const QAudioBuffer &buffer)
{
    const int stride = buffer.format().channelCount();
    const bool stereo = m_channels > 1 && stride > 1;
    const Sample *sample = buffer.constData<Sample>();
    for (qsizetype rest = buffer.frameCount(); rest > 0 && !isFull();) {
        const qsizetype frames = std::min(rest, m_bucketFrames - m_frames);
        const float left = peakOf(sample, frames, stride);
        m_left = std::max(m_left, left);
        m_right = std::max(m_right, stereo ? peakOf(sample + 1, frames, stride) : left);
        sample += frames * stride;
        rest -= frames;
        m_frames += frames;
        if (m_frames == m_bucketFrames)
            closeBucket();
    }
}

void EnvelopeBuilder::closeBucket()
{
    m_envelope.left << m_left;
    m_envelope.right << m_right;
    m_envelope.peak << std::max(m_left, m_right);
    m_left = m_right = 0.0F;
    m_frames = 0;
}

Envelope EnvelopeBuilder::take()
{
    if (m_frames > 0)
        closeBucket();
    Envelope envelope = std::exchange(*this, {}).m_envelope;
    raise(envelope);
    return envelope;
}

} // namespace epr
