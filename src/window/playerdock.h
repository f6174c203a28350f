// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"

#include <QDockWidget>

class QMenu;

namespace epr {

class ComparePlayer;
struct TrackInfo;

/// The comparison player's place in the main window, with the commands that work it from the menu and by key. Loading a
/// deck brings the player to the front.
class PlayerDock final : public QDockWidget {
    Q_OBJECT

public:
    explicit PlayerDock(QWidget *parent);

    ComparePlayer *player() const { return m_player; }

    void addCommandsTo(QMenu *menu) const;

    void load(Deck deck, const TrackInfo &track);
    void loadIntoFreeDeck(const TrackInfo &track);
    void compare(const TrackInfo &a, const TrackInfo &b);

private:
    QAction *make(const QString &text, const QKeySequence &key, void (ComparePlayer::*command)());
    void bringToFront();

    ComparePlayer *m_player;
    QAction *m_playPause;
    QAction *m_listenToA;
    QAction *m_listenToB;
    QAction *m_switch;
    QAction *m_link;
};

} // namespace epr
