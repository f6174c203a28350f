// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"
#include "reviewrecord.h"

#include <QAction>

namespace epr {

class KeeperCommand;
class MemberActions;
class ResultsPanel;
class Review;
class SetAsideCommand;

/// How far the operator is with the groups, in the main window: the commands that say so, the way from group to group
/// that they take, and the way back.
class ReviewDesk final : public Command {
    Q_OBJECT

public:
    struct Parts {
        Review *review;
        ResultsPanel *results;
        MemberActions *member;
    };

    ReviewDesk(const Parts &parts, QWidget *window);

    void takeResults(); ///< once those of a scan are in the review, with what an earlier review had to say of them

    void offerKeepers(); ///< after the settings were edited: to choose the copies to keep again, if that changes any

    QAction *const undo;
    QAction *const redo;
    QAction *const done;
    QAction *const notDuplicates;
    QAction *const chooseKeepers;
    QAction *const showSetAside;

private:
    QAction *make(const QString &text, const QKeySequence &key, const QString &tip);
    void setGroup(int group);
    void refresh();
    void decide(GroupState state);
    void step(int (Review::*direction)(), const QString &message);

    const Parts m_parts;
    KeeperCommand *m_keepers;
    SetAsideCommand *m_setAside;
    int m_group = -1; ///< at hand
};

} // namespace epr
