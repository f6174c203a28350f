// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "playerdesk.h"

#include "backgroundwork.h"
#include "cleanupcommand.h"
#include "compareplayer.h"
#include "docks.h"
#include "memberactions.h"
#include "resultspanel.h"
#include "review.h"
#include "settingsstore.h"

#include <QTimer>

namespace epr {

PlayerDesk::PlayerDesk(const Parts &parts, QObject *window)
    : QObject(window)
    , m_parts(parts)
{
    const ComparePlayer *player = parts.player->player();
    connect(parts.results, &ResultsPanel::memberActivated, parts.player, &PlayerDock::loadIntoFreeDeck);
    connect(parts.member, &MemberActions::loadRequested, parts.player, &PlayerDock::load);
    connect(parts.member, &MemberActions::compareRequested, parts.player, &PlayerDock::compare);
    connect(parts.cleanup, &CleanupCommand::aboutToRemove, player, &ComparePlayer::release);
    connect(parts.cleanup, &CleanupCommand::filesRemoved, player, &ComparePlayer::clearVanished);
    connect(player, &ComparePlayer::logMessage, this, &PlayerDesk::logMessage);
    connect(player, &ComparePlayer::tracksChanged, this, &PlayerDesk::markLoadedCopies);
    connect(parts.review, &Review::reset, this, &PlayerDesk::markLoadedCopies);
    QTimer *soon = createSoonTimer(this, [this] { markLoadedCopies(); });
    connect(parts.review, &Review::keeperChanged, soon, qOverload<>(&QTimer::start));
}

void PlayerDesk::restore(const SettingsStore &store, bool isFirstStart)
{
    const bool hasRoom = !isFirstStart || !m_parts.player->isHidden();
    m_parts.player->setVisible(store.value(settings::showPlayer) && hasRoom);
    m_parts.player->player()->setLinked(store.value(settings::linkDecks));
    m_parts.player->player()->setSameLoudness(store.value(settings::sameLoudness));
}

void PlayerDesk::save(SettingsStore &store) const
{
    store.set(settings::showPlayer, !m_parts.player->isHidden());
    store.set(settings::linkDecks, m_parts.player->player()->isLinked());
    store.set(settings::sameLoudness, m_parts.player->player()->hasSameLoudness());
}

void PlayerDesk::markLoadedCopies()
{
    ComparePlayer *player = m_parts.player->player();
    PerDeck<QString> paths;
    for (const Deck deck : bothDecks) {
        paths[deck] = player->track(deck).path;
        player->setKept(deck, m_parts.review->keeps(paths[deck]));
    }
    player->setOffset(m_parts.review->offsetBetween(paths.a, paths.b));
    m_parts.results->setLoaded(paths);
}

} // namespace epr
