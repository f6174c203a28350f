// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkdesk.h"

#include "checkbar.h"
#include "cleanupcommand.h"
#include "compareplayer.h"
#include "differencetour.h"
#include "docks.h"
#include "groupcheck.h"
#include "memberactions.h"
#include "resultspanel.h"
#include "review.h"
#include "wholecheckcommand.h"

#include <QWidget>

#include <algorithm>

namespace epr {

namespace {

/// The group that both loaded files are copies of, and their indexes.
struct LoadedPair {
    const MatchGroup *group = nullptr;
    PerDeck<qint32> tracks;
};

LoadedPair loadedPair(const Review &review, const ComparePlayer &player)
{
    const auto memberAt = [&](const MatchGroup &group, Deck deck) {
        const QString &path = player.track(deck).path;
        const auto member =
            std::ranges::find_if(group.members, [&](qint32 index) { return review.tracks().at(index).path == path; });
        return member == group.members.cend() ? -1 : *member;
    };
    if (player.track(Deck::A).path.isEmpty() || player.track(Deck::B).path.isEmpty())
        return {};
    for (const MatchGroup &group : review.groups()) {
        const qint32 a = memberAt(group, Deck::A);
        const qint32 b = a < 0 ? -1 : memberAt(group, Deck::B);
        if (b >= 0)
            return { &group, { a, b } };
    }
    return {};
}

} // namespace

CheckDesk::CheckDesk(const Parts &parts, QWidget *window)
    : QObject(window)
    , checkAll(make(tr("Check Groups over Their Whole Length"), {},
                    tr("Decode the copies that were found by sound or by tags to their ends and compare them.")))
    , checkGroup(make(tr("Check the Whole Length"), {},
                      tr("Decode the copies of this group to their ends and compare "
                         "them.")))
    , keepBetter(make(tr("Keep the Better Copy"), Qt::CTRL | Qt::SHIFT | Qt::Key_K,
                      tr("Where a check found the kept copy to be the worse one, keep the other instead.")))
    , nextDifference(make(tr("Next Difference"), Qt::Key_F3,
                          tr("Take both decks to the next place where a copy differs from the one to keep.")))
    , m_parts(parts)
    , m_check(new WholeCheckCommand(*parts.review, window))
    , m_tour(new DifferenceTour(*parts.review, window))
{
    parts.member->addToMenus({ checkGroup, keepBetter });
    connectCheck();
    connectResults();
    connect(checkAll, &QAction::triggered, m_check, &WholeCheckCommand::checkAll);
    connect(checkGroup, &QAction::triggered, m_check, [this] { m_check->checkGroup(m_group); });
    connect(keepBetter, &QAction::triggered, this, &CheckDesk::keepBetterCopy);
    connect(nextDifference, &QAction::triggered, m_tour, [this] { m_tour->goOn(m_check->isChecking()); });
    refresh();
}

QList<Command *> CheckDesk::commands() const
{
    return { m_check, m_tour };
}

void CheckDesk::follow(const ScanOptions &options)
{
    m_check->follow(options);
}

void CheckDesk::stop()
{
    m_check->stop();
}

void CheckDesk::check(int group)
{
    m_check->checkGroup(group);
}

void CheckDesk::undo(const std::function<void()> &run)
{
    m_check->hold({});
    run();
    m_check->resume();
}

QAction *CheckDesk::make(const QString &text, const QKeySequence &key, const QString &tip)
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    action->setToolTip(tip);
    action->setStatusTip(tip);
    return action;
}

