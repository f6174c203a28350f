// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveformloader.h"

#include "backgroundwork.h"
#include "decoding.h"
#include "loudness.h"
#include "mediabackend.h"

#include <QAudioBuffer>
#include <QScopeGuard>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>

namespace epr {

using namespace Qt::StringLiterals;

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
    envelope.raisedBy = fullHeight / *highest;
    for (QList<float> *list : { &envelope.left, &envelope.right, &envelope.peak }) {
        for (float &value : *list)
            value *= envelope.raisedBy;
    }
}

std::optional<Deck> deckOf(int number)
{
    return number == 0 || number == 1 ? std::optional(static_cast<Deck>(number)) : std::nullopt;
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

/// Measures the loudness of buffers of the first one's rate and number of channels.
class BufferLoudness final {
public:
    void add(const QAudioBuffer &buffer)
    {
        const QAudioFormat format = buffer.format();
        if (!m_meter) {
            m_format = format;
            m_meter.emplace(format.channelCount(), format.sampleRate(), LoudnessMeter::Measure::Loudness);
        }
        if (format != m_format)
            return;
        QList<float> samples = interleavedSamples(buffer);
        std::replace_if(
            samples.begin(), samples.end(), [](float sample) { return !std::isfinite(sample); }, 0.0F);
        m_meter->add(samples);
    }

    [[nodiscard]] double loudness() const { return m_meter ? m_meter->loudness() : noLevel; }

private:
    QAudioFormat m_format;
    std::optional<LoudnessMeter> m_meter;
};

/// The one file that the loader's thread has open, for whoever has to wait until it is closed.
class OpenPreview final {
public:
    void set(const QString &path) // empty = none
    {
        const std::scoped_lock lock(m_mutex);
        m_path = path;
        m_changed.notify_all();
    }

    bool awaitOther(const QStringList &paths, std::chrono::milliseconds atMost)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, atMost, [&] { return !paths.contains(m_path); });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    QString m_path;
};

/// Lives on the loader's thread and decodes there, one file at a time. Requests that arrive meanwhile, in the event
/// loop of the decoding, wait; of each deck only the newest is kept, and it ends the decoding that it makes pointless.
class WaveformWorker final : public QObject {
    Q_OBJECT

public:
    /// What is shared is so because a thread that cannot be joined outlives its loader.
    WaveformWorker(std::shared_ptr<const WaveformGenerations> generations, std::shared_ptr<OpenPreview> open,
                   int watchdogMs)
        : m_generations(std::move(generations))
        , m_open(std::move(open))
        , m_watchdogMs(watchdogMs)
    {
    }

    void analyse(const WaveformRequest &request)
    {
        m_waiting[request.deck] = request;
        if (m_decoding)
            return dropOutdated();
        while (m_waiting.a || m_waiting.b)
            decode(*std::exchange(m_waiting.a ? m_waiting.a : m_waiting.b, std::nullopt));
    }

    /// Ends the running decoding if nobody wants it any more.
    void dropOutdated()
    {
        if (m_decoding && !isWanted(m_current))
            m_decoding->end();
    }

Q_SIGNALS:
    /// Only for requests that were still the newest of their deck when this was emitted. Without buckets the file could
    /// not be decoded; the error says why, or is empty.
    void decoded(const epr::WaveformRequest &request, const epr::Envelope &envelope, const QString &error);

private:
    bool isWanted(const WaveformRequest &request) const
    {
        return request.isNewest(*m_generations) && !QThread::currentThread()->isInterruptionRequested();
    }

    void decode(const WaveformRequest &request)
    {
        // Before the question, so that whoever has cancelled the request and then waits never comes in between.
        m_open->set(request.path);
        const auto closed = qScopeGuard([this] { m_open->set({}); });
        if (!isWanted(request))
            return;
        EnvelopeBuilder builder;
        BufferLoudness loudness;
        FileDecoding decoding(
            [&](const QAudioBuffer &buffer) {
                if (!isWanted(request))
                    return false;
                builder.add(buffer);
                loudness.add(buffer);
                return !builder.isFull();
            },
            m_watchdogMs);
        m_current = request;
        m_decoding = &decoding;
        static_cast<void>(decoding.run(request.path)); // whatever its end, what came before it is drawn
        m_decoding = nullptr;
        if (!isWanted(request))
            return;
        Envelope envelope = builder.take();
        envelope.durationMs = decoding.durationMs();
        envelope.loudness = loudness.loudness();
        Q_EMIT decoded(request, envelope, decoding.error());
    }

    std::shared_ptr<const WaveformGenerations> m_generations;
    std::shared_ptr<OpenPreview> m_open;
    int m_watchdogMs;
    PerDeck<std::optional<WaveformRequest>> m_waiting;
    WaveformRequest m_current; ///< what m_decoding decodes
    FileDecoding *m_decoding = nullptr; ///< null = none running
};

WaveformLoader::WaveformLoader(QObject *parent, int watchdogMs)
    : QObject(parent)
    , m_open(std::make_shared<OpenPreview>())
    , m_worker(new WaveformWorker(m_generations, m_open, watchdogMs))
    , m_thread(createWorkerThread(u"epr-waveform"_s, m_worker, this))
{
    connect(this, &WaveformLoader::requested, m_worker, &WaveformWorker::analyse, Qt::QueuedConnection);
    // A result may have waited in this thread's queue while a newer request was made.
    const auto relay = [this](const WaveformRequest &request, const Envelope &envelope, const QString &error) {
        if (!request.isNewest(*m_generations))
            return;
        if (!envelope.peak.isEmpty())
            Q_EMIT loaded(static_cast<int>(request.deck), envelope);
        else
            Q_EMIT failed(static_cast<int>(request.deck),
                          error.isEmpty() ? tr("This file could not be decoded for preview.") : error);
    };
    connect(m_worker, &WaveformWorker::decoded, this, relay, Qt::QueuedConnection);
    m_thread->start();
}

// The interruption outdates every request, and quitting ends the event loop of a decoding in progress too.
WaveformLoader::~WaveformLoader()
{
    m_thread->requestInterruption();
    m_thread->quit();
    waitOrLeave(m_thread);
}

void WaveformLoader::request(int deck, const QString &path)
{
    const std::optional<Deck> wanted = deckOf(deck);
    if (!wanted)
        return;
    Q_EMIT requested({ *wanted, path, ++(*m_generations)[*wanted] }, {});
}

void WaveformLoader::cancel(int deck)
{
    const std::optional<Deck> cancelled = deckOf(deck);
    if (!cancelled)
        return;
    ++(*m_generations)[*cancelled];
    QMetaObject::invokeMethod(m_worker, &WaveformWorker::dropOutdated);
}

bool WaveformLoader::awaitClosed(const QStringList &paths)
{
    return m_open->awaitOther(paths, std::chrono::seconds(1));
}

} // namespace epr

#include "waveformloader.moc"
