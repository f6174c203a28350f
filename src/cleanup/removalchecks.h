// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace epr {

/// Checks to make before files are handed to removeFiles(). They look at the disk as it is now and change nothing.

/// A file that the operator wants removed, as the scan saw it.
struct RemovalCandidate {
    QString path;
    qint64 size = 0; ///< bytes
    QDateTime mtime;

    bool operator==(const RemovalCandidate &) const = default;
};

/// Whether another file stands at the path than the one that was scanned, by size and modification time in whole
/// seconds: the cache keeps no more. A file that is gone has not changed.
[[nodiscard]] bool changedSinceScan(const RemovalCandidate &candidate);

/// The message for a file that was left alone because it changed.
[[nodiscard]] QString changedMessage(const QString &path);

struct CheckedCandidates {
    QStringList paths; ///< to be removed
    QStringList errors; ///< one message for each file that changed

    bool operator==(const CheckedCandidates &) const = default;
};

/// Takes out the files that changed since the scan.
[[nodiscard]] CheckedCandidates checkCandidates(const QList<RemovalCandidate> &candidates);

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
[[nodiscard]] QList<RefusedGroup> groupsWithoutSurvivor(const QList<RemovalGroup> &groups, const QSet<QString> &ticked);

/// Whether the folder is one of the roots or inside one, links resolved, by the letter case rules of the platform. The
/// folder need not exist yet.
[[nodiscard]] bool isInside(const QString &folder, const QStringList &roots);

} // namespace epr
