// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

#include <vector>

namespace epr {

class Checkpoint;

/// Which tracks share a key of their fingerprints: for each key that two or more tracks have, but no more than
/// maxPostingLength, the ascending indexes of these tracks. All lists lie in one array, one behind the other, with
/// endFlag added to the last entry of each.
struct PostingLists {
    static constexpr quint32 endFlag = 1U << 31;

    std::vector<quint32> entries;
};

/// The most tracks that may share a key, by the number of all tracks; a key more common than that says nothing.
[[nodiscard]] qsizetype maxPostingLength(qsizetype trackCount);

/// Keys are the halves of up to about 400 words per track. Built-in words are too noisy to agree in all bits.
[[nodiscard]] PostingLists halfWordPostings(const QList<TrackInfo> &tracks, const Checkpoint &checkpoint);

/// Keys are all the words of a track.
[[nodiscard]] PostingLists wordPostings(const QList<TrackInfo> &tracks, const Checkpoint &checkpoint);

} // namespace epr
