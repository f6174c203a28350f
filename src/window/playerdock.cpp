// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "playerdock.h"

#include "compareplayer.h"
#include "records.h"

#include <QAction>
#include <QMenu>

namespace epr {

using namespace Qt::StringLiterals;

PlayerDock::PlayerDock(QWidget *parent)
    : QDockWidget(tr("Comparison Player"), parent)
    , m_player(new ComparePlayer(this))
    , m_playPause(make(tr("Play / Pause"), Qt::CTRL | Qt::Key_Space, &ComparePlayer::playPause))
    , m_listenToA(make(tr("Listen to Deck A"), Qt::Key_A, &ComparePlayer::monitorDeckA))
    , m_listenToB(make(tr("Listen to Deck B"), Qt::Key_B, &ComparePlayer::monitorDeckB))
    , m_switch(make(tr("Switch A / B"), Qt::Key_X, &ComparePlayer::swapMonitor))
    , m_link(new QAction(tr("Keep Decks in Sync"), this))
{
    setObjectName(u"playerDock"_s);
    setWidget(m_player);
    m_switch->setToolTip(tr("Cut between the two decks without losing your place."));
    m_switch->setStatusTip(m_switch->toolTip());
    m_link->setCheckable(true);
    m_link->setShortcut(Qt::CTRL | Qt::Key_L);
    connect(m_link, &QAction::toggled, m_player, &ComparePlayer::setLinked);
    connect(m_player, &ComparePlayer::linkedChanged, m_link, &QAction::setChecked);
    toggleViewAction()->setShortcut(Qt::Key_F8);
    connect(toggleViewAction(), &QAction::triggered, this, [this](bool shown) {
        if (shown)
            bringToFront();
    });
}

void PlayerDock::addCommandsTo(QMenu *menu) const
{
    menu->addAction(m_playPause);
    menu->addSeparator();
    menu->addActions({ m_listenToA, m_listenToB, m_switch, m_link });
}

void PlayerDock::load(Deck deck, const TrackInfo &track)
{
    bringToFront();
    m_player->load(deck, track);
}

void PlayerDock::loadIntoFreeDeck(const TrackInfo &track)
{
    bringToFront();
    m_player->loadIntoFreeDeck(track);
}

void PlayerDock::compare(const TrackInfo &a, const TrackInfo &b)
{
    load(Deck::A, a);
    load(Deck::B, b);
}

QAction *PlayerDock::make(const QString &text, const QKeySequence &key, void (ComparePlayer::*command)())
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    connect(action, &QAction::triggered, m_player, command);
    return action;
}

void PlayerDock::bringToFront()
{
    show();
    raise();
}

} // namespace epr
