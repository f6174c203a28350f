// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanupprogressfn.h"

#include <QStringList>

namespace epr {

enum class RemovalMode : qint32 {
    Quarantine = 0,
    RecycleBin = 1,
    Delete = 2,
};

/// Translated; empty for a value that is none of the three.
[[nodiscard]] QString removalModeLabel(RemovalMode mode);

struct RemovalResult {
    qint32 succeeded = 0;
    qint32 failed = 0;
    qint64 bytesFreed = 0; ///< sizes of the files that succeeded; a symbolic link counts nothing
    QStringList errors; ///< one message for each failure, in order, then what concerns the whole run
    QString manifestPath; ///< empty if there is nothing to undo

    bool operator==(const RemovalResult &) const = default;
};

/// Removes the files one after the other; a file that cannot be removed stays and is counted, and the run goes on. A
/// path that is a symbolic link loses the link and never its target. Only files are removed, no folders.
///
/// A quarantine run moves each file into a folder of its own for the run, under the name of the scan root that holds it
/// and its path below that root. It can be undone up to the last file moved, however it ends: if there is no place to
/// note down what was moved, nothing is moved. Stopping it through the progress function ends it in the normal way.
[[nodiscard]] RemovalResult removeFiles(const QStringList &paths, RemovalMode mode, const QString &quarantineRoot,
                                        const QStringList &scanRoots, const CleanupProgressFn &progress = {});

} // namespace epr
