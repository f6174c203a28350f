// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QFont>

class QPainter;
class QPainterPath;
class QRectF;

namespace epr::vfd {

/// The lettering of the panel: the system's fixed font, bold, slightly spaced out.
[[nodiscard]] QFont letteringFont(int pointSize);

[[nodiscard]] QColor withAlpha(QColor colour, int alpha);

/// Between 0 and 1 whatever comes in; no number is 0.
[[nodiscard]] float boundedLevel(float level);

/// The halo around something that shines, without the thing itself: it reaches as far as the radius.
void paintGlow(QPainter &painter, const QPainterPath &shape, const QColor &colour, qreal radius);

/// Text with a faint halo, its alignment in screen terms.
void paintGlowingText(QPainter &painter, const QRectF &box, Qt::Alignment alignment, const QString &text,
                      const QColor &colour);

/// A pane of dark glass with a fine edge, as wide as the box.
void paintGlass(QPainter &painter, const QRectF &box);

/// The ring that says where the keyboard is, just inside the box.
void paintFocusRing(QPainter &painter, const QRectF &box);

} // namespace epr::vfd
