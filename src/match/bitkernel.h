// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <span>

namespace epr {

/// Sub-fingerprints in memory, with the bits of each that can be trusted.
struct MaskedBlock {
    const quint32 *words = nullptr;
    const quint32 *mask = nullptr;
};

struct MaskedBits {
    qint64 differing = 0; ///< trusted on both sides and different
    qint64 trusted = 0; ///< trusted on both sides

    bool operator==(const MaskedBits &) const = default;
};

/// The inner loops of every fingerprint comparison, as one kind of processor runs them. All kernels count the same.
struct BitKernel {
    const char *name = nullptr;
    qint64 (*differing)(const quint32 *a, const quint32 *b, qsizetype count) = nullptr;
    MaskedBits (*masked)(MaskedBlock a, MaskedBlock b, qsizetype count) = nullptr;
};

/// Every kernel that this processor can run, from the portable one to the fastest.
std::span<const BitKernel> bitKernels();

/// The fastest of them.
const BitKernel &bitKernel();

} // namespace epr
