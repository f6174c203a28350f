// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"
#include "envelope.h"

#include <QObject>

#include <atomic>
#include <memory>

class QThread;

namespace epr {

class WaveformWorker;

/// Computes the envelopes that the two decks draw, deck 0 = A and 1 = B, on a thread of its own, "epr-waveform". Each
/// request for a deck replaces the one before, which then reports nothing.
class WaveformLoader final : public QObject {
    Q_OBJECT

public:
    /// How many requests each deck has seen, which makes the newest known. Written by the loader, read by its thread.
    using Generations = PerDeck<std::atomic<quint64>>;

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

private:
    std::shared_ptr<Generations> m_generations = std::make_shared<Generations>();
    QThread *m_thread;
    WaveformWorker *m_worker; ///< deletes itself on its thread
};

} // namespace epr
