// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveformpaint.h"

#include "envelope.h"
#include "vfdpaint.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace epr::vfd {

namespace {

// Brightest at the tips: there the shape is read.
QLinearGradient shading(const QColor &colour, int height)
{
    QLinearGradient gradient(0, 0, 0, height);
    const QColor core = withAlpha(colour, colour.alpha() * 55 / 100);
    gradient.setColorAt(0, colour);
    gradient.setColorAt(0.5, core);
    gradient.setColorAt(1, colour);
    return gradient;
}

} // namespace

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

void paintWaveform(QPainter &painter, const Envelope &envelope, qint64 durationMs, const QColor &colour, qreal margin)
{
    const QPaintDevice *device = painter.device();
    const qreal ratio = device->devicePixelRatio();
    const int height = device->height();
    const int middle = height / 2;
    const qreal fullLevel = std::max(middle - margin * ratio, 1.0);
    const qint64 buckets = durationMs / Envelope::bucketMs;
    const QList<float> left = columnPeaks(envelope.left, device->width(), buckets);
    const QList<float> right = columnPeaks(envelope.right, device->width(), buckets);
    const auto tip = [fullLevel](float level) { return static_cast<int>(std::lround(level * fullLevel)); };

    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    for (int x = 0; x < device->width(); ++x) {
        const int up = tip(left[x]);
        painter.fillRect(x, middle - up, 1, up + 1 + tip(right[x]), Qt::black); // silence leaves a line
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn); // one gradient for all columns
    painter.fillRect(0, 0, device->width(), height, shading(colour, height));
    painter.restore();
}

} // namespace epr::vfd