void CheckDesk::connectCheck()
{
    const CheckBar *bar = m_parts.results->checkBar();
    connect(m_check, &WholeCheckCommand::offered, bar, &CheckBar::offer);
    connect(m_check, &WholeCheckCommand::progressed, bar, &CheckBar::showProgress);
    connect(bar, &CheckBar::checkRequested, m_check, &WholeCheckCommand::checkAll);
    connect(bar, &CheckBar::pauseRequested, m_check, &WholeCheckCommand::togglePause);
    connect(bar, &CheckBar::stopRequested, m_check, &WholeCheckCommand::stop);
    connect(m_parts.cleanup, &CleanupCommand::checkWanted, m_check, &WholeCheckCommand::checkTicked);
    connect(m_parts.cleanup, &CleanupCommand::aboutToRemove, m_check, &WholeCheckCommand::hold);
    connect(m_parts.cleanup, &CleanupCommand::filesRemoved, m_check, &WholeCheckCommand::resume);
}

void CheckDesk::connectResults()
{
    connect(m_parts.results, &ResultsPanel::currentChanged, this, &CheckDesk::setMember);
    connect(m_tour, &DifferenceTour::reached, m_parts.results, &ResultsPanel::showMember);
    connect(m_tour, &DifferenceTour::placeWanted, this, &CheckDesk::showPlace);
    connect(m_parts.player->player(), &ComparePlayer::tracksChanged, this, &CheckDesk::showOnDecks);
    connect(m_parts.review, &Review::checkChanged, this, &CheckDesk::showChecked);
    connect(m_parts.review, &Review::aboutToBeReset, this, [this] { setMember(-1, -1); });
    connect(m_parts.review, &Review::totalsChanged, this, &CheckDesk::refresh);
}

void CheckDesk::setMember(int group, int member)
{
    m_group = group;
    m_tour->setMember(group, member);
    refresh();
}

void CheckDesk::refresh()
{
    const bool hasGroup = m_group >= 0 && m_group < m_parts.review->groups().size();
    checkAll->setEnabled(!m_parts.review->groups().isEmpty());
    nextDifference->setEnabled(checkAll->isEnabled());
    checkGroup->setEnabled(hasGroup);
    keepBetter->setEnabled(hasGroup && betterCopy(m_parts.review->groups().at(m_group)) >= 0);
}

void CheckDesk::keepBetterCopy()
{
    m_parts.review->keepBetter(m_group, betterCopy(m_parts.review->groups().at(m_group)));
}

void CheckDesk::showPlace(const DifferencePlace &place)
{
    ComparePlayer *player = m_parts.player->player();
    if (player->track(Deck::A).path != place.kept.path || player->track(Deck::B).path != place.other.path)
        m_parts.player->compare(place.kept, place.other);
    player->setLinked(true);
    player->setOffset(place.otherLaterMs);
    player->seek(Deck::A, place.keptMs);
}

// What a check found of the files that are loaded, as far as they are copies of one group.
void CheckDesk::showOnDecks()
{
    ComparePlayer *player = m_parts.player->player();
    const LoadedPair loaded = loadedPair(*m_parts.review, *player);
    if (!loaded.group)
        return; // the player has forgotten what it showed of other files
    PerDeck<QList<std::pair<qint64, qint64>>> marks;
    const std::optional<PairCheck> pair = pairCheck(*loaded.group, loaded.tracks.a, loaded.tracks.b);
    for (const SoundDifference &difference : pair.value_or(PairCheck()).differences) {
        marks.a.append({ difference.firstStartMs, difference.firstEndMs });
        marks.b.append({ difference.secondStartMs, difference.secondEndMs });
    }
    for (const Deck deck : bothDecks) {
        player->setMarks(deck, marks[deck]);
        player->showMeasures(deck, loaded.group->check.measures.value(loaded.tracks[deck]));
    }
}

void CheckDesk::showChecked(int group)
{
    ComparePlayer *player = m_parts.player->player();
    const LoadedPair loaded = loadedPair(*m_parts.review, *player);
    if (loaded.group != &m_parts.review->groups().at(group))
        return;
    player->setOffset(offsetBetween(*loaded.group, loaded.tracks.a, loaded.tracks.b));
    showOnDecks();
}

} // namespace epr
