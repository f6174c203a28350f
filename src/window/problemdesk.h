// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"

#include <QAction>

class QTimer;
class QToolButton;

namespace epr {

class ResultsPanel;
class Review;

/// What went wrong or is about to, in the main window: the groups that had better be looked at, how many there are, and
/// the way to the next.
class ProblemDesk final : public Command {
    Q_OBJECT

public:
    struct Parts {
        Review *review;
        ResultsPanel *results;
    };

    ProblemDesk(const Parts &parts, QWidget *window);

    QAction *const nextProblem;

private:
    bool hasProblem(int group) const;
    void goOn();
    void refresh();

    const Parts m_parts;
    QToolButton *m_note;
    int m_group = -1; ///< at hand
    int m_count = 0; ///< of the groups with a problem
};

} // namespace epr
