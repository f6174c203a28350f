// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

namespace epr {

/// What a scan in the terminal came to.
struct ConsoleScanResult {
    QList<TrackInfo> tracks;
    QList<MatchGroup> groups;
    bool cancelled = false;
    QString failure; ///< why the scan could not run; empty when it did
};

/// Runs one scan on the calling thread. Progress is shown on standard error when that is a terminal, log lines there
/// when `verbose`. Ctrl-C cancels it.
ConsoleScanResult runConsoleScan(const ScanOptions &options, bool verbose);

} // namespace epr
