// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioDecoder>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <functional>

class QAudioBuffer;

namespace epr {

/// One decoding of one file with the toolkit's decoder, from start to end on the thread that runs it.
class FileDecoding final : public QObject {
    Q_OBJECT

public:
    enum class End {
        Complete,
        Enough, ///< said who takes the buffers, or end() was called
        TimedOut,
        Failed,
        Impossible, ///< there is no decoder, or none that such a file may be given to
    };

    using Take = std::function<bool(const QAudioBuffer &buffer)>; ///< false = that was enough

    FileDecoding(Take take, int watchdogMs);

    /// Blocks in a local event loop. What was decoded before an error or before the watchdog bites counts.
    [[nodiscard]] End run(const QString &path);

    /// Makes run() return; to be called on the same thread, from within the event loop.
    void end(End reason = End::Enough);

    [[nodiscard]] QString error() const { return m_error; } ///< what the decoder or the file said, or empty
    [[nodiscard]] qint64 durationMs() const { return m_durationMs; } ///< of the whole file, 0 = the decoder did not say

private:
    bool openSource(const QString &path);
    void readBuffers();

    Take m_take;
    End m_end = End::Complete;
    bool m_hasEnded = false;
    QString m_error;
    qint64 m_durationMs = 0;
    QFile m_file;
    QAudioDecoder m_decoder; // after the file, which it may be reading
    QEventLoop m_loop;
    QTimer m_watchdog;
};

} // namespace epr
