// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"

#include <QSet>

namespace epr {

/// What to decide before files are handed to removeFiles(): looks at the disk as it is now, and changes nothing.

/// Whether another file stands at the path than the one that was scanned, by size and modification time in whole
/// seconds: the cache keeps no more. A file that is gone has not changed.
bool changedSinceScan(const RemovalCandidate &candidate);

/// Whether one of the copies is as it was scanned, can be read, and keeps its content when the name is gone: it is
/// neither that name, by whatever path, nor a symbolic link by way of it.
bool standsWithout(const QString &path, const QList<RemovalCandidate> &copies);

/// The message for a file that was left alone because it changed.
QString changedMessage(const QString &path);

struct CheckedCandidates {
    QStringList paths; ///< to be removed
    QStringList errors; ///< one message for each file that changed
    QStringList changed = {}; ///< these

    bool operator==(const CheckedCandidates &) const = default;
};

/// Takes out the files that changed since the scan.
CheckedCandidates checkCandidates(const QList<RemovalCandidate> &candidates);

/// The copies of one group of duplicates, ticked or not.
struct RemovalGroup {
    qint32 id = 0;
    QStringList members; ///< paths

    bool operator==(const RemovalGroup &) const = default;
};

struct RefusedGroup {
    qint32 id = 0;
    QString reason; ///< a sentence for the operator

    bool operator==(const RefusedGroup &) const = default;
};

/// The groups of which no copy would be left if all ticked files were removed. A copy counts as left if it is not
/// ticked, can be read, has content, and does not depend on anything ticked: neither is it a symbolic link by way of a
/// ticked file, nor the very same file under another path. A second hard link is a copy that is left. Groups without a
/// ticked member are not looked at. ticked holds the files to be removed from all groups.
QList<RefusedGroup> groupsWithoutSurvivor(const QList<RemovalGroup> &groups, const QSet<QString> &ticked);

/// The message for a file that was left alone because nothing is removed from its folder.
QString protectedMessage(const QString &path);

/// Whether the folder is one of the roots or inside one, by whatever paths. The folder need not exist yet.
bool isInside(const QString &folder, const QStringList &roots);

/// A group of duplicates with what the operator ticked in it. Numbers are not used twice in one list.
struct TickedGroup {
    qint32 id = 0;
    QList<RemovalCandidate> ticked;
    QList<RemovalCandidate> unticked;

    bool operator==(const TickedGroup &) const = default;
};

struct RemovalPlan {
    QStringList paths; ///< what may be removed, in the order of the groups
    qint32 refused = 0; ///< ticked files that are left alone
    QStringList errors; ///< why: a message for each file that changed or is protected, and for each group that would
                        ///< lose its last copy
    RemovalChecks checks; ///< of each of the paths
    QList<FileProblem> problems = {}; ///< the refusals by files

    bool operator==(const RemovalPlan &) const = default;
};

/// Decides by a look at the disk which ticked files may go. One that changed since the scan stays, and one in a
/// protected folder. All of a group stay if none of its unticked copies is as it was scanned, can be read and stands on
/// its own: a kept copy that changed is no longer known to be the same music.
RemovalPlan planRemoval(const QList<TickedGroup> &groups, const QStringList &protectedFolders = {});

} // namespace epr
