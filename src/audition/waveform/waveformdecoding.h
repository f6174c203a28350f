// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "envelopebuilder.h"

#include <QAudioDecoder>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <functional>

namespace epr {

struct WaveformOutcome {
    Envelope envelope; ///< without buckets when nothing could be decoded
    QString error; ///< what the decoder said, or empty
};

/// One decoding of one file, from start to end on the thread that runs it.
class WaveformDecoding final : public QObject {
    Q_OBJECT

public:
    using Wanted = std::function<bool()>;

    /// Asked before each buffer: the decoding ends as soon as the answer is no.
    WaveformDecoding(Wanted wanted, int watchdogMs);

    /// Blocks in a local event loop. What was decoded before an error or before the watchdog bites counts.
    [[nodiscard]] WaveformOutcome run(const QString &path);

    /// Makes run() return; to be called on the same thread, from within the event loop.
    void end();

private:
    bool openSource(const QString &path);
    void readBuffers();
    void fail(const QString &error);

    Wanted m_wanted;
    EnvelopeBuilder m_builder;
    QString m_error;
    QFile m_file;
    QAudioDecoder m_decoder; // after the file, which it may be reading
    QEventLoop m_loop;
    QTimer m_watchdog;
    int m_watchdogMs;
    bool m_ended = false;
};

} // namespace epr
