// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bands.h"

#include "spectrum.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>

namespace epr {

namespace {

constexpr double lowestHz = 300.0;
constexpr double logStep = 0.05748848439048125; // ln(2000 / 300) / bandCount
constexpr double silence = 1e-12; // keeps the logarithm finite

std::array<int, bandCount + 1> computeEdges()
{
    std::array<int, bandCount + 1> edges {};
    int previous = 0;
    for (int k = 0; k <= bandCount; ++k) {
        const double bin = std::exp(k * logStep) * lowestHz * frameLength / analysisRate;
        const int edge = std::clamp(static_cast<int>(std::lround(bin)), 1, frameLength / 2 - 1);
        edges[k] = previous = std::max(edge, previous + 1);
    }
    Q_ASSERT(edges.back() <= spectrumBins);
    return edges;
}

} // namespace

const std::array<int, bandCount + 1> &bandEdges()
{
    static const std::array<int, bandCount + 1> edges = computeEdges();
    return edges;
}

BandEnergies bandEnergies(const Spectrum &spectrum)
{
    const auto &edges = bandEdges();
    BandEnergies energies;
    for (int k = 0; k < bandCount; ++k) {
        double power = 0.0;
        for (int bin = edges[k]; bin < edges[k + 1]; ++bin)
            power += spectrum.power(bin);
        energies[k] = std::log(power + silence);
    }
    return energies;
}

} // namespace epr
