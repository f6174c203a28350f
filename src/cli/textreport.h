// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchgroup.h"
#include "trackinfo.h"

class QTextStream;

namespace epr {

/// Writes the groups as readable text, one line per copy, and a summary line at the end.
void writeTextReport(QTextStream &out, const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);

} // namespace epr
