// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "columnpeaks.h"

#include "vfdpaint.h"

#include <algorithm>

namespace epr::vfd {

QList<float> columnPeaks(const QList<float> &buckets, int columns)
{
    QList<float> peaks(std::max(columns, 0), 0.0F);
    if (buckets.isEmpty())
        return peaks;
    for (qsizetype column = 0; column < peaks.size(); ++column) {
        const qsizetype first = column * buckets.size() / peaks.size();
        const qsizetype end = std::max(first + 1, (column + 1) * buckets.size() / peaks.size());
        float highest = 0;
        for (qsizetype i = first; i < end; ++i)
            highest = std::max(highest, boundedLevel(buckets.at(i)));
        peaks[column] = highest;
    }
    return peaks;
}

} // namespace epr::vfd
