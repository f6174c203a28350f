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

/// The same comparison with first and second exchanged.
PairCheck mirrored(PairCheck pair);

/// The comparison of two members, as first and second; nothing if it was not made.
std::optional<PairCheck> pairCheck(const MatchGroup &group, qint32 first, qint32 second);

/// Of a member beside the copy to keep; of that itself Unchecked.
CheckState checkState(const MatchGroup &group, qint32 member);

/// Whether every copy was compared with the one that is kept now, or at least tried.
bool isChecked(const MatchGroup &group);

/// Whether the check would tell more than the scan did: copies of equal bytes or audio are alike to the end.
bool isWorthChecking(const MatchGroup &group);

/// Why another copy would be the better one to keep, the gravest reason first.
enum class Advantage {
    None,
    CanBeDecoded, ///< the kept copy cannot
    NoErrors, ///< the kept copy has some
    Complete, ///< sound that the kept copy lacks, or has twice
    Treble, ///< the spectrum of the kept copy ends lower
};

/// Of a copy over the one to keep. None where the copy has a fault of its own or nobody can tell whose it is.
Advantage advantage(const MatchGroup &group, qint32 member);

/// The copy with the gravest advantage, -1 if none has one.
qint32 betterCopy(const MatchGroup &group);

/// Whether the check speaks against removing a copy: it differs from the one to keep, or that is the worse one.
bool isDoubted(const MatchGroup &group, qint32 member);

/// Whether the spectrum of one reaches clearly so far beyond the end of the other's that it counts, by a seventh: from
/// 20 to 22 kHz nobody hears anything, and some encoders put noise there.
bool hasMoreTreble(const SoundMeasures &one, const SoundMeasures &other);

/// How much later the second member has what the first has at a time, in milliseconds: from the check over the whole
/// length, else from where fingerprints were found to lie. Nothing if neither tells.
std::optional<qint64> offsetBetween(const MatchGroup &group, qint32 first, qint32 second);

} // namespace epr
