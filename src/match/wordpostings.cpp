// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "acousticcomparison.h"
#include "candidates.h"
#include "parallel.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace epr {

namespace {

// A word is filed by its upper bits under a bucket, and its track by the upper bits of its index under a slice of the
// library. The lower bits of both fit into 32 bits together.
constexpr int bucketBits = 11;
constexpr int trackBits = 11;
constexpr int wordBits = 32 - bucketBits;
constexpr std::size_t bucketCount = std::size_t(1) << bucketBits;
constexpr qsizetype tracksPerSlice = qsizetype(1) << trackBits;
static_assert(wordBits + trackBits == 32);

constexpr std::size_t mostEntries = std::size_t(1) << 32; // of the result, whose places are kept in 32 bits

/// The words of one bucket that two tracks or more may have. Nearly every word is one that no other track has; leaving
/// those out by two bits for each possible word spares sorting them.
class RepeatedWords final {
public:
    void note(quint32 word)
    {
        const quint64 bit = quint64(1) << word % 64;
        m_again[word / 64] |= m_seen[word / 64] & bit;
        m_seen[word / 64] |= bit;
    }

    bool contains(quint32 word) const { return (m_again[word / 64] >> word % 64 & 1) != 0; }

    void forget(quint32 word) { m_seen[word / 64] = m_again[word / 64] = 0; }

private:
    std::vector<quint64> m_seen = std::vector<quint64>((1U << wordBits) / 64);
    std::vector<quint64> m_again = m_seen;
};

using WordAndTrack = quint64; // word in the high half, so that these sort by word and then by track

/// Appends to the lists those of the words that at most so many tracks share. Sorts the pairs and drops repeated ones.
void appendShared(std::vector<WordAndTrack> &pairs, std::ptrdiff_t maxLength, PostingLists &lists)
{
    std::ranges::sort(pairs);
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    for (auto begin = pairs.begin(); begin != pairs.end();) {
        const auto end =
            std::find_if(begin, pairs.end(), [begin](WordAndTrack pair) { return pair >> 32 != *begin >> 32; });
        if (end - begin >= 2 && end - begin <= maxLength) {
            std::for_each(begin, end, [&lists](WordAndTrack pair) { lists.entries.push_back(quint32(pair)); });
            lists.entries.back() |= PostingLists::endFlag;
            ++lists.keyCount;
        }
        begin = end;
    }
}

/// Makes the lists for one range of buckets after the other, so that the words of all tracks are never in memory a
/// second time.
class WordIndex final {
public:
    WordIndex(const QList<TrackInfo> &tracks, const Checkpoint &checkpoint, const IndexEffort &effort)
        : m_tracks(tracks)
        , m_checkpoint(checkpoint)
        , m_threads(effort.threads)
        , m_entriesAtOnce(effort.entriesAtOnce)
        , m_ends(static_cast<std::size_t>((tracks.size() + tracksPerSlice - 1) / tracksPerSlice))
        , m_workspaces(static_cast<std::size_t>(effort.threads))
    {
    }

    /// Counts the words of each bucket. False if cancelled.
    bool count();

    /// Empty if cancelled.
    PostingLists takeLists();

private:
    struct Range {
        std::size_t begin = 0; ///< buckets
        std::size_t end = 0;
        std::size_t entries = 0;
    };

    struct Workspace {
        RepeatedWords repeated;
        std::vector<WordAndTrack> pairs;
    };

    template <typename Visit> void forEachWord(std::size_t slice, Visit visit) const;
    Range rangeFrom(std::size_t bucket) const;
    std::vector<PostingLists> listsOf(const Range &range);
    void placeEntries(const Range &range);
    void fill(const Range &range, std::size_t slice, std::vector<quint32> &entries);
    void reduce(std::size_t bucket, const std::vector<quint32> &entries, Workspace &workspace, PostingLists &lists);

