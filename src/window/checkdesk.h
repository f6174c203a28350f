// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QAction>

#include <functional>

namespace epr {

class CleanupCommand;
class Command;
class DifferenceTour;
class MemberActions;
class PlayerDock;
class ResultsPanel;
class Review;
class WholeCheckCommand;
struct DifferencePlace;

/// The check over the whole length in the main window: its commands, and what it has to do with the results, the decks
/// and a clean-up.
class CheckDesk final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        Review *review;
        ResultsPanel *results;
        PlayerDock *player;
        CleanupCommand *cleanup;
        MemberActions *member;
    };

    CheckDesk(const Parts &parts, QWidget *window);

    QList<Command *> commands() const; ///< whose messages are to be shown

    void follow(const ScanOptions &options); ///< once the results of a scan are in the review
    void stop(); ///< before another scan
    void check(int group);
    void undo(const std::function<void()> &run); ///< with no file held open

    QAction *const checkAll;
    QAction *const checkGroup;
    QAction *const keepBetter;
    QAction *const nextDifference;

private:
    QAction *make(const QString &text, const QKeySequence &key, const QString &tip);
    void connectCheck();
    void connectResults();
    void setMember(int group, int member);
    void refresh();
    void keepBetterCopy();
    void showPlace(const DifferencePlace &place);
    void showOnDecks();
    void showChecked(int group);

    const Parts m_parts;
    WholeCheckCommand *m_check;
    DifferenceTour *m_tour;
    int m_group = -1; ///< at hand
};

} // namespace epr
