// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fingerprinter.h"
#include "resampler.h"

namespace epr {

/// The built-in analysis of one signal: mono samples in, two fingerprints out. The alternative one is made on frames
/// that start half a hop earlier, so that a copy that is cut differently is never more than a quarter of a hop off one
/// of the two. Deterministic, and independent of how the samples are cut into chunks.
class Analyser final {
public:
    Analyser();

    [[nodiscard]] const Fingerprinter &main() const { return m_main; }
    [[nodiscard]] const Fingerprinter &alternative() const { return m_alternative; }

    /// Forgets everything and expects samples at inputRate Hz from now on; a rate below 1 counts as analysisRate.
    void reset(int inputRate);

    /// Takes the next count samples; a count of 0 or less is ignored.
    void feed(const float *samples, qsizetype count);

private:
    void feedBlock(std::span<const float> block);

    Resampler m_resampler;
    Fingerprinter m_main;
    Fingerprinter m_alternative;
    std::vector<float> m_resampled;
    bool m_alternativePrimed = false;
};

} // namespace epr
