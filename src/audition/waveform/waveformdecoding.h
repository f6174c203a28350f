// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "envelopebuilder.h"
#include "filedecoding.h"

namespace epr {

struct WaveformOutcome {
    Envelope envelope; ///< without buckets when nothing could be decoded
    QString error; ///< what the decoder said, or empty
};

/// One decoding of one file into its envelope, on the thread that runs it.
class WaveformDecoding final {
public:
    using Wanted = std::function<bool()>;

    /// Asked at each buffer: the decoding ends as soon as the answer is no.
    WaveformDecoding(Wanted wanted, int watchdogMs);

    /// Blocks in a local event loop. What was decoded before an error or before the watchdog bites counts.
    [[nodiscard]] WaveformOutcome run(const QString &path);

    /// Makes run() return; to be called on the same thread, from within the event loop.
    void end() { m_decoding.end(); }

private:
    EnvelopeBuilder m_builder;
    FileDecoding m_decoding;
};

} // namespace epr
