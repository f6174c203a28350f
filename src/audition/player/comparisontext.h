// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trackinfo.h"

/// The texts that the two decks show.
namespace epr::comparisontext {

/// "A" or "B".
[[nodiscard]] QString deckName(int deck);

/// In capitals: the title, or the file name; for an empty path that there is no file.
[[nodiscard]] QString title(const TrackInfo &track);

/// "4.21 MB, 320 kbps, 44.1 kHz, stereo"; nothing for an empty path.
[[nodiscard]] QString format(const TrackInfo &track);

/// "/ 0:03:07".
[[nodiscard]] QString duration(qint64 durationMs);

/// How much longer B is than A: "+1.25 s", with a true minus sign otherwise. A dash when one of them has no path.
[[nodiscard]] QString durationDelta(const TrackInfo &a, const TrackInfo &b);

/// How much more bit rate B has than A, in kbit/s: "+64 k", likewise.
[[nodiscard]] QString bitrateDelta(const TrackInfo &a, const TrackInfo &b);

} // namespace epr::comparisontext
