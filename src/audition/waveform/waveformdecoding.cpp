// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveformdecoding.h"

#include <QAudioBuffer>

#include <utility>

namespace epr {

WaveformDecoding::WaveformDecoding(Wanted wanted, int watchdogMs)
    : m_decoding(
        [this, wanted = std::move(wanted)](const QAudioBuffer &buffer) {
            if (!wanted())
                return false;
            m_builder.add(buffer);
            return !m_builder.isFull();
        },
        watchdogMs)
{
}

WaveformOutcome WaveformDecoding::run(const QString &path)
{
    static_cast<void>(m_decoding.run(path)); // whatever its end, what came before it is drawn
    WaveformOutcome outcome { m_builder.take(), m_decoding.error() };
    outcome.envelope.durationMs = m_decoding.durationMs();
    return outcome;
}

} // namespace epr
