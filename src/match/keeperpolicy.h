// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

namespace epr {

/// Which copy of a group to keep; the values of ScanOptions::keeperPolicy. Any other value keeps the first member.
enum class KeeperPolicy : qint32 {
    HighestBitrate = 0, ///< then the larger file
    LongestDuration = 1,
    LargestFile = 2,
    PreferredFormat = 3, ///< first in ScanOptions::formatPreference, then the higher bit rate
    ShallowestFolder = 4, ///< fewest separators in the path, then the shorter path
    OldestFile = 5,
    NewestFile = 6,
    MostCompleteTags = 7, ///< then the higher bit rate
    OwnRules = 8, ///< those of ScanOptions::keeperRules
};

/// 0 to 12: 3 each for title and artist, 2 for the album, 1 each for album artist, genre, year and track number.
qint32 tagCompleteness(const TrackInfo &track);

/// The track index of the member to keep, the earliest of equally good ones; -1 if there are no members.
qint32 chooseKeeper(const QList<qint32> &members, const QList<TrackInfo> &tracks, const ScanOptions &options);

/// The same once more for a group that was found, with what a check has measured since. Copies that lack a part of the
/// one kept now are not chosen, nor any that the check speaks against.
qint32 chooseKeeperAgain(const MatchGroup &group, const QList<TrackInfo> &tracks, const ScanOptions &options);

/// What decided for the kept copy and against the next best: "kept: highest bit rate", translated. Empty if the options
/// would keep another one.
QString keepText(const MatchGroup &group, const QList<TrackInfo> &tracks, const ScanOptions &options);

} // namespace epr
