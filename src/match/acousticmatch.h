// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "progress.h"
#include "records.h"

#include <atomic>

namespace epr {

struct ScanOptions;
class MatchUnion;

/// Links the tracks whose fingerprints are those of the same recording. Pairs are compared in ascending order, only if
/// they share some keys of their fingerprints and are not in one set yet. A cancelFlag other than zero ends the pass
/// within 1024 pairs; the links made by then stay.
void matchAcoustic(const QList<TrackInfo> &tracks, const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                   const ProgressFn &progress, MatchUnion &unions);

} // namespace epr
