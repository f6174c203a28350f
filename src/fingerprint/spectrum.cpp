// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectrum.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace epr {

using std::numbers::pi;

static_assert(spectrumBins <= frameLength / 4, "the last two stages compute the low bins only");

/// Twiddles of the stage that joins groups of h values lie at h to 2h - 1, so that every stage reads them in order.
struct SpectrumTables {
    SpectrumTables();

    std::vector<double> window;
    std::vector<int> bitReversed;
    std::vector<double> cosines;
    std::vector<double> sines;

private:
    void fillWindow();
    void fillBitReversed();
    void fillTwiddles(int half);
};

SpectrumTables::SpectrumTables()
    : window(frameLength)
    , bitReversed(frameLength)
    , cosines(frameLength)
    , sines(frameLength)
{
    fillWindow();
    fillBitReversed();
    for (int half = 1; half < frameLength; half *= 2)
        fillTwiddles(half);
}

void SpectrumTables::fillWindow()
{
    for (int i = 0; i < frameLength; ++i)
        window[i] = 0.5 * (1.0 - std::cos(2.0 * pi * i / (frameLength - 1)));
}

void SpectrumTables::fillBitReversed()
{
    for (int i = 1; i < frameLength; ++i)
        bitReversed[i] = (bitReversed[i / 2] + (i % 2) * frameLength) / 2;
}

// The second quarter of the circle mirrors the first, and -i is exact instead of nearly so.
void SpectrumTables::fillTwiddles(int half)
{
    for (int k = 0; k < half; ++k) {
        const bool mirrored = 2 * k > half;
        const double angle = pi * (mirrored ? half - k : k) / half;
        const double cosine = 2 * k == half ? 0.0 : std::cos(angle);
        cosines[half + k] = mirrored ? -cosine : cosine;
        sines[half + k] = -std::sin(angle);
    }
}

namespace {

const SpectrumTables &sharedTables()
{
    static const SpectrumTables tables;
    return tables;
}

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

Spectrum::Spectrum()
    : m_tables(sharedTables())
    , m_re(frameLength)
    , m_im(frameLength)
{
}

// Radix 2, decimation in time. Only what the low bins depend on is computed in the last two stages.
void Spectrum::transform(const float *frame)
{
    load(frame);
    transformGroupsOfFour();
    int half = 4;
    for (; half < frameLength / 4; half *= 2)
        combine(half);
    for (; half < frameLength; half *= 2)
        combineLowBins(half);
}

double Spectrum::power(int bin) const
{
    Q_ASSERT(bin >= 0 && bin < spectrumBins);
    return m_re[bin] * m_re[bin] + m_im[bin] * m_im[bin];
}

void Spectrum::load(const float *frame)
{
    for (int i = 0; i < frameLength; ++i) {
        const int source = m_tables.bitReversed[i];
        m_re[i] = frame[source] * m_tables.window[source];
    }
}

// The first two stages in one: the input is real and the twiddles are 1 and -i, so there is nothing to multiply.
void Spectrum::transformGroupsOfFour()
{
    double *const re = m_re.data();
    double *const im = m_im.data();
    for (int g = 0; g < frameLength; g += 4) {
        const double evenSum = re[g] + re[g + 1];
        const double evenDifference = re[g] - re[g + 1];
        const double oddSum = re[g + 2] + re[g + 3];
        const double oddDifference = re[g + 2] - re[g + 3];
        re[g] = evenSum + oddSum;
        re[g + 1] = evenDifference;
        re[g + 2] = evenSum - oddSum;
        re[g + 3] = evenDifference;
        im[g] = 0.0;
        im[g + 1] = -oddDifference;
        im[g + 2] = 0.0;
        im[g + 3] = oddDifference;
    }
}

void Spectrum::combine(int half)
{
    const double *const cosines = m_tables.cosines.data() + half;
    const double *const sines = m_tables.sines.data() + half;
    for (int g = 0; g < frameLength; g += 2 * half) {
        double *__restrict const evenRe = m_re.data() + g;
        double *__restrict const evenIm = m_im.data() + g;
        double *__restrict const oddRe = evenRe + half;
        double *__restrict const oddIm = evenIm + half;
        for (int k = 0; k < half; ++k) {
            const double re = cosines[k] * oddRe[k] - sines[k] * oddIm[k];
            const double im = cosines[k] * oddIm[k] + sines[k] * oddRe[k];
            oddRe[k] = evenRe[k] - re;
            oddIm[k] = evenIm[k] - im;
            evenRe[k] += re;
            evenIm[k] += im;
        }
    }
}

void Spectrum::combineLowBins(int half)
{
    const double *const cosines = m_tables.cosines.data() + half;
    const double *const sines = m_tables.sines.data() + half;
    for (int g = 0; g < frameLength; g += 2 * half) {
        double *__restrict const evenRe = m_re.data() + g;
        double *__restrict const evenIm = m_im.data() + g;
        const double *const oddRe = evenRe + half;
        const double *const oddIm = evenIm + half;
        for (int k = 0; k < spectrumBins; ++k) {
            evenRe[k] += cosines[k] * oddRe[k] - sines[k] * oddIm[k];
            evenIm[k] += cosines[k] * oddIm[k] + sines[k] * oddRe[k];
        }
    }
}

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
