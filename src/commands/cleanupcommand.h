// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"
#include "commands.h"
#include "removalplan.h"
#include "removalpreview.h"
#include "runwithprogress.h"

QT_FORWARD_DECLARE_CLASS(QThread)

namespace epr {

class RemovalDialog;
struct RestoreResult;
class Review;

/// Removes the ticked copies and undoes earlier quarantine runs: the checks, the questions, the work and what is said
/// about it afterwards.
class CleanupCommand final : public Command {
    Q_OBJECT

public:
    struct Places {
        QString quarantineRoot;
        QStringList scanRoots;
        OnlyTracks only = {}; ///< of what is ticked
        qint64 hiddenTicks = 0; ///< of the ticked copies, those that the operator does not see at the moment
    };

    CleanupCommand(Review &review, QWidget *window);
    ~CleanupCommand() override;

    /// While files are moved, an event loop runs inside the command: the window must neither close nor start a scan.
    bool isRunning() const { return m_isRunning; }

    /// Does something to files, with its progress shown; false if it was stopped.
    bool run(const QString &title, const CleanupJob &job);

    /// Clears up after a clean-up that was killed, on a thread of its own, and logs what it did.
    void clearUpTraces();

    void removeSelected(const Places &places);
    void undoPreviousCleanup();

    /// Moves files of one clean-up back, after the questions that this takes.
    void restoreFrom(const QString &manifest, const ChosenFiles &chosen = {});

    /// Before a scan that would find the copies in the quarantine and offer them as duplicates of their originals: logs
    /// that and asks whether to go on. A quarantine folder without a file in it is not worth a question.
    bool confirmScan(const QString &quarantineRoot, const QStringList &folders);

Q_SIGNALS:
    void wholeGroupTicked(int group); ///< the group for which a removal was refused
    void quarantineRootChosen(const QString &folder);
    void checkWanted(); ///< of the ticked copies, before they go
    void aboutToRemove(const QStringList &paths); ///< whoever holds one open must let go of it
    void filesRestored(int files); ///< are back in the library, but not in the review
    void removalEnded(const QStringList &gone, const QList<epr::FileProblem> &problems); ///< before filesRemoved()
    void undoEnded(const QList<epr::FileProblem> &problems);
    void filesRemoved(); ///< the tree is up to date again; whoever holds one of its files should look whether it exists

private:
    struct Request {
        QList<TickedGroup> groups;
        QStringList paths;
        Places places;
        QList<RemovalItem> items = {}; ///< the same files
        QHash<QString, Volume> volumes = {}; ///< of their folders
        Volume quarantine = {};
    };

    bool lookAtDisk(Request &request);
    std::optional<RemovalMode> askMode(Request &request);
    void changeQuarantine(Request &request, RemovalDialog &dialog);
    bool confirmDeletion(qsizetype files);
    void leaveOutUnticked(Request &request);
    void remove(Request request, RemovalMode mode);
    static RemovalResult removeAndRecord(const Request &request, RemovalMode mode, const RemovalPlan &plan,
                                         const CleanupProgressFn &progress, QStringList *notes);
    void tellRemoval(RemovalMode mode, const RemovalResult &result, const QString &stopped);
    void tellRefusal(const QString &refusal);
    void tellEnd(const QString &title, const QString &text, const QStringList &failures);
    void tellAll(const QStringList &lines);
    void tellStop(const QString &stopped); ///< empty = it was not stopped
    std::optional<QString> askManifest(const QStringList &manifests, const QStringList &descriptions);
    bool confirmUndo(const QString &title, const QString &text);
    bool confirmWithoutCopies();
    bool confirmFolders(const QStringList &missing);
    void restore(const QString &manifest, MissingFolders missing, const ChosenFiles &chosen);
    void tellRestore(const RestoreResult &result, const QString &stopped);

    Review &m_review;
    bool m_isRunning = false;
    QThread *m_clearing = nullptr;
};

} // namespace epr
