// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <optional>

namespace epr {

/// What the check over the whole length says of a copy, compared with the one to keep.
enum class CheckState {
    Unchecked, ///< not checked, or not with the copy that is kept now
    Alike, ///< to the end
    Differs,
    Failed, ///< one of the two could not be decoded
};

/// The comparison of two members, as first and second; nothing if it was not made.
std::optional<PairCheck> pairCheck(const MatchGroup &group, qint32 first, qint32 second);

/// Of a member beside the copy to keep; of that itself Unchecked.
CheckState checkState(const MatchGroup &group, qint32 member);

/// How much later the second member has what the first has at a time, in milliseconds: from the check over the whole
/// length, else from where fingerprints were found to lie. Nothing if neither tells.
std::optional<qint64> offsetBetween(const MatchGroup &group, qint32 first, qint32 second);

} // namespace epr
