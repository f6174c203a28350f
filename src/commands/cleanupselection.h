// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchgroup.h"
#include "removalplan.h"
#include "trackinfo.h"

#include <QSet>

namespace epr {

class ResultsModel;

/// The groups in which something is ticked, each file as the scan saw it.
[[nodiscard]] QList<TickedGroup> tickedGroups(const ResultsModel &results);

/// Position of the first group without an unticked member, or -1.
[[nodiscard]] int firstWhollyTickedGroup(const ResultsModel &results);

/// The ticked files, group after group.
[[nodiscard]] QStringList tickedPaths(const QList<TickedGroup> &groups);

/// Tracks of the groups that have no file at their path any more. Looks at every member on the disk.
[[nodiscard]] QSet<qint32> vanishedMembers(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);

} // namespace epr
