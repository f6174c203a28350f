// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QPalette;

namespace epr {

/// Gives the application its style, its colours and the style sheet ":/style/app.qss"; without the latter it goes on
/// with the default look. The colours follow when the system turns from light to dark or back.
void applyLook();

/// The palette that the application wears on a system of this palette: the program's own tones where it is light; where
/// it is dark only a selection, links and muted texts that a dark ground carries.
[[nodiscard]] QPalette dressed(const QPalette &system);

} // namespace epr
