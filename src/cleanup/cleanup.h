// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fileproblem.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <QStringList>

#include <functional>
#include <optional>

namespace epr {

/// Called before each file with its number from 0, the number of files and its path, on the thread that does the work;
/// while a file is compared also many times a second, with a text that says so around the path. False stops before that
/// file. May be empty.
using CleanupProgressFn = std::function<bool(qsizetype index, qsizetype total, const QString &path)>;

/// A file as the scan saw it.
struct RemovalCandidate {
    QString path;
    qint64 size = 0; ///< bytes
    QDateTime mtime;
    QString fullHash = {}; ///< what the scan or its cache recorded, as in TrackInfo; empty = nothing
    QString audioHash = {};

    bool operator==(const RemovalCandidate &) const = default;
};

/// For each file to be removed the copies of its group that stay.
using KeptCopies = QHash<QString, QList<RemovalCandidate>>;

/// What is looked at directly before a file goes.
struct RemovalChecks {
    KeptCopies kept;
    QHash<QString, RemovalCandidate> scanned = {}; ///< the files to be removed, by path
    bool compareAgain = false; ///< read files again also where they could be brought back
    QStringList protectedFolders = {}; ///< from which nothing goes, by whatever path it is reached

    bool operator==(const RemovalChecks &) const = default;
};

enum class RemovalMode : qint32 {
    Quarantine = 0,
    RecycleBin = 1,
    Delete = 2,
};

/// Translated; empty for a value that is none of the three.
QString removalModeLabel(RemovalMode mode);

struct RemovalResult {
    qint32 succeeded = 0;
    qint32 failed = 0;
    qint64 bytesFreed = 0; ///< sizes of the files that succeeded; a symbolic link counts nothing
    /// One message for each failure, with the system's reason if it gave one, in order; then what concerns the whole
    /// run.
    QStringList errors;
    QString manifestPath; ///< empty if there is nothing to undo
    QString refusal = {}; ///< why nothing was begun at all, for the operator; else empty
    QList<FileProblem> problems = {}; ///< the failures by files

    bool operator==(const RemovalResult &) const = default;
};

/// Removes the files one after the other; a file that cannot be removed stays and is counted, and the run goes on. A
/// path that is a symbolic link loses the link and never its target. Only files are removed, no folders.
///
/// A quarantine run moves each file into a folder of its own for the run, under the name of the scan root that holds it
/// and its path below that root. It can be undone up to the last file moved, however it ends: if there is no place to
/// note down what was moved, nothing is moved. Stopping it through the progress function ends it in the normal way.
///
/// Only one clean-up or undo runs at a time, see CleanupLock. Unless kept is empty, a file goes only if one of its kept
/// copies is as it was scanned and can be read, by a look directly before its turn; a quarantine run looks directly
/// afterwards too, and moves the file back if the copy has gone. So two programs that do not know of each other, and
/// each take what the other keeps, cannot both take theirs.
///
/// Files that are to be deleted, and others if so wished, are read again before, and so is a kept copy, once for all
/// files: both must have the digests that were recorded, if any were.
[[nodiscard]] RemovalResult removeFiles(const QStringList &paths, RemovalMode mode, const QString &quarantineRoot,
                                        const QStringList &scanRoots, const CleanupProgressFn &progress = {},
                                        const RemovalChecks &checks = {});

struct RestoreResult {
    qint32 succeeded = 0;
    qint32 failed = 0;
    QStringList errors; ///< one message for each failure, with the system's reason if it gave one, in order
    QString refusal = {}; ///< as in RemovalResult
    QList<FileProblem> problems = {}; ///< the failures by the places that the files were to come back to

    bool operator==(const RestoreResult &) const = default;
};

/// Of the files of a quarantine run those that are meant, by the paths that they came from; nothing = all of them.
using ChosenFiles = std::optional<QSet<QString>>;

/// What an undo would find, for questions before it begins.
struct UndoOutlook {
    /// Whether there is at least one of the files to move back. If not, their drive may be unplugged. True also for a
    /// manifest that names no files or cannot be read.
    bool hasCopies = true;
    QStringList missingFolders; ///< that files came from, sorted
};

UndoOutlook lookAtUndo(const QString &path, const ChosenFiles &chosen = {});

/// What an undo does about a file whose former folder is not there.
enum class MissingFolders {
    Leave, ///< the file stays: the folder may lie on a drive that is not connected, and one made now would be in its
           ///< way
    Make,
};

/// Moves the files of a quarantine run back, one clean-up or undo at a time. Nothing is ever replaced, and nothing is
/// touched but the files that the manifest names by clean absolute paths.
///
/// A manifest serves once: it is deleted afterwards. Files that could not be restored are named in the errors and in a
/// manifest of their own, which is written before; only a copy that is gone from a run folder that is there is given
/// up. A file that an undo which was killed had restored already counts neither way.
///
/// A manifest that cannot be read is kept; that is the single error, with both counts 0. Stopping through the progress
/// function leaves a manifest of the files not yet tried and of those that failed, and so does choosing some of the
/// files, of those that were not chosen.
[[nodiscard]] RestoreResult restoreManifest(const QString &path, const CleanupProgressFn &progress = {},
                                            MissingFolders missing = MissingFolders::Leave,
                                            const ChosenFiles &chosen = {});

/// Removes what a clean-up or an undo that was killed has left anywhere: unfinished copies, empty files that held a
/// name, half-written lists. Each was noted beforehand or has a name that nobody else gives, and nothing else is
/// touched. A list that has lost its manifest gets one again. Does nothing while another clean-up runs.
///
/// What lies on a drive that is not there is left for the next time. Returns what was done, in sentences for the
/// operator.
[[nodiscard]] QStringList clearTraces();

} // namespace epr
