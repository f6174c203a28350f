// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <atomic>

namespace epr {

/// A record with what the file system says about the path: name, suffix, size and modification time. A path that
/// cannot be measured has size 0 and no modification time.
TrackInfo measureFile(const QString &path);

/// Reads tags, stream properties and the digests that the options ask for into a measured record; digests and
/// fingerprints that the record brings along stay. On failure the record's error says why; analysed is set only when
/// everything succeeded and the file stayed as it was measured. When *stop becomes non-zero, a long file is given up
/// and its record comes back as it was. Re-entrant: many threads analyse different files at once.
TrackInfo analyseFile(TrackInfo track, const ScanOptions &options, const std::atomic<qint32> *stop = nullptr);

/// Whether the record holds every digest that the options ask for.
bool hasWantedDigests(const TrackInfo &track, const ScanOptions &options);

} // namespace epr
