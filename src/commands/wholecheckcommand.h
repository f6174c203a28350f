// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"
#include "progress.h"
#include "review.h"
#include "wholechecker.h"

#include <QElapsedTimer>

namespace epr {

/// Has groups checked over their whole length behind the review, which gets the results, and says how far that has come
/// and what is left to check.
class WholeCheckCommand final : public Command {
    Q_OBJECT

public:
    WholeCheckCommand(Review &review, QWidget *window);

    /// After the results of a scan were set: how they were compared, and whether they are to be checked at once.
    void follow(const ScanOptions &options);

    void checkAll(); ///< that were found by sound or by tags and are not checked
    void checkTicked(); ///< of these, the groups in which something is ticked
    void checkGroup(int group); ///< whatever is known of it
    [[nodiscard]] bool isChecking() const { return m_checker.isRunning(); } ///< also when paused
    void togglePause();
    void stop(); ///< what was begun is given up

    /// Lets go of all files until resume(): they are to be moved or deleted.
    void hold(const QStringList &paths);
    void resume();

Q_SIGNALS:
    void offered(const QString &text); ///< what is unchecked; empty = nothing
    void progressed(const QString &text, int done, int total, bool isPaused);

private:
    struct Summary {
        int alike = 0;
        int differing = 0; ///< groups
        int failed = 0;
        int unticked = 0; ///< copies
    };

    void check(const QList<int> &groups);
    void take(int number, const GroupCheck &check);
    void showProgress(const CheckProgress &progress);
    void finish(bool stopped);
    void refreshOffer();
    QString offerText() const;

    Review &m_review;
    WholeChecker m_checker;
    QString m_seconds; ///< that were compared of each file
    qint32 m_firstNumber = 0; ///< the checker knows a group by this and its own number; older scans' groups are below
    qint32 m_endNumber = 0; ///< beyond all that were given
    bool m_isPaused = false; ///< by the operator
    bool m_isForRemoval = false;
    Summary m_summary;
    CheckProgress m_progress;
    ProgressEstimate m_estimate;
    QElapsedTimer m_clock;
};

/// Of the ticked copies, or of those among them, how many were found by sound or tags and were not compared with the
/// kept one to the end.
qint64 uncheckedTicks(const Review &review, const OnlyTracks &only = {});

} // namespace epr
