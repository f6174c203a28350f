// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace epr {

class Review;

/// Why the operator had better look at a group again, the gravest reason first.
enum class GroupProblem {
    None,
    WhollyTicked, ///< no copy would survive
    KeptVanished,
    KeptChanged, ///< since the scan
    KeptIsWorse, ///< by the check over the whole length, in a group that is not done
};

GroupProblem groupProblem(const Review &review, int group);

QString groupProblemText(GroupProblem problem); ///< in a few words; empty for none

} // namespace epr
