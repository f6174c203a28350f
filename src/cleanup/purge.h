// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"

namespace epr {

/// Deletes for good what a quarantine run has in the quarantine, and the folders of the run that are empty then.
///
/// Only files go that the manifest names, that lie in the folder of this run, not behind a link, and that have the size
/// noted. Whatever else is there stays, and a message says so. Files that stay are named in the manifest still, which
/// goes with the last of them; stopping through the progress function leaves those not yet tried in it.
///
/// Refused, with nothing changed, while another clean-up runs, when the folder of the run is not there or protected,
/// and for a manifest that cannot be read or names files elsewhere.
[[nodiscard]] RemovalResult purgeQuarantine(const QString &manifestPath, const CleanupProgressFn &progress = {},
                                            const QStringList &protectedFolders = {});

} // namespace epr
