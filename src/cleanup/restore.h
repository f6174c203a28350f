// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanupprogressfn.h"

#include <QStringList>

namespace epr {

struct RestoreResult {
    qint32 succeeded = 0;
    qint32 failed = 0;
    QStringList errors; ///< one message for each failure, in order

    bool operator==(const RestoreResult &) const = default;
};

/// Whether there is at least one of the files that an undo would move back. If not, their drive may be unplugged, and
/// restoreManifest() would use the manifest up for nothing. True for a manifest that names no files or cannot be read.
[[nodiscard]] bool hasQuarantinedCopies(const QString &path);

/// Moves the files of a quarantine run back. Nothing is ever replaced, and nothing is touched but the files that the
/// manifest names by clean absolute paths.
///
/// A manifest serves once: it is deleted afterwards, also when files failed, which then are named in the errors. One
/// that cannot be read is kept; that is the single error, with both counts 0. Stopping through the progress function
/// leaves a manifest of the files not yet tried.
[[nodiscard]] RestoreResult restoreManifest(const QString &path, const CleanupProgressFn &progress = {});

} // namespace epr
