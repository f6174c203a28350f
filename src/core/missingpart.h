// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "groupcheck.h"
#include "records.h"

namespace epr {

/// What a copy lacks of the one to keep, where that is enough to matter: over a second of sound at the start, over 5 %
/// of the length at the end.
struct MissingPart {
    qint64 atStartMs = 0;
    qint64 atEndMs = 0;
    bool isUncertain = false; ///< the lengths differ as much, but one of them is a guess

    bool isKnown() const { return atStartMs > 0 || atEndMs > 0; }
    bool isAny() const { return isKnown() || isUncertain; }
};

/// Nothing of the copy to keep itself, and where nothing is known.
MissingPart missingPart(const MatchGroup &group, qint32 member);

/// "starts 5.0 s later, ends 1:12 earlier" or "length uncertain", translated; empty if nothing is missing.
QString missingText(const MatchGroup &group, qint32 member);

/// "may be an edit of NAME", translated; of most members nothing.
QString editText(const MatchGroup &group, qint32 member, const QList<TrackInfo> &tracks);

/// The label of the group's match type; of the same recording in other lengths one of its own.
QString groupLabel(const MatchGroup &group);

/// The same for its explanation.
QString groupExplanation(const MatchGroup &group);

/// Whether the copy is one to remove as far as the program can tell: not the one to keep, it lacks nothing of that, and
/// no check speaks against it.
inline bool isProposed(const MatchGroup &group, qint32 member)
{
    return member != group.keep && !missingPart(group, member).isAny() && !isDoubted(group, member);
}

} // namespace epr
