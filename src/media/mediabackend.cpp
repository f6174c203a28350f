// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mediabackend.h"

#include "textfile.h"

#include <QAudioBuffer>
#include <QLoggingCategory>
#include <QThread>
#include <QVersionNumber>

#include <algorithm>
#include <mutex>
#include <utility>

#ifdef Q_OS_LINUX
#include <dlfcn.h>
#endif

namespace epr {

namespace {

constexpr QByteArrayView ffmpegBackend = "ffmpeg";
constexpr int oldestAvutil = 56; // of ffmpeg 4
constexpr int newestAvutil = 64; // for years to come
constexpr int lookMs = 50; // how long a decoding may take to notice that its thread is asked to stop
constexpr auto silence = std::chrono::seconds(5); // of a decoder at work; reading may take longer on a slow drive

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
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); // the back-end says what it lists
#ifdef Q_OS_LINUX
    if (usesQtBefore(6, 5) && qEnvironmentVariableIsEmpty("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", ffmpegBackend.toByteArray());
#endif
}

// The libraries of ffmpeg complain about every odd frame on the standard error stream. Qt 6.4 has no switch for that,
// so the library that the back-end has loaded is asked itself.
void quietMediaBackend()
{
#ifdef Q_OS_LINUX
    constexpr int quiet = -8;
    for (int version = oldestAvutil; version <= newestAvutil; ++version) {
        const QByteArray name = "libavutil.so." + QByteArray::number(version);
        void *const library = dlopen(name.constData(), RTLD_LAZY | RTLD_NOLOAD);
        if (library == nullptr)
            continue;
        if (auto *const setLevel = reinterpret_cast<void (*)(int)>(dlsym(library, "av_log_set_level")))
            setLevel(quiet);
        dlclose(library);
    }
#endif
}

// It is Qt's choice from 6.5 on.
bool mediaBackendIsFfmpeg()
{
    const QByteArray chosen = qgetenv("QT_MEDIA_BACKEND");
    return chosen.isEmpty() ? !usesQtBefore(6, 5) : chosen == ffmpegBackend;
}

// MPEG layer II is decoded to 16 bits and then read as floating point numbers.
bool mediaBackendGarbles(const QString &path)
{
    return path.endsWith(QLatin1StringView(".mp2"), Qt::CaseInsensitive) && usesEarlyFfmpegBackend();
}

std::chrono::milliseconds WatchedFile::idleFor() const
{
    if (m_reads > 0)
        return {};
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - m_lastRead.load());
}

qint64 WatchedFile::readData(char *data, qint64 maxSize)
{
    ++m_reads;
    const qint64 count = QFile::readData(data, maxSize);
    m_lastRead = std::chrono::steady_clock::now();
    --m_reads;
    return count;
}

FileDecoding::FileDecoding(Take take, int watchdogMs)
    : m_take(std::move(take))
{
    m_watchdog.setSingleShot(true);
    m_watchdog.setInterval(watchdogMs);
    connect(&m_watchdog, &QTimer::timeout, this, [this] { end(End::TimedOut); });
    static std::once_flag quiet; // by now the decoder has loaded its libraries
    std::call_once(quiet, quietMediaBackend);
    connect(&m_look, &QTimer::timeout, this, &FileDecoding::look);
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
    m_sinceBuffer.start();
    m_look.start(lookMs);
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

// The decoder gets the opened file and no name: back-ends misread names, and some names are addresses to them.
bool FileDecoding::openSource(const QString &path)
{
    if (!m_decoder.isSupported() || mediaBackendGarbles(path)) {
        m_error = m_decoder.errorString();
        m_end = End::Impossible;
        return false;
    }
    // A back-end would open what the text names, over the network too.
    if (looksLikeText(path)) {
        m_error = tr("This file is a text, not audio.");
        m_end = End::Failed;
        return false;
    }
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        m_error = m_file.errorString();
        m_end = End::Failed;
        return false;
    }
    m_decoder.setSourceDevice(&m_file);
    return true;
}

// Qt's ffmpeg back-end of Qt 6.4 says nothing of a file that it does not understand, it only ceases to read it.
void FileDecoding::look()
{
    if (QThread::currentThread()->isInterruptionRequested())
        end();
    else if (m_file.idleFor() >= silence && m_sinceBuffer.hasExpired(std::chrono::milliseconds(silence).count()))
        end(End::TimedOut);
}

void FileDecoding::readBuffers()
{
    m_sinceBuffer.start();
    while (!m_hasEnded && m_decoder.bufferAvailable()) {
        if (!m_take(m_decoder.read()))
            end(End::Enough);
    }
}

} // namespace epr
