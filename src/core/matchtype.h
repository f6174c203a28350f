// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

/// How the copies of a group were found to be duplicates. The number is also the order of certainty.
enum class MatchType : qint32 {
    IdenticalFile = 0,
    SameAudio = 1,
    SameRecording = 2,
    SameSong = 3,
    Unmatched = 4,
};

/// Short translated name; any value that is not one of the first four is "Unmatched".
[[nodiscard]] QString matchTypeLabel(MatchType type);

/// One translated sentence on what the match means and what is safe to do; empty for unmatched.
[[nodiscard]] QString matchTypeExplanation(MatchType type);

} // namespace epr
