// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reviewrecord.h"

#include <QByteArray>

#include <optional>

namespace epr {

/// To be raised when the records below, or what they mean, change.
inline constexpr int reviewLayout = 1;

/// What a row of a stored review is about. The stored numbers.
enum class ReviewPart : qint32 { Head = 0, Tracks = 1, Groups = 2, Decision = 3, Place = 4 };

/// Where a row belongs: its part and its number, which is that of the group for a decision, and counts the rows of
/// other parts from 0. With these its content makes the checksum that the blob begins with, so that a row that was
/// damaged or is in another's place is none.
struct ReviewKey {
    ReviewPart part = ReviewPart::Head;
    qint32 number = 0;
};

/// The facts of a review that belong to none of its groups.
struct ReviewHead {
    ScanOptions options;
    QDateTime scanned;
    qint32 unreadableFolders = 0;
    qint64 files = 0;
    qint32 trackCount = 0; ///< length of the list
    qint32 storedTracks = 0; ///< of these, those that a group refers to
    qint32 groupCount = 0;
};

/// Tracks with their places in the list.
struct StoredTracks {
    QList<qint32> indexes;
    QList<TrackInfo> tracks; ///< without fingerprints
};

struct StoredGroups {
    QList<MatchGroup> groups; ///< without checks
};

/// What was decided of a group and what a check found of it: all that changes while the operator is at it.
struct StoredDecision {
    qint32 group = 0; ///< its number
    GroupDecision decision;
    GroupCheck check;
};

struct ReviewPlaceRecord {
    qint32 group = 0; ///< as in ReviewRecord
    qint32 track = -1;

    bool operator==(const ReviewPlaceRecord &) const = default;
};

/// Of one of the records above.
template <typename Record> QByteArray toBlob(ReviewKey key, const Record &record);

/// Nothing unless the blob is whole, of this layout, and that of the key.
template <typename Record> std::optional<Record> fromBlob(ReviewKey key, const QByteArray &blob);

} // namespace epr
