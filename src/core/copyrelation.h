// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <optional>

namespace epr {

/// How a copy belongs to the one of its group that is kept now.
struct CopyRelation {
    MatchType type = MatchType::Unmatched; ///< Unmatched: nothing is known, as of the kept copy itself
    qint32 through =
        -1; ///< track index of the copy it was found by, where nothing is known of it and the kept one alone
    double errorRate = 0; ///< of SameRecording without a copy between
    std::optional<qint64> longerMs = {}; ///< of SameSong without a copy between: than the kept copy; unless a guess

    bool operator==(const CopyRelation &) const = default;
};

/// By what the files are now known to hold, else by the links between the two, of which the least certain decides.
/// Looks at all links of the group unless the digests tell.
CopyRelation relationToKept(const MatchGroup &group, qint32 member, const QList<TrackInfo> &tracks);

/// The same for all members at once, which for large groups is much less work.
QHash<qint32, CopyRelation> relationsToKept(const MatchGroup &group, const QList<TrackInfo> &tracks);

/// How much of two recordings is alike, in whole percent, rounded down so that only what is equal is 100.
int percentAlike(double errorRate);

/// "identical to the kept copy", "same recording, 97 % alike", translated; empty where nothing is known.
QString relationText(const CopyRelation &relation, const QList<TrackInfo> &tracks);

} // namespace epr
