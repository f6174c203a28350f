// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QtGlobal>

class QPainter;

namespace epr {
struct Envelope;
}

namespace epr::vfd {

/// Draws the envelope over the whole picture that the painter works on, a column of device pixels at a time: the left
/// channel upwards from the middle, the right one downwards. The picture is as wide as the duration, or as the envelope
/// if that is longer. Full level ends at the margin, in device-independent pixels.
void paintWaveform(QPainter &painter, const Envelope &envelope, qint64 durationMs, const QColor &colour, qreal margin);

} // namespace epr::vfd
