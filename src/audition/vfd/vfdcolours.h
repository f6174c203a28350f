// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

/// Every colour of the front panel: the blue-green of a vacuum-fluorescent tube on smoked glass, with the warm colours
/// kept for what wants attention.
namespace epr::vfd::colour {

inline constexpr QColor lit(96, 255, 224);
inline constexpr QColor litSoft(120, 204, 187); ///< captions and texts of second rank; legible on a dimmed deck too
inline constexpr QColor unlit(17, 51, 46);

inline constexpr QColor panelTop(27, 35, 36);
inline constexpr QColor panelBottom(13, 18, 19);
inline constexpr QColor panelEdge(58, 72, 72);
inline constexpr QColor glassTop(3, 9, 9);
inline constexpr QColor glassBottom(6, 17, 16);
inline constexpr QColor glassEdge(30, 46, 45);

inline constexpr QColor buttonTop(42, 51, 52);
inline constexpr QColor buttonBottom(24, 30, 31);

inline constexpr QColor waveUnplayed(42, 122, 108);
inline constexpr QColor cursor(236, 255, 250);
inline constexpr QColor focus(255, 196, 92);

inline constexpr QColor meterLow(72, 240, 160);
inline constexpr QColor meterMiddle(255, 190, 64);
inline constexpr QColor meterHigh(255, 78, 60);

} // namespace epr::vfd::colour
