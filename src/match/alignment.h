// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "bitkernel.h"
#include "records.h"

#include <array>
#include <optional>
#include <vector>

namespace epr {

/// What two fingerprints of one engine must have in common to be of one recording, wherever either of them begins.
struct AlignmentRules {
    FingerprintEngine engine = FingerprintEngine::BuiltIn;
    double threshold = 0; ///< highest bit error rate over the whole overlap
    double blockThreshold = 0; ///< the same for a block of 16 words
    double agreeingShare = 0.85; ///< of the blocks, at least
};

AlignmentRules alignmentRules(const ScanOptions &options);

/// A stretch of sound as the words of its fingerprint one behind the other. Of the built-in engine the alternative and
/// the main words in turn, half a hop apart, and so twice as many.
struct WordSequence {
    std::vector<quint32> words;
    std::vector<quint32> mask; ///< all bits of a silent word, so that it differs from music as a stranger does
    std::vector<bool> silent; ///< empty if none is
    qint64 silentCount = 0;
    int perHop = 1; ///< 2 of the built-in engine

    qsizetype size() const { return static_cast<qsizetype>(words.size()); }
    bool isSilent(qsizetype position) const { return !silent.empty() && silent[static_cast<std::size_t>(position)]; }
    double msPerWord() const;
    qint64 leadingSilenceMs() const;
};

/// Whether the word is what the engine makes of digital silence: fpcalc's word for it, or no bit to be trusted.
constexpr bool isSilentWord(quint32 word, quint32 mask, FingerprintEngine engine)
{
    constexpr quint32 fpcalcSilence = 627964279;
    return engine == FingerprintEngine::Fpcalc ? word == fpcalcSilence : mask == 0;
}

/// Into a sequence that may have held another one, to save its memory from being taken anew.
void setWordSequence(WordSequence &sequence, const Fingerprint &fingerprint, FingerprintEngine engine);

/// The keys of a word, which copies share where they agree in nearly all bits: its lower and its upper 28 bits.
constexpr int alignmentKeyBits = 29;
constexpr std::array<quint32, 2> alignmentKeys(quint32 word)
{
    return { word & 0x0FFFFFFF, word >> 4 | 1U << 28 };
}

/// How the second of two recordings lies to the first.
struct Alignment {
    qint64 offsetMs = 0; ///< what the first has at a time, the second has so much later
    double bitErrorRate = 1;
};

/// Finds out how other recordings lie to one. The one is prepared once, so that it can be compared with many; a
/// comparison takes some microseconds for a minute of music. Fingerprints may be of any length.
class Aligner final {
public:
    explicit Aligner(const AlignmentRules &rules)
        : m_rules(rules)
    {
    }

    void setFirst(const Fingerprint &fingerprint);

    /// The best of the likely alignments that keeps the rules. Nothing if none does: for strangers, and for recordings
    /// that have less than half of the longer fingerprint in common.
    std::optional<Alignment> alignWith(const Fingerprint &second);

    /// Whether the one that was last found not to lie anywhere may be an edit of the first, or the first of it: some
    /// stretches of the two agree, at different offsets, and next to nothing lies between them.
    bool mayBeEdit() const;

private:
    struct Key {
        quint32 value = 0;
        qint32 firstPlace = -1;
        quint32 count = 0; ///< in the first
        quint32 seen = 0; ///< in the second
    };

    bool mayHave(quint32 key) const;
    std::size_t slotOf(quint32 key) const;
    void vote();
    void takePeaks();
    MaskedBits bitsOf(qsizetype at, qsizetype offset, qsizetype count, qsizetype silent) const;
    using Places = std::vector<std::optional<qsizetype>>; ///< offset of each block of the second, as far as it has one
    std::vector<bool> agreeingBlocks(qsizetype offset) const;
    std::vector<bool> partNear(qsizetype peak, const Places &places) const;
    std::optional<Alignment> compare(qsizetype offset) const;

    AlignmentRules m_rules;
    WordSequence m_first;
    WordSequence m_second;
    std::vector<quint64> m_known; ///< a bit for each of 16 times as many hashes as there are keys, set for the keys
    std::vector<Key> m_slots; ///< a power of two of them, by open addressing
    std::vector<qint32> m_nextPlace; ///< of the same key, for each key of each word; -1 ends
    std::vector<std::pair<quint32, qint32>> m_shared; ///< slot and position in the second
    std::vector<quint32> m_votes; ///< per offset, from the smallest possible
    std::vector<qsizetype> m_peaks; ///< offsets, the one with the most votes first
};

} // namespace epr
