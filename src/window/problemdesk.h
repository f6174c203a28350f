// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"
#include "fileproblem.h"

#include <QAction>
#include <QSet>

class QToolButton;

namespace epr {

class CheckDesk;
class CleanupCommand;
class ProblemsDock;
class ProblemsModel;
class ResultsPanel;
class Review;

/// What went wrong or is about to, in the main window: the groups that had better be looked at, how many there are and
/// the way to the next, and the list of files that something failed with.
class ProblemDesk final : public Command {
    Q_OBJECT

public:
    struct Parts {
        Review *review;
        ResultsPanel *results;
        CleanupCommand *cleanup;
        CheckDesk *checks;
        ExportCommand *exports;
        QAction *scan; ///< what is to be done for another try
        QAction *undo;
        ProblemsDock *dock;
    };

    ProblemDesk(const Parts &parts, QWidget *window);

    void beginScan(); ///< what the last one met is out of date
    void addFolders(const QList<epr::FileProblem> &folders);

    QAction *const nextProblem;

private:
    void connectList();
    void followReview();
    void followCheck(int group);
    void followRemoval(const QStringList &gone, const QList<epr::FileProblem> &problems);
    bool hasProblem(int group) const;
    QString problemOf(int group) const;
    void goOn();
    void refreshNote();
    void refreshList();
    std::pair<int, int> placeOf(const QString &path) const;
    void goToRow();
    void tryAgain();
    void openFolder();
    void copy();

    const Parts m_parts;
    ProblemsModel *m_model;
    ProblemsDock *m_dock;
    QToolButton *m_note;
    QSet<QString> m_stayed; ///< files that could not be removed
    QSet<QString> m_gone; ///< files that a clean-up has removed since the scan
    int m_group = -1; ///< at hand
    int m_count = 0; ///< of the groups with a problem
};

} // namespace epr
