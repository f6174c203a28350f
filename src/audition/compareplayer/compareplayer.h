// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

#include <QTimer>
#include <QWidget>

#include <array>

namespace epr {

class DeckPair;
class DeckView;
class TransportView;

/// The two-deck player with its face. Deck 0 is A, deck 1 is B.
class ComparePlayer final : public QWidget {
    Q_OBJECT

public:
    explicit ComparePlayer(QWidget *parent = nullptr);
    ~ComparePlayer() override;

    [[nodiscard]] bool isLinked() const;
    [[nodiscard]] int monitor() const;
    [[nodiscard]] TrackInfo track(int deck) const; ///< the empty record = none

    void load(int deck, const TrackInfo &track);
    void loadIntoFreeDeck(const TrackInfo &track); ///< an empty one first, else the one that is not heard
    void clear(int deck);
    void
    release(const QStringList &paths); ///< takes these files out of the decks: a playing one cannot be moved everywhere
    void clearVanished(); ///< the decks whose file is no longer there

public Q_SLOTS:
    void playPause();
    void stop();
    void monitorDeckA();
    void monitorDeckB();
    void swapMonitor();
    void setLinked(bool linked);

Q_SIGNALS:
    void logMessage(const QString &message);
    void linkedChanged(bool linked);

private:
    void leaveEmptyDeck();
    void createViews();
    void connectViews();
    void connectPlayer();
    void onDeckChanged(int deck);
    void onPlayingChanged();
    void onMonitorChanged();
    void showLevels();

    DeckPair *m_player;
    std::array<DeckView *, 2> m_decks {};
    TransportView *m_transport = nullptr;
    QTimer m_levelTimer; ///< runs while a deck plays
};

} // namespace epr
