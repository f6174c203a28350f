// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "columnpeaks.h"

#include "vfdpaint.h"

#include <algorithm>

namespace epr::vfd {

QList<float> columnPeaks(const QList<float> &buckets, int columns, qsizetype leastBuckets)
{
    QList<float> peaks(std::max(columns, 0), 0.0F);
    const qsizetype all = std::max(buckets.size(), leastBuckets);
    for (qsizetype column = 0; column < peaks.size(); ++column) {
        const qsizetype first = column * all / peaks.size();
        const qsizetype end = std::max(first + 1, (column + 1) * all / peaks.size());
        float highest = 0;
        for (qsizetype i = first; i < std::min(end, buckets.size()); ++i)
            highest = std::max(highest, boundedLevel(buckets.at(i)));
        peaks[column] = highest;
    }
    return peaks;
}

} // namespace epr::vfd
