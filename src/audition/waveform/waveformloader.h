// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"
#include "records.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

class QThread;

namespace epr {

class WaveformWorker;

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

Q_SIGNALS:
    void loaded(int deck, const epr::Envelope &envelope);
    void failed(int deck, const QString &error);
    /// To the thread: ThreadSanitizer sees through the hand-over of a signal, and not of a queued function object.
    void requested(const epr::WaveformRequest &request, QPrivateSignal);

private:
    std::shared_ptr<WaveformGenerations> m_generations = std::make_shared<WaveformGenerations>();
    WaveformWorker *m_worker; ///< deletes itself on its thread
    QThread *m_thread;
};

} // namespace epr
