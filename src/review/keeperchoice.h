// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <utility>

namespace epr {

class Review;

/// What choosing the copies to keep once more would change.
struct KeeperChoice {
    ScanOptions options; ///< with the policy and the rules
    QList<std::pair<int, qint32>> changes; ///< group and track index of its new copy to keep
    int decided = 0; ///< groups that would change but stay, because something in them was decided by hand
};

/// Nothing is changed yet. A file that is not as it was scanned is not chosen.
KeeperChoice chooseKeepersAgain(const Review &review, const ScanOptions &options);

} // namespace epr
