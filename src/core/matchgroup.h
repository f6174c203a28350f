// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchtype.h"

#include <QList>
#include <QMetaType>

namespace epr {

/// One set of duplicates. Members are indexes into the scan's track list, so the two lists travel together.
struct MatchGroup {
    qint32 id = 0; ///< 1-based, in presentation order
    MatchType matchType = MatchType::Unmatched;
    QList<qint32> members;
    qint32 keep = -1; ///< track index (not a position in members) of the copy to keep
    double confidence = 0; ///< 0 to 1
    qint64 reclaimableBytes = 0; ///< freed by removing every member but keep

    bool operator==(const MatchGroup &) const = default;
};

} // namespace epr

Q_DECLARE_METATYPE(epr::MatchGroup)
