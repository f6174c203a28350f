// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "matchtype.h"

#include <QColor>

class QPalette;

namespace epr {

/// Text colour of a match type, in its lighter kin on a dark palette.
[[nodiscard]] QColor matchColour(MatchType type, const QPalette &palette);
[[nodiscard]] QColor keeperColour(const QPalette &palette);

} // namespace epr
