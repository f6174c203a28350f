// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matchcolour.h"

#include <QPalette>

namespace epr {

namespace {

constexpr QRgb keepGreen = qRgb(20, 108, 46);

// Same hue, lightness raised to where even the blue and the red read well on black.
QColor toned(QRgb rgb, const QPalette &palette)
{
    const QColor colour(rgb);
    if (!isDarkPalette(palette))
        return colour;
    constexpr float lightness = 0.72F;
    return QColor::fromHslF(colour.hslHueF(), colour.hslSaturationF(), lightness);
}

} // namespace

bool isDarkPalette(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

QColor matchColour(MatchType type, const QPalette &palette)
{
    switch (type) {
    case MatchType::IdenticalFile:
        return toned(keepGreen, palette);
    case MatchType::SameAudio:
        return toned(qRgb(28, 90, 138), palette);
    case MatchType::SameRecording:
        return toned(qRgb(179, 90, 15), palette);
    default:
        return toned(qRgb(161, 26, 26), palette);
    }
}

QColor keeperColour(const QPalette &palette)
{
    return toned(keepGreen, palette);
}

} // namespace epr
