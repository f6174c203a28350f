// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "keyindex.h"

#include "acousticcomparison.h"

#include <bit>
#include <utility>

namespace epr {

KeyIndex::KeyIndex(const QList<TrackInfo> &tracks, FingerprintEngine engine, const IndexEffort &effort)
    : m_tracks(tracks)
    , m_engine(engine)
    , m_effort(effort)
    , m_sizes(static_cast<std::size_t>((tracks.size() + tracksPerSlice - 1) / tracksPerSlice))
    , m_ends(m_sizes.size())
    , m_workspaces(static_cast<std::size_t>(effort.threads))
{
}

/// Silent words have no keys. A word that is held is visited once.
template <typename Visit> void KeyIndex::forEachKey(std::size_t slice, Visit visit) const
{
    const auto visitWords = [&](const QList<quint32> &words, const QList<quint32> &mask, quint32 track) {
        const bool isMasked = m_engine != FingerprintEngine::Fpcalc && mask.size() == words.size();
        quint32 previous = words.isEmpty() ? 0 : ~words.front();
        for (qsizetype i = 0; i < words.size(); ++i)
            if (!isSilentWord(words[i], isMasked ? mask[i] : ~0U, m_engine)
                && words[i] != std::exchange(previous, words[i]))
                for (const quint32 key : alignmentKeys(words[i]))
                    visit(key, track);
    };
    const qsizetype first = static_cast<qsizetype>(slice) * tracksPerSlice;
    const qsizetype end = std::min(first + tracksPerSlice, m_tracks.size());
    for (qsizetype track = first; track < end; ++track) {
        const Fingerprint &fingerprint = m_tracks[track].fingerprint;
        if (!isLongEnoughToCompare(fingerprint))
            continue;
        visitWords(fingerprint.words, fingerprint.mask, static_cast<quint32>(track - first));
        visitWords(fingerprint.alternative, fingerprint.alternativeMask, static_cast<quint32>(track - first));
    }
}

bool KeyIndex::count(const Checkpoint &checkpoint)
{
    forEachOnThreads(m_effort.threads, std::ssize(m_sizes), [&](int, qsizetype index) {
        const auto slice = static_cast<std::size_t>(index);
        if (!checkpoint.isCancelled())
            forEachKey(slice, [&](quint32 key, quint32) { ++m_sizes[slice][key >> lowerBits]; });
    });
    for (const auto &ofSlice : m_sizes)
        for (std::size_t bucket = 0; bucket < bucketCount; ++bucket)
            m_bucketSizes[bucket] += ofSlice[bucket];
    for (const std::size_t size : m_bucketSizes)
        m_keyCount += static_cast<qsizetype>(size);
    return !checkpoint.isCancelled();
}

/// As many buckets as hold the entries that are taken at once, but at least one.
KeyIndex::Range KeyIndex::rangeFrom(std::size_t bucket) const
{
    Range range { bucket, bucket, 0 };
    do {
        range.entries += m_bucketSizes[range.end++];
    } while (range.end < bucketCount && range.entries + m_bucketSizes[range.end] <= m_effort.entriesAtOnce);
    return range;
}

/// Bucket by bucket, and slice by slice within each, so that the tracks of a key ascend.
void KeyIndex::fill(const Range &range)
{
    m_entries.resize(range.entries);
    std::size_t place = 0;
    for (std::size_t bucket = range.begin; bucket < range.end; ++bucket) {
        for (std::size_t slice = 0; slice < m_sizes.size(); ++slice) {
            m_ends[slice][bucket] = place;
            place += m_sizes[slice][bucket];
        }
    }
    forEachOnThreads(m_effort.threads, std::ssize(m_sizes), [&](int, qsizetype index) {
        auto &next = m_ends[static_cast<std::size_t>(index)];
        forEachKey(static_cast<std::size_t>(index), [&](quint32 key, quint32 track) {
            const std::size_t bucket = key >> lowerBits;
            if (bucket - range.begin < range.end - range.begin)
                m_entries[next[bucket]++] = key << trackBits | track;
        });
    });
}

/// The tracks of one key, each once. Returns where the next key begins.
std::vector<KeyIndex::KeyAndTrack>::iterator KeyIndex::takeKey(std::vector<KeyAndTrack>::iterator begin,
                                                               Workspace &workspace)
{
    workspace.tracks.clear();
    const KeyAndTrack key = *begin >> 32;
    for (; begin != workspace.entries.end() && *begin >> 32 == key; ++begin)
        if (const auto track = static_cast<quint32>(*begin);
            workspace.tracks.empty() || workspace.tracks.back() != track)
            workspace.tracks.push_back(track);
    return begin;
}

/// Into about as many slots as there are entries, by the upper bits of what is left of the key, and each slot by
/// itself.
void KeyIndex::sortBucket(std::size_t bucket, Workspace &workspace) const
{
    const std::size_t end = m_ends.back()[bucket];
    std::size_t place = end - m_bucketSizes[bucket];
    const int slotBits = std::min<int>(lowerBits, static_cast<int>(std::bit_width(end - place)));
    const auto keyOf = [](quint32 entry) { return entry >> trackBits & ((1U << lowerBits) - 1); };
    const auto slotOf = [&](quint32 entry) { return keyOf(entry) >> (lowerBits - slotBits); };
    workspace.ends.assign(std::size_t(1) << slotBits, 0);
    for (std::size_t i = place; i < end; ++i)
        ++workspace.ends[slotOf(m_entries[i])];
    quint32 begin = 0;
    for (quint32 &count : workspace.ends)
        begin += std::exchange(count, begin);
    workspace.entries.resize(end - place);
    for (std::size_t slice = 0; slice < m_ends.size(); ++slice)
        for (; place < m_ends[slice][bucket]; ++place)
            workspace.entries[workspace.ends[slotOf(m_entries[place])]++] =
                KeyAndTrack(keyOf(m_entries[place])) << 32 | slice << trackBits | m_entries[place] % (1U << trackBits);
    auto first = workspace.entries.begin();
    for (const quint32 slotEnd : workspace.ends) {
        const auto last = workspace.entries.begin() + slotEnd;
        if (!std::is_sorted(first, last))
            std::sort(first, last);
        first = last;
    }
}

} // namespace epr
