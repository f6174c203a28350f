// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matchcolour.h"

#include "tones.h"

namespace epr {

namespace {

constexpr QRgb keepGreen = qRgb(20, 108, 46);

} // namespace

QColor matchColour(MatchType type, const QPalette &palette)
{
    switch (type) {
    case MatchType::IdenticalFile:
        return readableTone(keepGreen, palette);
    case MatchType::SameAudio:
        return readableTone(qRgb(28, 90, 138), palette);
    case MatchType::SameRecording:
        return readableTone(qRgb(179, 90, 15), palette);
    default:
        return readableTone(qRgb(161, 26, 26), palette);
    }
}

QColor keeperColour(const QPalette &palette)
{
    return readableTone(keepGreen, palette);
}

} // namespace epr