    const QList<TrackInfo> &m_tracks;
    const Checkpoint &m_checkpoint;
    int m_threads = 1;
    std::size_t m_entriesAtOnce = 0;
    /// Per slice and bucket how many entries there are; for the buckets of the range at work where the next one goes,
    /// which in the end is where they end.
    std::vector<std::array<std::size_t, bucketCount>> m_ends;
    std::array<std::size_t, bucketCount> m_sizes {}; ///< entries of all slices
    std::vector<Workspace> m_workspaces; ///< one for each thread
};

/// Runs of one word, mostly silence, are visited once: they would all lie in one bucket.
template <typename Visit> void WordIndex::forEachWord(std::size_t slice, Visit visit) const
{
    const qsizetype first = static_cast<qsizetype>(slice) * tracksPerSlice;
    const qsizetype end = std::min(first + tracksPerSlice, m_tracks.size());
    for (qsizetype track = first; track < end && !m_checkpoint.isCancelled(); ++track) {
        const Fingerprint &fingerprint = m_tracks[track].fingerprint;
        if (!isLongEnoughToCompare(fingerprint))
            continue;
        quint32 previous = ~fingerprint.words.front();
        for (const quint32 word : fingerprint.words)
            if (word != std::exchange(previous, word))
                visit(word, static_cast<quint32>(track - first));
    }
}

bool WordIndex::count()
{
    Milestones milestones(m_checkpoint, acousticprogress::collectingWords, tracksPerSlice, m_tracks.size());
    constexpr qsizetype slicesPerReport = 8; // and thread
    const qsizetype slices = std::ssize(m_ends);
    for (qsizetype begin = 0; begin < slices; begin += slicesPerReport * m_threads) {
        if (!milestones.reach(begin, slices))
            return false;
        const qsizetype count = std::min(slicesPerReport * m_threads, slices - begin);
        forEachOnThreads(m_threads, count, [&](int, qsizetype index) {
            const auto slice = static_cast<std::size_t>(begin + index);
            forEachWord(slice, [&](quint32 word, quint32) { ++m_ends[slice][word >> wordBits]; });
        });
    }
    for (const auto &ofSlice : m_ends)
        for (std::size_t bucket = 0; bucket < bucketCount; ++bucket)
            m_sizes[bucket] += ofSlice[bucket];
    return milestones.reach(1, 1);
}

PostingLists WordIndex::takeLists()
{
    Milestones milestones(m_checkpoint, acousticprogress::sortingWords, tracksPerSlice, m_tracks.size());
    const auto total = std::accumulate(m_sizes.begin(), m_sizes.end(), std::size_t(0));
    std::size_t done = 0;
    PostingLists lists;
    for (Range range; range.end < bucketCount; done += range.entries) {
        if (!milestones.reach(static_cast<qint64>(done), static_cast<qint64>(total)))
            return {};
        range = rangeFrom(range.end);
        const std::vector<PostingLists> ofBuckets = listsOf(range);
        for (const PostingLists &more : ofBuckets) {
            if (lists.entries.size() + more.entries.size() > mostEntries)
                continue; // as if these words were too common
            lists.entries.insert(lists.entries.end(), more.entries.begin(), more.entries.end());
            lists.keyCount += more.keyCount;
        }
    }
    return milestones.reach(1, 1) ? std::move(lists) : PostingLists();
}

/// As many buckets as hold the entries that are taken at once, but at least one.
WordIndex::Range WordIndex::rangeFrom(std::size_t bucket) const
{
    Range range { bucket, bucket, 0 };
    do {
        range.entries += m_sizes[range.end++];
    } while (range.end < bucketCount && range.entries + m_sizes[range.end] <= m_entriesAtOnce);
    return range;
}

std::vector<PostingLists> WordIndex::listsOf(const Range &range)
{
    std::vector<quint32> entries(range.entries);
    std::vector<PostingLists> lists(range.end - range.begin);
    placeEntries(range);
    forEachOnThreads(m_threads, std::ssize(m_ends),
                     [&](int, qsizetype slice) { fill(range, static_cast<std::size_t>(slice), entries); });
    forEachOnThreads(m_threads, std::ssize(lists), [&](int thread, qsizetype index) {
        const auto number = static_cast<std::size_t>(index);
        if (!m_checkpoint.isCancelled())
            reduce(range.begin + number, entries, m_workspaces[static_cast<std::size_t>(thread)], lists[number]);
    });
    return lists;
}

/// Turns the numbers of entries into the places where they begin: bucket by bucket, and slice by slice within each.
void WordIndex::placeEntries(const Range &range)
{
    std::size_t place = 0;
    for (std::size_t bucket = range.begin; bucket < range.end; ++bucket)
        for (auto &ofSlice : m_ends)
            place += std::exchange(ofSlice[bucket], place);
}

void WordIndex::fill(const Range &range, std::size_t slice, std::vector<quint32> &entries)
{
    auto &next = m_ends[slice];
    forEachWord(slice, [&](quint32 word, quint32 track) {
        const std::size_t bucket = word >> wordBits;
        if (bucket - range.begin < range.end - range.begin)
            entries[next[bucket]++] = word << trackBits | track;
    });
}

void WordIndex::reduce(std::size_t bucket, const std::vector<quint32> &entries, Workspace &workspace,
                       PostingLists &lists)
{
    const auto wordOf = [](quint32 entry) { return entry >> trackBits; };
    const std::size_t end = m_ends.back()[bucket];
    std::size_t place = end - m_sizes[bucket];
    for (std::size_t i = place; i < end; ++i)
        workspace.repeated.note(wordOf(entries[i]));
    workspace.pairs.clear();
    for (std::size_t slice = 0; slice < m_ends.size(); ++slice)
        for (; place < m_ends[slice][bucket]; ++place)
            if (const quint32 entry = entries[place]; workspace.repeated.contains(wordOf(entry)))
                workspace.pairs.push_back(WordAndTrack(wordOf(entry)) << 32 | slice << trackBits
                                          | entry % (1U << trackBits));
    for (std::size_t i = end - m_sizes[bucket]; i < end; ++i)
        workspace.repeated.forget(wordOf(entries[i]));
    appendShared(workspace.pairs, maxPostingLength(m_tracks.size()), lists);
}

} // namespace

PostingLists wordPostings(const QList<TrackInfo> &tracks, const Checkpoint &checkpoint, const IndexEffort &effort)
{
    WordIndex index(tracks, checkpoint, effort);
    return index.count() ? index.takeLists() : PostingLists();
}

} // namespace epr
