// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "subfingerprint.h"

#include <cmath>

namespace epr {

namespace {

constexpr int bitCount = bandCount - 1;
constexpr double reliableShare = 0.35; // of the mean change; smaller ones flip when the file is encoded again

} // namespace

SubFingerprint subFingerprint(const BandEnergies &previous, const BandEnergies &current)
{
    std::array<double, bitCount> change;
    double sum = 0.0;
    for (int i = 0; i < bitCount; ++i) {
        change[i] = (current[i] - current[i + 1]) - (previous[i] - previous[i + 1]);
        sum += std::abs(change[i]);
    }
    const double least = reliableShare * sum / bitCount;
    SubFingerprint result;
    for (int i = 0; i < bitCount; ++i) {
        result.word |= quint32(change[i] > 0.0) << i;
        result.mask |= quint32(std::abs(change[i]) > least) << i;
    }
    return result;
}

} // namespace epr
