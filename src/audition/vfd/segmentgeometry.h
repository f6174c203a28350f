// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPolygonF>
#include <QRectF>
#include <QString>

namespace epr::vfd {

/// In the order of the usual letters, a to g.
enum class Segment { Top, UpperRight, LowerRight, Bottom, LowerLeft, UpperLeft, Middle };

inline constexpr int segmentCount = 7;

/// One character and the box that it is drawn in. Digits lean to the right and may stick out of their box by a little.
struct DigitCell {
    QChar character;
    QRectF box;
};

[[nodiscard]] bool isSegmentLit(QChar character, Segment segment);

/// The boxes of a text, as large as the area allows: from its left edge on, half-way up.
[[nodiscard]] QList<DigitCell> digitCells(const QString &text, const QRectF &area);

/// Width of a text whose digits are one unit high.
[[nodiscard]] qreal relativeWidth(const QString &text);

[[nodiscard]] QPolygonF segmentPolygon(Segment segment, const QRectF &box);

/// The squares around the dots of a colon or full stop, from the top; empty for what is made of segments.
[[nodiscard]] QList<QRectF> dotBoxes(QChar character, const QRectF &box);

} // namespace epr::vfd
