// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchgroup.h"
#include "trackinfo.h"

#include <QDateTime>
#include <QStringList>

#include <vector>

namespace epr {

/// What a report tells about, by reference: the lists of a scan are large.
struct ReportData {
    const QList<TrackInfo> &tracks;
    const QList<MatchGroup> &groups;
    const QStringList &roots;
    QDateTime generated;
};

/// One copy as a report lists it.
struct ReportMember {
    const TrackInfo &track;
    bool keep;
};

/// In the group's order, without members that refer to no track.
[[nodiscard]] std::vector<ReportMember> membersOf(const MatchGroup &group, const QList<TrackInfo> &tracks);

/// Copies that could go if one of each group stays.
[[nodiscard]] qint64 redundantFiles(const QList<MatchGroup> &groups);

/// Bytes that they take.
[[nodiscard]] qint64 reclaimableBytes(const QList<MatchGroup> &groups);

} // namespace epr
