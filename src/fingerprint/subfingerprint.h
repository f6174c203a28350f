// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "bands.h"

#include <QtGlobal>

namespace epr {

/// One word of a fingerprint and the mask of its reliable bits. Bit 0 belongs to the lowest pair of bands.
struct SubFingerprint {
    quint32 word = 0;
    quint32 mask = 0;
};

/// Signs of how the difference of neighbouring bands changed from one frame to the next. Loudness and any fixed
/// equalisation cancel out. A change that is small beside the average one of its frame is left out of the mask.
[[nodiscard]] SubFingerprint subFingerprint(const BandEnergies &previous, const BandEnergies &current);

} // namespace epr
