// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tones.h"

#include <QPalette>

namespace epr {

bool isDarkPalette(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

// Same hue, lightness raised to where even the blue and the red read well on black.
QColor readableTone(QRgb dark, const QPalette &palette)
{
    const QColor colour(dark);
    if (!isDarkPalette(palette))
        return colour;
    constexpr float lightness = 0.72F;
    return QColor::fromHslF(colour.hslHueF(), colour.hslSaturationF(), lightness);
}

QColor mixed(const QColor &over, const QColor &under, float opacity)
{
    const auto channel = [opacity](float above, float below) { return opacity * above + (1 - opacity) * below; };
    return QColor::fromRgbF(channel(over.redF(), under.redF()), channel(over.greenF(), under.greenF()),
                            channel(over.blueF(), under.blueF()));
}

} // namespace epr
