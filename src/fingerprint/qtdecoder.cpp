// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "qtdecoder.h"

#include "analyser.h"
#include "externaltool.h"
#include "fingerprintworker.h"
#include "mediabackend.h"
#include "monosamples.h"

#include <QAudioBuffer>
#include <QAudioDecoder>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace epr {

namespace {

constexpr qint64 limitRate = 48000; // Hz

/// One decoding, from start to end on the calling thread.
class QtDecoding final : public QObject {
public:
    QtDecoding(const QtDecodeLimits &limits, Analyser &analyser);

    QtDecodeOutcome run(const QString &path);

private:
    bool openSource(const QString &path);
    void readBuffers();
    void takeBuffer(const QAudioBuffer &buffer);
    void fail(const QString &error);
    void end();

    QtDecodeLimits m_limits;
    Analyser &m_analyser;
    QtDecodeOutcome m_outcome;
    QFile m_file;
    QAudioDecoder m_decoder; // after the file, which it may be reading
    QEventLoop m_loop;
    QTimer m_watchdog;
    bool m_started = false;
    bool m_ended = false;
};

QtDecoding::QtDecoding(const QtDecodeLimits &limits, Analyser &analyser)
    : m_limits(limits)
    , m_analyser(analyser)
{
    m_watchdog.setSingleShot(true);
    connect(&m_watchdog, &QTimer::timeout, this, [this] { fail(FingerprintWorker::tr("Timed out decoding audio")); });
    connect(&m_decoder, &QAudioDecoder::bufferReady, this, &QtDecoding::readBuffers);
    connect(&m_decoder, &QAudioDecoder::finished, this, &QtDecoding::end);
    connect(&m_decoder, qOverload<QAudioDecoder::Error>(&QAudioDecoder::error), this,
            [this] { fail(m_decoder.errorString()); });
}

QtDecodeOutcome QtDecoding::run(const QString &path)
{
    if (!openSource(path))
        return m_outcome;
    m_watchdog.start(m_limits.watchdogMs);
    m_decoder.start();
    // Some back-ends report an error before the loop runs, and then nothing more would end it.
    if (!m_ended)
        m_loop.exec();
    m_ended = true;
    m_outcome.durationMs = std::max<qint64>(m_decoder.duration(), 0);
    m_decoder.stop();
    return m_outcome;
}

// A decoder that cannot start may stay silent until the watchdog bites: the toolkit's ffmpeg back-end of Qt 6.4 does so
// for a file that it cannot open.
bool QtDecoding::openSource(const QString &path)
{
    if (!m_decoder.isSupported() || mediaBackendGarbles(path)) {
        m_outcome.error = FingerprintWorker::tr("No audio decoder available");
        return false;
    }
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly)) {
        m_outcome.error = m_file.errorString();
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

void QtDecoding::readBuffers()
{
    while (!m_ended && m_decoder.bufferAvailable())
        takeBuffer(m_decoder.read());
}

void QtDecoding::takeBuffer(const QAudioBuffer &buffer)
{
    if (!buffer.isValid())
        return;
    if (!m_started) {
        m_analyser.reset(buffer.format().sampleRate());
        m_started = true;
    }
    const QList<float> samples = monoSamples(buffer);
    m_analyser.feed(samples.constData(), samples.size());
    m_outcome.frames += samples.size();
    if (m_outcome.frames >= m_limits.frames)
        end();
}

void QtDecoding::fail(const QString &error)
{
    if (m_ended)
        return;
    m_outcome.error = error;
    end();
}

// The decoder is stopped only when the loop has ended: inside one of its own signals it may not survive that.
void QtDecoding::end()
{
    m_ended = true;
    m_loop.quit();
}

} // namespace

QtDecodeLimits qtDecodeLimits(int seconds)
{
    return { seconds * limitRate, toolTimeouts(seconds).waitMs };
}

QtDecodeOutcome decodeWithQt(const QString &path, const QtDecodeLimits &limits, Analyser &analyser)
{
    return QtDecoding(limits, analyser).run(path);
}

void decodeWithQt(const FingerprintWorker &worker, Analyser &analyser, const QString &path, qint64 &durationMs,
                  QString &error)
{
    const QtDecodeOutcome outcome = decodeWithQt(path, qtDecodeLimits(worker.seconds()), analyser);
    if (outcome.durationMs > 0)
        durationMs = outcome.durationMs;
    if (!outcome.error.isEmpty())
        error = outcome.error;
}

} // namespace epr
