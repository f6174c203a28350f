// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "alignment.h"

#include <optional>

namespace epr {

/// Finds out where in a second recording a stretch of the first one is. Frames are those of BandLevels.
class PlaceFinder final {
public:
    PlaceFinder(const Fingerprint &first, const Fingerprint &second);

    struct Place {
        qsizetype begin = 0; ///< of the stretch, as a frame of the first
        qsizetype end = 0;
        qsizetype offset = 0; ///< frames that the second has it later, give or take two
        double bitErrorRate = 1;
    };

    /// Where the recordings have most in common, by stretches from all over the first; the best of those that agree.
    [[nodiscard]] std::optional<Place> find() const;

    /// The place of one stretch. Nothing when it is too short, silent, or nowhere.
    [[nodiscard]] std::optional<Place> find(qsizetype begin, qsizetype end) const;

private:
    struct Stretch {
        qsizetype begin = 0;
        qsizetype count = 0;
    };

    double errorRate(const Stretch &stretch, qsizetype offset) const;
    bool isMostlySilent(const Stretch &stretch) const;
    Place placeOf(const Stretch &stretch, qsizetype offset) const;

    WordSequence m_first;
    WordSequence m_second;
};

} // namespace epr
