// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "removalplan.h"

namespace epr {

class Review;

/// The groups in which something is ticked, each file as the scan saw it.
QList<TickedGroup> tickedGroups(const Review &review);

/// The ticked files, group after group.
QStringList tickedPaths(const QList<TickedGroup> &groups);

} // namespace epr
