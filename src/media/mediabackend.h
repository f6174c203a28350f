// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioDecoder>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <functional>

class QAudioBuffer;

namespace epr {

/// Call first in main(), before the application object exists. Where Qt's default media back-end is known to
/// fail on common files, picks the better one, unless the operator has chosen in QT_MEDIA_BACKEND.
void preferFfmpegMediaBackend();

/// Keeps the media back-end's libraries from writing to the terminal. Takes effect once a player or a decoder exists.
void quietMediaBackend();

/// Whether the media back-end in use reads files with ffmpeg's libraries.
bool mediaBackendIsFfmpeg();

/// Whether the media back-end in use takes such a file's audio for something else and makes loud noise of it. It must
/// not be given the file at all.
bool mediaBackendGarbles(const QString &path);

/// A file that knows for how long nobody has been reading it. It is read on whatever thread the back-end likes.
class WatchedFile final : public QFile {
    Q_OBJECT

public:
    [[nodiscard]] std::chrono::milliseconds idleFor() const; ///< 0 during a read, however long that takes

protected:
    qint64 readData(char *data, qint64 maxSize) override;

private:
    std::atomic<int> m_reads = 0; ///< under way
    std::atomic<std::chrono::steady_clock::time_point> m_lastRead = std::chrono::steady_clock::now();
};

/// One decoding of one file with Qt's decoder, from start to end on the thread that runs it.
class FileDecoding final : public QObject {
    Q_OBJECT

public:
    enum class End {
        Complete,
        Enough, ///< said who takes the buffers, or end() was called, or the thread is interrupted
        TimedOut,
        Failed, ///< also for a file that is no audio by its looks
        Impossible, ///< there is no decoder, or none that such a file may be given to
    };

    using Take = std::function<bool(const QAudioBuffer &buffer)>; ///< false = that was enough

    FileDecoding(Take take, int watchdogMs);

    /// Blocks in a local event loop. What was decoded before an error or before the watchdog bites counts. Returns soon
    /// when the thread is asked to interrupt.
    [[nodiscard]] End run(const QString &path);

    /// Makes run() return; to be called on the same thread, from within the event loop.
    void end(End reason = End::Enough);

    [[nodiscard]] QString error() const { return m_error; } ///< what the decoder or the file said, or empty
    [[nodiscard]] qint64 durationMs() const { return m_durationMs; } ///< of the whole file, 0 = the decoder did not say

private:
    bool openSource(const QString &path);
    void readBuffers();
    void look();

    Take m_take;
    End m_end = End::Complete;
    bool m_hasEnded = false;
    QString m_error;
    qint64 m_durationMs = 0;
    WatchedFile m_file;
    QAudioDecoder m_decoder; // after the file, which it may be reading
    QEventLoop m_loop;
    QTimer m_watchdog;
    QTimer m_look;
    QElapsedTimer m_sinceBuffer;
};

} // namespace epr
