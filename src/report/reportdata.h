// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchgroup.h"
#include "trackinfo.h"

#include <QDateTime>
#include <QStringList>

namespace epr {

/// What a report tells about, by reference: the lists of a scan are large.
struct ReportData {
    const QList<TrackInfo> &tracks;
    const QList<MatchGroup> &groups;
    const QStringList &roots;
    QDateTime generated;
};

/// Copies that could go if one of each group stays.
[[nodiscard]] qint64 redundantFiles(const QList<MatchGroup> &groups);

/// Bytes that they take.
[[nodiscard]] qint64 reclaimableBytes(const QList<MatchGroup> &groups);

} // namespace epr
