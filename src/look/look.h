// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>

class QPainter;
class QPalette;
class QRectF;
class QStyle;
class QWidget;

namespace epr {

/// Gives the application its style, its colours and the style sheet ":/style/app.qss"; without the latter it goes on
/// with the default look. The colours follow when the system turns from light to dark or back.
void applyLook();

/// The application's palette on a system of this palette: the program's own colours where it is light; where it is dark
/// only a selection, links and muted texts that can be read on a dark ground.
[[nodiscard]] QPalette programPalette(const QPalette &system);

/// The style "Fusion" with outlines that can be seen, for the caller to own. Fusion's own are darker than the window,
/// so that on a dark one an empty check box is a black spot on black, and the tick is what decides over a file here.
[[nodiscard]] QStyle *createOutlineStyle();

/// Whether its lists show light text on a dark ground.
bool isDarkPalette(const QPalette &palette);

/// A dark colour of the program's own as text on the palette's ground: as it is on a light one, a light tone of the
/// same hue on a dark one. The contrast stays above the 4.5:1 that WCAG 2 asks of text either way.
QColor readableTone(QRgb dark, const QPalette &palette);

/// A padlock, the sign of what is protected.
void paintLock(QPainter &painter, const QRectF &square, const QColor &colour);

/// A triangle with an exclamation mark, the sign of what had better be looked at.
void paintWarning(QPainter &painter, const QRectF &square, const QColor &colour);

/// One of these signs in the widget's text height.
QIcon signIcon(void (*paint)(QPainter &painter, const QRectF &square, const QColor &colour), const QWidget &widget,
               const QColor &colour);

/// What words of warning are written in.
QColor warningColour(const QPalette &palette);

} // namespace epr
