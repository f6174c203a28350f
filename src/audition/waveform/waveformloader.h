// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"
#include "records.h"

#include <QObject>
#include <QStringList>

#include <atomic>
#include <memory>

class QAudioBuffer;
class QThread;

namespace epr {

class OpenPreview;
class WaveformWorker;

/// Reduces decoded audio to one peak for each 40 ms. Only the first two channels count; the first buffer decides the
/// length of a bucket and whether the file is mono.
class EnvelopeBuilder final {
public:
    static constexpr qsizetype maxBuckets = 60000; ///< 40 minutes

    /// Whether the limit is reached; what is added after that is not looked at.
    bool isFull() const { return m_envelope.peak.size() >= maxBuckets; }

    void add(const QAudioBuffer &buffer);

    /// The envelope with its last, perhaps only partly filled bucket. A quiet one is raised to nearly full height, a
    /// loud one is never lowered; raisedBy says how much. The duration is left to the caller. The builder is as new
    /// afterwards.
    Envelope take();

private:
    template <typename Sample> void addSamples(const QAudioBuffer &buffer);
    void closeBucket();

    Envelope m_envelope;
    int m_channels = 0; ///< 0 = no buffer yet
    qsizetype m_bucketFrames = 1;
    qsizetype m_frames = 0; ///< in the open bucket
    float m_left = 0.0F; ///< maxima of the open bucket
    float m_right = 0.0F;
};

/// How many requests each deck has seen, which makes the newest known. Written by the loader, read by its thread.
using WaveformGenerations = PerDeck<std::atomic<quint64>>;

struct WaveformRequest {
    Deck deck = Deck::A;
    QString path;
    quint64 generation = 0; ///< of the deck, when the request was made

    bool isNewest(const WaveformGenerations &generations) const
    {
        return generations[deck].load(std::memory_order_relaxed) == generation;
    }
};

/// Computes the envelopes that the two decks draw, deck 0 = A and 1 = B, on a thread of its own, "epr-waveform". Each
/// request for a deck replaces the one before, which then reports nothing.
class WaveformLoader final : public QObject {
    Q_OBJECT

public:
    /// The watchdog ends a decoding that takes longer; what was decoded by then counts.
    explicit WaveformLoader(QObject *parent = nullptr, int watchdogMs = 60000);
    ~WaveformLoader() override;

    /// Other decks are ignored.
    void request(int deck, const QString &path);

    /// The deck's request, if there is one, reports nothing.
    void cancel(int deck);

    /// Blocks until none of the files is open, which takes some milliseconds when their requests are cancelled or
    /// replaced. False after a second: the thread is stuck on a drive that is gone, say.
    bool awaitClosed(const QStringList &paths);

Q_SIGNALS:
    void loaded(int deck, const epr::Envelope &envelope);
    void failed(int deck, const QString &error);
    /// To the thread: ThreadSanitizer sees through the hand-over of a signal, and not of a queued function object.
    void requested(const epr::WaveformRequest &request, QPrivateSignal);

private:
    std::shared_ptr<WaveformGenerations> m_generations = std::make_shared<WaveformGenerations>();
    std::shared_ptr<OpenPreview> m_open;
    WaveformWorker *m_worker; ///< deletes itself on its thread
    QThread *m_thread;
};

} // namespace epr
