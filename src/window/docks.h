// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"

#include <QDockWidget>

class QMainWindow;
class QMenu;
class QPlainTextEdit;

namespace epr {

class ComparePlayer;
struct TrackInfo;

/// What the program has done, a line each with its time. Only the latest lines are kept, so that a scan that fails on
/// every file of a large library does not fill the memory with text.
class ActivityLog final : public QDockWidget {
    Q_OBJECT

public:
    explicit ActivityLog(QWidget *parent);

    void append(const QString &message); ///< with the current time before it
    /// Brings the log to the front, with the last such line and all after it marked.
    void showFrom(const QString &message);
    void leaveHeight(); ///< to the results, all but what a few lines need

private:
    void showEnd();

    QPlainTextEdit *m_text;
};

/// Puts the docks into the window, which takes nine tenths of the screen.
void placeForFirstStart(QMainWindow *window, QDockWidget *player, ActivityLog *log, QDockWidget *problems);

/// The comparison player's place in the main window, with the commands that work it from the menu and by key. Loading a
/// deck brings the player to the front; hidden, it pauses.
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
    QAction *make(const QString &text, const QKeySequence &key, const QString &tip, void (ComparePlayer::*command)());
    void bringToFront();
    void pauseOutOfSight();

    ComparePlayer *m_player;
    bool m_isInSight = false;
    QAction *m_playPause;
    QAction *m_listenToA;
    QAction *m_listenToB;
    QAction *m_listenToDifference;
    QAction *m_switch;
    QAction *m_link;
    QAction *m_sameLoudness;
};

} // namespace epr
