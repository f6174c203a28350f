// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveformdecoding.h"

#include "mediabackend.h"

#include <QAudioBuffer>
#include <QUrl>

#include <utility>

namespace epr {

WaveformDecoding::WaveformDecoding(Wanted wanted, int watchdogMs)
    : m_wanted(std::move(wanted))
    , m_watchdogMs(watchdogMs)
{
    m_watchdog.setSingleShot(true);
    connect(&m_watchdog, &QTimer::timeout, this, &WaveformDecoding::end);
    connect(&m_decoder, &QAudioDecoder::bufferReady, this, &WaveformDecoding::readBuffers);
    connect(&m_decoder, &QAudioDecoder::finished, this, &WaveformDecoding::end);
    connect(&m_decoder, qOverload<QAudioDecoder::Error>(&QAudioDecoder::error), this,
            [this] { fail(m_decoder.errorString()); });
}

WaveformOutcome WaveformDecoding::run(const QString &path)
{
    if (!openSource(path))
        return { {}, m_error };
    m_watchdog.start(m_watchdogMs);
    m_decoder.start();
    // Some back-ends report an error before the loop runs, and then nothing more would end it.
    if (!m_ended)
        m_loop.exec();
    m_ended = true;
    WaveformOutcome outcome { m_builder.take(), m_error };
    if (m_decoder.duration() >= 1)
        outcome.envelope.durationMs = m_decoder.duration();
    m_decoder.stop();
    return outcome;
}

// A decoder that cannot open the file may stay silent until the watchdog bites, so the file is tried first.
bool WaveformDecoding::openSource(const QString &path)
{
    if (!m_decoder.isSupported()) {
        m_error = m_decoder.errorString();
        return false;
    }
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly)) {
        m_error = m_file.errorString();
        return false;
    }
    if (mediaBackendGarbles(path))
        return false;
    if (mediaBackendMisreadsName(path)) {
        m_decoder.setSourceDevice(&m_file);
        return true;
    }
    m_file.close();
    m_decoder.setSource(QUrl::fromLocalFile(path));
    return true;
}

void WaveformDecoding::readBuffers()
{
    while (!m_ended && m_decoder.bufferAvailable()) {
        if (!m_wanted())
            return end();
        m_builder.add(m_decoder.read());
        if (m_builder.isFull())
            end();
    }
}

void WaveformDecoding::fail(const QString &error)
{
    if (m_ended)
        return;
    m_error = error;
    end();
}

// The decoder is stopped only when the loop has ended: inside one of its own signals it may not survive that.
void WaveformDecoding::end()
{
    m_ended = true;
    m_loop.quit();
}

} // namespace epr
