// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "command.h"
#include "updatechecker.h"

class QAction;

namespace epr {

/// Runs update checks for the window and tells the operator how they ended: a silent check in a log line, one that was
/// asked for in a box as well.
class UpdateNotices final : public Command {
    Q_OBJECT

public:
    /// The action is disabled while the check that it started runs.
    UpdateNotices(QAction *checkAction, QWidget *window);

    void scheduleStartupCheck(); ///< silent, and only if checks at start-up are wanted and one is due
    void startExplicitCheck();
    void reloadAddress(); ///< after the settings were edited

private:
    void announce(const UpdateChecker::Release &release, bool silent);
    void reportUpToDate(bool silent);
    void reportFailure(const QString &error, bool silent);
    void finishCheck(bool silent);

    UpdateChecker *m_checker;
    QAction *m_checkAction;
    bool m_isAnnouncing = false; ///< one dialog at a time, however many checks overlap
};

} // namespace epr
