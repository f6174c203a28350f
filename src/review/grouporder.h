// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace epr {

class Review;

/// What groups are sorted by: of their kept copy, unless it is something of the group.
enum class GroupKey {
    Scan, ///< the order in which a scan presents them
    Reclaimable,
    Copies, ///< how many
    Match,
    File,
    Artist,
    Title,
    Duration,
    Quality, ///< bit rate, then sample rate
    Modified,
    Format,
    Loudness,
    TruePeak,
    Bandwidth,
    Check, ///< what is said of the group
    Kept, ///< why it is
    Folder,
};

struct GroupOrder {
    GroupKey key = GroupKey::Scan;
    bool descending = false;

    bool operator==(const GroupOrder &) const = default;
};

/// The positions of all groups, in this order; equal ones stay as the scan has them. Texts compare as the language of
/// the system has it, numbers in them by value.
std::vector<int> sortedGroups(const Review &review, const GroupOrder &order);

} // namespace epr
