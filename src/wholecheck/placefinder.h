// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "alignment.h"

#include <optional>
#include <span>
#include <vector>

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

    /// Where the recordings have most in common, by stretches from all over the first: a few places, the likeliest
    /// first. What repeats itself goes together in more than one way, and after a jump another one holds than before.
    [[nodiscard]] std::vector<Place> find() const;

    /// The place of one stretch; of several that are as good, the one with the offset nearest to this. Nothing when it
    /// is too short, silent, or nowhere.
    [[nodiscard]] std::optional<Place> find(qsizetype begin, qsizetype end, qsizetype offset) const;

private:
    struct Stretch {
        qsizetype begin = 0;
        qsizetype count = 0;
    };

    std::vector<Place> likeliest(std::span<const Stretch> asked, std::size_t most) const;
    std::vector<float> votes(std::span<const Stretch> asked) const;
    std::optional<Place> bestNear(std::span<const Stretch> asked, qsizetype offset) const;
    double errorRate(const Stretch &stretch, qsizetype offset) const;
    bool isMostlySilent(const Stretch &stretch) const;
    Place placeOf(const Stretch &stretch, qsizetype offset) const;

    WordSequence m_first;
    WordSequence m_second;
};

} // namespace epr
