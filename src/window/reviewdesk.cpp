// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewdesk.h"

#include "keepercommand.h"
#include "memberactions.h"
#include "resultspanel.h"
#include "resultsview.h"
#include "review.h"
#include "setasidecommand.h"

#include <algorithm>

namespace epr {

ReviewDesk::ReviewDesk(const Parts &parts, QWidget *window)
    : Command(window)
    , undo(make({}, QKeySequence::Undo, tr("Take back the last decision, or the last command that made several.")))
    , redo(make({}, Qt::CTRL | Qt::SHIFT | Qt::Key_Z, tr("Decide once more what was taken back.")))
    , done(make(tr("Group Done"), Qt::Key_G,
                tr("Say that this group is decided and go to the next; on a group that is done, take that back.")))
    , notDuplicates(make(tr("Not Duplicates"), Qt::Key_N,
                         tr("Say that the copies of this group are no duplicates, and set it aside.")))
    , chooseKeepers(make(tr("Choose Copies to Keep Again..."), {},
                         tr("By the policy or the rules of the settings, with what was measured since the scan.")))
    , showSetAside(make(tr("Not Duplicates..."), {}, tr("List the groups that were set aside, and restore some.")))
    , m_parts(parts)
    , m_keepers(new KeeperCommand(*parts.review, window))
    , m_setAside(new SetAsideCommand(*parts.review, window))
{
    parts.member->addToMenus({ done, notDuplicates });
    connect(undo, &QAction::triggered, this,
            [this] { step(&Review::undo, tr("Undone: %1").arg(m_parts.review->undoText())); });
    connect(redo, &QAction::triggered, this,
            [this] { step(&Review::redo, tr("Redone: %1").arg(m_parts.review->redoText())); });
    connect(done, &QAction::triggered, this, [this] { decide(GroupState::Done); });
    connect(notDuplicates, &QAction::triggered, this, [this] { decide(GroupState::NotDuplicates); });
    connect(showSetAside, &QAction::triggered, m_setAside, &SetAsideCommand::showAll);
    connect(chooseKeepers, &QAction::triggered, m_keepers, &KeeperCommand::chooseAgain);
    for (const Command *command : { static_cast<Command *>(m_keepers), static_cast<Command *>(m_setAside) }) {
        connect(command, &Command::logMessage, this, &Command::logMessage);
        connect(command, &Command::statusMessage, this, &Command::statusMessage);
    }
    connect(parts.results, &ResultsPanel::currentChanged, this, &ReviewDesk::setGroup);
    connect(parts.results, &ResultsPanel::atHandChanged, parts.member, &MemberActions::setSeveral);
    connect(parts.results->view(), &ResultsView::selectionRefused, this, [this] {
        Q_EMIT statusMessage(tr("So many rows are not selected at once. Commands for all copies heed a filter."));
    });
    parts.member->setPlaces([results = parts.results] { return results->placesAtHand(); });
    connect(parts.review, &Review::historyChanged, this, &ReviewDesk::refresh);
    connect(parts.review, &Review::aboutToBeReset, this, [this] { setGroup(-1); });
    connect(parts.review, &Review::tickRefused, this, &Command::statusMessage);
    refresh();
}

void ReviewDesk::takeResults()
{
    m_setAside->takeResults();
}

void ReviewDesk::offerKeepers()
{
    m_keepers->offer();
}

QAction *ReviewDesk::make(const QString &text, const QKeySequence &key, const QString &tip)
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    action->setToolTip(tip);
    action->setStatusTip(tip);
    return action;
}

void ReviewDesk::setGroup(int group)
{
    m_group = group;
    refresh();
}

void ReviewDesk::refresh()
{
    const Review &review = *m_parts.review;
    undo->setEnabled(review.canUndo());
    undo->setText(review.canUndo() ? tr("Undo: %1").arg(review.undoText()) : tr("Undo"));
    redo->setEnabled(review.canRedo());
    redo->setText(review.canRedo() ? tr("Redo: %1").arg(review.redoText()) : tr("Redo"));
    chooseKeepers->setEnabled(!review.groups().isEmpty());
    done->setEnabled(m_group >= 0);
    notDuplicates->setEnabled(m_group >= 0);
}

// Setting a group aside takes its row away, and with it the place. What all selected groups have already is taken back.
void ReviewDesk::decide(GroupState state)
{
    Review &review = *m_parts.review;
    const int group = m_group;
    const QList<int> groups = m_parts.results->groupsAtHand();
    const bool isTakenBack = std::ranges::all_of(groups, [&](int other) { return review.state(other) == state; });
    review.setState(groups, isTakenBack ? GroupState::Undecided : state);
    if (!isTakenBack && !m_parts.results->goToUndecided(group))
        Q_EMIT statusMessage(tr("No group in sight is undecided."));
}

void ReviewDesk::step(int (Review::*direction)(), const QString &message)
{
    const int group = (m_parts.review->*direction)();
    if (group >= 0 && group != m_group)
        m_parts.results->goToShownGroup(group);
    Q_EMIT statusMessage(message);
}

} // namespace epr
