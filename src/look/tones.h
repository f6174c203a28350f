// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

class QPalette;

namespace epr {

/// Whether its lists show light text on a dark ground.
[[nodiscard]] bool isDarkPalette(const QPalette &palette);

/// A dark colour of the program's own for text on the palette's light ground, or its lighter kin for a dark one, so
/// that the contrast stays above the 4.5:1 that WCAG 2 asks of text either way.
[[nodiscard]] QColor readableTone(QRgb dark, const QPalette &palette);

/// One colour laid over another with an opacity from 0 to 1.
[[nodiscard]] QColor mixed(const QColor &over, const QColor &under, float opacity);

} // namespace epr
