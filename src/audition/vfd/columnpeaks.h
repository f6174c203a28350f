// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

namespace epr::vfd {

/// As many values as there are columns: each the highest of the buckets that fall on its column, so that the shortest
/// peak stays visible at any width. Where there are more columns than buckets a bucket takes several. Values are
/// bounded to 0..1. The columns are for this many buckets at the least; what lies beyond the given ones is 0.
[[nodiscard]] QList<float> columnPeaks(const QList<float> &buckets, int columns, qsizetype leastBuckets = 0);

} // namespace epr::vfd
