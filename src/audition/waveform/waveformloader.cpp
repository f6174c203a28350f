// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveformloader.h"

#include "backgroundwork.h"
#include "envelopebuilder.h"
#include "mediabackend.h"

#include <QThread>

#include <optional>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

std::optional<Deck> deckOf(int number)
{
    return number == 0 || number == 1 ? std::optional(static_cast<Deck>(number)) : std::nullopt;
}

} // namespace

/// Lives on the loader's thread and decodes there, one file at a time. Requests that arrive meanwhile, in the event
/// loop of the decoding, wait; of each deck only the newest is kept, and it ends the decoding that it makes pointless.
class WaveformWorker final : public QObject {
    Q_OBJECT

public:
    /// The generations are shared, because a thread that cannot be joined outlives its loader.
    WaveformWorker(std::shared_ptr<const WaveformGenerations> generations, int watchdogMs)
        : m_generations(std::move(generations))
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
        if (!isWanted(request))
            return;
        EnvelopeBuilder builder;
        FileDecoding decoding(
            [&](const QAudioBuffer &buffer) {
                if (!isWanted(request))
                    return false;
                builder.add(buffer);
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
        Q_EMIT decoded(request, envelope, decoding.error());
    }

    std::shared_ptr<const WaveformGenerations> m_generations;
    int m_watchdogMs;
    PerDeck<std::optional<WaveformRequest>> m_waiting;
    WaveformRequest m_current; ///< what m_decoding decodes
    FileDecoding *m_decoding = nullptr; ///< null = none running
};

WaveformLoader::WaveformLoader(QObject *parent, int watchdogMs)
    : QObject(parent)
    , m_worker(new WaveformWorker(m_generations, watchdogMs))
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

} // namespace epr

#include "waveformloader.moc"
