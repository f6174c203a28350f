// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QList>
#include <QtGlobal>

class QPainter;

namespace epr {
struct Envelope;
}

namespace epr::vfd {

/// As many values as there are columns: each the highest of the buckets that fall on its column, so that the shortest
/// peak stays visible at any width. Where there are more columns than buckets a bucket takes several. Values are
/// bounded to 0..1. The columns are for this many buckets at the least; what lies beyond the given ones is 0.
QList<float> columnPeaks(const QList<float> &buckets, int columns, qsizetype leastBuckets = 0);

/// Draws the envelope over the whole picture that the painter works on, a column of device pixels at a time: the left
/// channel upwards from the middle, the right one downwards. The picture is as wide as the duration, or as the envelope
/// if that is longer. Full level ends at the margin, in device-independent pixels.
void paintWaveform(QPainter &painter, const Envelope &envelope, qint64 durationMs, const QColor &colour, qreal margin);

} // namespace epr::vfd
