// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "comparisonlogic.h"
#include "envelope.h"
#include "mediadeck.h"
#include "waveformloader.h"

#include <QTimer>

#include <array>

namespace epr {

/// The two-deck player without its face: 0 = deck A, 1 = deck B. Everything a face shows is announced by a signal and
/// can be asked for. Positions and durations are in ms.
class DeckPair final : public QObject {
    Q_OBJECT

public:
    explicit DeckPair(QObject *parent = nullptr);
    ~DeckPair() override;

    /// The deck that is heard.
    [[nodiscard]] int monitor() const { return m_logic.monitor(); }
    [[nodiscard]] bool isLinked() const { return m_logic.isLinked(); }
    [[nodiscard]] bool isPlaying(int deck) const { return m_decks.at(deck).isPlaying(); }
    [[nodiscard]] bool anyPlaying() const { return m_logic.isAnyPlaying(); }
    [[nodiscard]] bool hasFile(int deck) const { return m_logic.hasFile(deck); }
    [[nodiscard]] epr::TrackInfo track(int deck) const { return m_logic.track(deck); }
    [[nodiscard]] qint64 position(int deck) const { return m_decks.at(deck).position(); }
    /// Why the deck stays silent; empty while all is well.
    [[nodiscard]] QString problem(int deck) const { return m_problems.at(deck); }
    /// Of the file as the player sees it, 0 = unknown.
    [[nodiscard]] qint64 duration(int deck) const { return m_decks.at(deck).duration(); }

public Q_SLOTS:
    void playPause();
    void stop();
    void monitorDeckA();
    void monitorDeckB();
    void swapMonitor();
    void setLinked(bool linked);
    void seek(int deck, qint64 positionMs);
    void load(int deck, const epr::TrackInfo &track);
    void clear(int deck);

Q_SIGNALS:
    void positionChanged(int deck, qint64 positionMs);
    void durationChanged(int deck, qint64 durationMs);
    void playingChanged();
    void monitorChanged(int deck);
    void linkedChanged(bool linked);
    /// The deck has another track, or none.
    void deckChanged(int deck);
    void envelopeLoaded(int deck, const epr::Envelope &envelope);
    /// The reason alone; the log message has it too.
    void previewFailed(int deck, const QString &error);
    /// The reason alone, which problem() keeps until the deck plays or gets another file, and then empty; the log
    /// message has it too.
    void problemChanged(int deck, const QString &problem);
    void logMessage(const QString &message);

private:
    void connectDeck(int deck);
    void setMonitor(int deck);
    void onPlayingChanged(int deck);
    void reportProblem(int deck, const QString &problem);
    void giveUpPreview(int deck, const QString &error);

    std::array<MediaDeck, 2> m_decks;
    ComparisonLogic m_logic;
    std::array<QString, 2> m_problems;
    std::array<bool, 2> m_isPreviewWanted {}; ///< asked for, with no answer yet
    QTimer m_syncTimer;
    WaveformLoader m_previews;
};

} // namespace epr
