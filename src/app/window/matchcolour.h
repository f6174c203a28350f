// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchtype.h"

#include <QColor>

class QPalette;

namespace epr {

[[nodiscard]] bool isDarkPalette(const QPalette &palette);

/// Text colour of a match type. The tones are dark; on a dark palette their lighter kin is returned, so that the
/// contrast with the background stays well above 4.5:1 either way.
[[nodiscard]] QColor matchColour(MatchType type, const QPalette &palette);
[[nodiscard]] QColor keeperColour(const QPalette &palette);

} // namespace epr
