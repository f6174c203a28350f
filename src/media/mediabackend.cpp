// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mediabackend.h"

#include <QAudioBuffer>
#include <QThread>
#include <QUrl>
#include <QVersionNumber>

#include <algorithm>
#include <utility>

namespace epr {

namespace {

constexpr QByteArrayView ffmpegBackend = "ffmpeg";
constexpr int interruptionMs = 50; // how long a decoding may take to notice that its thread is asked to stop

bool usesQtBefore(int major, int minor)
{
    return QVersionNumber::fromString(QLatin1StringView(qVersion())) < QVersionNumber(major, minor);
}

// The one whose faults are worked around below.
bool usesEarlyFfmpegBackend()
{
    return usesQtBefore(6, 5) && qgetenv("QT_MEDIA_BACKEND") == ffmpegBackend;
}

} // namespace

void preferFfmpegMediaBackend()
{
#ifdef Q_OS_LINUX
    if (usesQtBefore(6, 5) && qEnvironmentVariableIsEmpty("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", ffmpegBackend.toByteArray());
#endif
}

// It is Qt's choice from 6.5 on.
bool mediaBackendIsFfmpeg()
{
    const QByteArray chosen = qgetenv("QT_MEDIA_BACKEND");
    return chosen.isEmpty() ? !usesQtBefore(6, 5) : chosen == ffmpegBackend;
}

// The ffmpeg back-end of Qt 6.4 turns letters outside ASCII into question marks.
bool mediaBackendMisreadsName(const QString &path)
{
    const bool ascii = std::all_of(path.begin(), path.end(), [](QChar letter) { return letter.unicode() < 128; });
    return !ascii && usesEarlyFfmpegBackend();
}

// MPEG layer II is decoded to 16 bits and then read as floating point numbers.
bool mediaBackendGarbles(const QString &path)
{
    return path.endsWith(QLatin1StringView(".mp2"), Qt::CaseInsensitive) && usesEarlyFfmpegBackend();
}

FileDecoding::FileDecoding(Take take, int watchdogMs)
    : m_take(std::move(take))
{
    m_watchdog.setSingleShot(true);
    m_watchdog.setInterval(watchdogMs);
    connect(&m_watchdog, &QTimer::timeout, this, [this] { end(End::TimedOut); });
    connect(&m_interruption, &QTimer::timeout, this, [this] {
        if (QThread::currentThread()->isInterruptionRequested())
            end();
    });
    connect(&m_decoder, &QAudioDecoder::bufferReady, this, &FileDecoding::readBuffers);
    connect(&m_decoder, &QAudioDecoder::finished, this, [this] { end(End::Complete); });
    connect(&m_decoder, qOverload<QAudioDecoder::Error>(&QAudioDecoder::error), this, [this] {
        if (!m_hasEnded)
            m_error = m_decoder.errorString();
        end(End::Failed);
    });
}

FileDecoding::End FileDecoding::run(const QString &path)
{
    if (!openSource(path))
        return m_end;
    m_watchdog.start();
    m_interruption.start(interruptionMs);
    m_decoder.start();
    // Some back-ends report an error before the loop runs, and then nothing more would end it.
    if (!m_hasEnded)
        m_loop.exec();
    m_hasEnded = true;
    m_durationMs = std::max<qint64>(m_decoder.duration(), 0);
    m_decoder.stop();
    return m_end;
}

// The decoder is stopped only when the loop has ended: inside one of its own signals it may not survive that.
void FileDecoding::end(End reason)
{
    if (!std::exchange(m_hasEnded, true))
        m_end = reason;
    m_loop.quit();
}

// A decoder that cannot start may stay silent until the watchdog bites, as Qt's ffmpeg back-end of Qt 6.4 does
// for a file that it cannot open, so the file is tried first.
bool FileDecoding::openSource(const QString &path)
{
    if (!m_decoder.isSupported() || mediaBackendGarbles(path)) {
        m_error = m_decoder.errorString();
        m_end = End::Impossible;
        return false;
    }
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly)) {
        m_error = m_file.errorString();
        m_end = End::Failed;
        return false;
    }
    if (mediaBackendMisreadsName(path)) {
        m_decoder.setSourceDevice(&m_file);
        return true;
    }
    m_file.close();
    m_decoder.setSource(QUrl::fromLocalFile(path));
    return true;
}

void FileDecoding::readBuffers()
{
    while (!m_hasEnded && m_decoder.bufferAvailable()) {
        if (!m_take(m_decoder.read()))
            end(End::Enough);
    }
}

} // namespace epr
