// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bitkernel.h"

#include <array>
#include <cstring>

#if defined(__GNUC__) && defined(__x86_64__)
#define EPR_HAS_POPCNT_KERNEL
#define EPR_POPCNT_TARGET __attribute__((target("popcnt")))
#define EPR_ALWAYS_INLINE inline __attribute__((always_inline))
#elif defined(_MSC_VER) && defined(_M_X64)
#include <intrin.h>
#define EPR_HAS_POPCNT_KERNEL
#define EPR_POPCNT_TARGET
#define EPR_ALWAYS_INLINE __forceinline
#else
#define EPR_ALWAYS_INLINE inline
#endif

// There is no kernel for wider registers: on Windows, GCC does not align the stack for them (a known fault of that
// compiler), and a spilled register would crash the program. One bit count per 64 bits is fast enough.

namespace epr {

namespace {

/// Adds up neighbouring bits, pairs, nibbles, and the bytes by one multiplication. Compilers whose target always has a
/// bit count instruction recognise this and use it.
struct PortableCount {
    EPR_ALWAYS_INLINE qint64 operator()(quint64 bits) const
    {
        bits -= (bits >> 1) & 0x5555555555555555U;
        bits = (bits & 0x3333333333333333U) + ((bits >> 2) & 0x3333333333333333U);
        bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0FU;
        return static_cast<qint64>((bits * 0x0101010101010101U) >> 56);
    }
};

#ifdef EPR_HAS_POPCNT_KERNEL
/// Becomes the instruction only inside a function that is compiled for it.
struct PopcntCount {
    EPR_ALWAYS_INLINE qint64 operator()(quint64 bits) const
    {
#ifdef _MSC_VER
        return static_cast<qint64>(__popcnt64(bits));
#else
        return __builtin_popcountll(bits);
#endif
    }
};
#endif

/// Two words at once. Which of them lands in the high half makes no difference to a count.
EPR_ALWAYS_INLINE quint64 wordPair(const quint32 *words)
{
    quint64 pair = 0;
    std::memcpy(&pair, words, sizeof pair);
    return pair;
}

template <typename Count>
EPR_ALWAYS_INLINE qint64 countDiffering(const quint32 *a, const quint32 *b, qsizetype count, Count bitCount)
{
    qint64 bits = 0;
    qsizetype i = 0;
    for (; i + 4 <= count; i += 4) {
        bits += bitCount(wordPair(a + i) ^ wordPair(b + i));
        bits += bitCount(wordPair(a + i + 2) ^ wordPair(b + i + 2));
    }
    for (; i < count; ++i)
        bits += bitCount(a[i] ^ b[i]);
    return bits;
}

template <typename Count>
EPR_ALWAYS_INLINE MaskedBits countMasked(MaskedBlock a, MaskedBlock b, qsizetype count, Count bitCount)
{
    MaskedBits bits;
    const auto add = [&bits, bitCount](quint64 differing, quint64 trusted) {
        bits.differing += bitCount(differing & trusted);
        bits.trusted += bitCount(trusted);
    };
    const auto addPair = [&](qsizetype at) {
        add(wordPair(a.words + at) ^ wordPair(b.words + at), wordPair(a.mask + at) & wordPair(b.mask + at));
    };
    qsizetype i = 0;
    for (; i + 4 <= count; i += 4) {
        addPair(i);
        addPair(i + 2);
    }
    for (; i < count; ++i)
        add(a.words[i] ^ b.words[i], a.mask[i] & b.mask[i]);
    return bits;
}

qint64 differingPortable(const quint32 *a, const quint32 *b, qsizetype count)
{
    return countDiffering(a, b, count, PortableCount());
}

MaskedBits maskedPortable(MaskedBlock a, MaskedBlock b, qsizetype count)
{
    return countMasked(a, b, count, PortableCount());
}

#ifdef EPR_HAS_POPCNT_KERNEL
EPR_POPCNT_TARGET qint64 differingPopcnt(const quint32 *a, const quint32 *b, qsizetype count)
{
    return countDiffering(a, b, count, PopcntCount());
}

EPR_POPCNT_TARGET MaskedBits maskedPopcnt(MaskedBlock a, MaskedBlock b, qsizetype count)
{
    return countMasked(a, b, count, PopcntCount());
}

bool processorHasPopcnt()
{
#ifdef _MSC_VER
    std::array<int, 4> registers {};
    __cpuid(registers.data(), 1);
    return (registers[2] & (1 << 23)) != 0;
#else
    return __builtin_cpu_supports("popcnt") != 0;
#endif
}
#endif

constexpr std::array kernels {
    BitKernel { "portable", differingPortable, maskedPortable },
#ifdef EPR_HAS_POPCNT_KERNEL
    BitKernel { "popcnt", differingPopcnt, maskedPopcnt },
#endif
};

} // namespace

std::span<const BitKernel> bitKernels()
{
#ifdef EPR_HAS_POPCNT_KERNEL
    static const std::size_t runnable = processorHasPopcnt() ? kernels.size() : 1;
    return std::span(kernels).first(runnable);
#else
    return kernels;
#endif
}

const BitKernel &bitKernel()
{
    static const BitKernel &fastest = bitKernels().back();
    return fastest;
}

} // namespace epr
