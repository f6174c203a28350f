// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matching.h"

#include "alignment.h"
#include "keyindex.h"
#include "matchunion.h"
#include "parallel.h"

#include <array>
#include <atomic>
#include <bit>
#include <utility>
#include <vector>

namespace epr {

namespace {

constexpr const char *passText = QT_TRANSLATE_NOOP("QObject", "Looking for copies that start or end elsewhere");
constexpr ProgressSlice countingPairs { 0.0, 0.4, passText };
constexpr ProgressSlice collectingPairs { 0.4, 0.4, passText };
constexpr ProgressSlice comparing { 0.8, 0.2, passText };

using Pair = quint64; // the earlier track in the upper half, so that these sort as the tracks do

Pair pairOf(quint32 a, quint32 b)
{
    return Pair(a) << 32 | b;
}

qint32 firstOf(Pair pair)
{
    return static_cast<qint32>(pair >> 32);
}

qint32 secondOf(Pair pair)
{
    return static_cast<qint32>(static_cast<quint32>(pair));
}

/// Says of each pair at most how many keys it shares. Nearly all pairs that share one share no other, and there are
/// hundreds of millions of them in a large library; pairs that fall on the same four bits are counted together.
class PairCounts final {
public:
    static constexpr quint8 most = 15;

    explicit PairCounts(qsizetype keyCount)
        : m_bytes(std::bit_ceil(static_cast<std::size_t>(std::clamp<qsizetype>(2 * keyCount, 1 << 16, 1 << 30))))
    {
    }

    void add(std::span<const Pair> pairs)
    {
        lookUp(pairs, [this](Pair, std::size_t place, quint8 known) { increment(place, known); });
    }

    /// Calls visit(pair) for those that may be there as often.
    template <typename Visit> void forEachFrequent(std::span<const Pair> pairs, quint8 least, const Visit &visit) const
    {
        lookUp(pairs, [&](Pair pair, std::size_t place, quint8 known) {
            if (countIn(known, place) >= least)
                visit(pair);
        });
    }

    /// How many counts there are of each value.
    std::array<qint64, most + 1> histogram() const
    {
        std::array<qint64, most + 1> countOf {};
        for (const std::atomic<quint8> &byte : m_bytes)
            for (const std::size_t place : { 0, 1 })
                ++countOf[countIn(byte.load(std::memory_order_relaxed), place)];
        return countOf;
    }

private:
    static constexpr std::size_t pairsAtOnce = 64;

    static quint8 countIn(quint8 byte, std::size_t place) { return place % 2 == 0 ? byte & most : byte >> 4; }

    /// The counts lie all over the memory. Looking at those of many pairs first lets the processor fetch them at once.
    template <typename Take> void lookUp(std::span<const Pair> pairs, const Take &take) const
    {
        for (; !pairs.empty(); pairs = pairs.subspan(std::min(pairs.size(), pairsAtOnce))) {
            std::array<std::pair<std::size_t, quint8>, pairsAtOnce> known;
            const std::span<const Pair> now = pairs.first(std::min(pairs.size(), pairsAtOnce));
            std::ranges::transform(now, known.begin(), [this](Pair pair) {
                const std::size_t place = placeOf(pair);
                return std::pair(place, m_bytes[place / 2].load(std::memory_order_relaxed));
            });
            for (std::size_t i = 0; i < now.size(); ++i)
                take(now[i], known[i].first, known[i].second);
        }
    }

    void increment(std::size_t place, quint8 known)
    {
        const quint8 one = place % 2 == 0 ? 1 : 1 << 4;
        while (countIn(known, place) < most
               && !m_bytes[place / 2].compare_exchange_weak(known, static_cast<quint8>(known + one),
                                                            std::memory_order_relaxed))
            continue;
    }

    std::size_t placeOf(Pair pair) const
    {
        pair = (pair ^ pair >> 29) * 0xBF58476D1CE4E5B9U;
        return (pair ^ pair >> 32) & (2 * m_bytes.size() - 1);
    }

    std::vector<std::atomic<quint8>> m_bytes;
};

/// Pairs, each as often as it shares a key, until that is often enough. It has room for as many as are expected, since
/// one that grows is in the memory twice while it is moved.
class PairList final {
public:
    PairList(std::ptrdiff_t repeats, qint64 expected)
        : m_repeats(repeats)
        , m_limit(std::max<std::size_t>(static_cast<std::size_t>(expected), 1'000'000))
    {
        m_pairs.reserve(m_limit);
    }

    void add(Pair pair)
    {
        if (m_pairs.size() == m_limit) {
            keepEnough();
            m_limit = std::max(m_limit, 2 * m_pairs.size());
        }
        m_pairs.push_back(pair);
    }

    void append(PairList &&other)
    {
        m_pairs.insert(m_pairs.end(), other.m_pairs.begin(), other.m_pairs.end());
        other.m_pairs = {};
    }

    /// In order, each that was there often enough, once.
    std::vector<Pair> takeFrequent()
    {
        std::ranges::sort(m_pairs);
        keepOf([this](std::ptrdiff_t count) { return count >= m_repeats ? 1 : 0; });
        return std::move(m_pairs);
    }

private:
    void keepEnough()
    {
        std::ranges::sort(m_pairs);
        keepOf([this](std::ptrdiff_t count) { return std::min(count, m_repeats); });
    }

    template <typename HowMany> void keepOf(HowMany howMany)
    {
        auto kept = m_pairs.begin();
        for (auto begin = m_pairs.begin(); begin != m_pairs.end();) {
            const auto end = std::find_if(begin, m_pairs.end(), [pair = *begin](Pair each) { return each != pair; });
            kept = std::fill_n(kept, howMany(end - begin), *begin);
            begin = end;
        }
        m_pairs.erase(kept, m_pairs.end());
    }

    std::ptrdiff_t m_repeats = 0;
    std::size_t m_limit = 0;
    std::vector<Pair> m_pairs;
};

template <typename Visit> void forEachPair(std::span<const quint32> tracks, const Visit &visit)
{
    for (std::size_t i = 0; i < tracks.size(); ++i)
        for (std::size_t j = i + 1; j < tracks.size(); ++j)
            visit(pairOf(tracks[i], tracks[j]));
}

/// Collects the pairs of each thread and hands on many at once, as take(thread, pairs).
class PairBatches final {
public:
    explicit PairBatches(int threads)
        : m_pairs(static_cast<std::size_t>(threads))
    {
    }

    template <typename Take> void add(int thread, std::span<const quint32> tracks, const Take &take)
    {
        constexpr std::size_t pairsAtOnce = 1024;
        std::vector<Pair> &pairs = m_pairs[static_cast<std::size_t>(thread)];
        forEachPair(tracks, [&pairs](Pair pair) { pairs.push_back(pair); });
        if (pairs.size() < pairsAtOnce)
            return;
        take(thread, pairs);
        pairs.clear();
    }

    template <typename Take> void finish(const Take &take)
    {
        for (int thread = 0; std::vector<Pair> & pairs : m_pairs) {
            take(thread++, pairs);
            pairs.clear();
        }
    }

private:
    std::vector<std::vector<Pair>> m_pairs;
};

/// How many keys two tracks must share, and about how many pairs then come to be listed.
struct LeastShared {
    quint8 keys = 0;
    qint64 pairs = 0;
};

/// In a larger library more pairs share some by chance. More than usual are asked for where the pairs would not fit
/// into the memory.
LeastShared leastSharedKeys(qsizetype trackCount, const PairCounts &counts)
{
    constexpr qint64 mostPairs = 40'000'000;
    const quint8 usual = trackCount < 100'000 ? 3 : trackCount < 1'000'000 ? 4 : 5;
    const auto histogram = counts.histogram();
    LeastShared least { PairCounts::most, histogram[PairCounts::most] * PairCounts::most };
    while (least.keys > usual) {
        const qint64 more = histogram[least.keys - 1] * (least.keys - 1);
        if (least.pairs + more > mostPairs)
            break;
        --least.keys;
        least.pairs += more;
    }
    return least;
}

/// The pairs that may share enough keys and are not in one set yet, in a list of each thread. Empty if cancelled.
std::vector<PairList> listCandidates(const QList<TrackInfo> &tracks, FingerprintEngine engine, int threads,
                                     const Checkpoint &checkpoint, const MatchUnion &unions)
{
    KeyIndex index(tracks, engine, { .threads = threads });
    if (!index.count(checkpoint))
        return {};
    PairCounts counts(index.keyCount());
    PairBatches batches(threads);
    const auto forEachBatch = [&](ProgressSlice slice, const auto &take) {
        const auto addList = [&](int thread, std::span<const quint32> list) { batches.add(thread, list, take); };
        const bool isComplete = index.forEachList(checkpoint, slice, addList);
        batches.finish(take);
        return isComplete;
    };
    if (!forEachBatch(countingPairs, [&](int, std::span<const Pair> pairs) { counts.add(pairs); }))
        return {};
    const LeastShared least = leastSharedKeys(tracks.size(), counts);
    std::vector<PairList> lists;
    lists.reserve(static_cast<std::size_t>(threads));
    for (int thread = 0; thread < threads; ++thread)
        lists.emplace_back(least.keys, least.pairs / threads * 9 / 8);
    const auto collectPairs = [&](int thread, std::span<const Pair> pairs) {
        counts.forEachFrequent(pairs, least.keys, [&](Pair pair) {
            if (unions.root(firstOf(pair)) != unions.root(secondOf(pair)))
                lists[static_cast<std::size_t>(thread)].add(pair);
        });
    };
    if (!forEachBatch(collectingPairs, collectPairs))
        return {};
    return lists;
}

/// Those that do, in order. The counts are out of the memory by the time that the lists are joined.
std::vector<Pair> findCandidates(const QList<TrackInfo> &tracks, FingerprintEngine engine, int threads,
                                 const Checkpoint &checkpoint, const MatchUnion &unions)
{
    std::vector<PairList> lists = listCandidates(tracks, engine, threads, checkpoint, unions);
    if (lists.empty())
        return {};
    for (std::size_t other = 1; other < lists.size(); ++other)
        lists.front().append(std::move(lists[other]));
    return lists.front().takeFrequent();
}

/// Compares candidates a batch at a time on many threads, and links them in their order, as one thread would.
void linkAligned(std::span<const Pair> candidates, const QList<TrackInfo> &tracks, const AlignmentRules &rules,
                 int threads, const Checkpoint &checkpoint, MatchUnion &unions)
{
    constexpr qsizetype pairsAtOnce = 64; // of a thread, mostly with one first track
    constexpr std::size_t batchPerThread = 4096;
    std::vector<Aligner> aligners(static_cast<std::size_t>(threads), Aligner(rules));
    constexpr std::size_t mostEdits = 100'000; // that are told of
    struct Found {
        enum { Nothing, Copy, Edit } what = Nothing;
        double errorRate = 0;
    };
    std::vector<Found> found;
    const auto total = std::ssize(candidates);
    for (std::span<const Pair> rest = candidates; !rest.empty(); rest = rest.subspan(found.size())) {
        if (!checkpoint.pass(comparing, total - std::ssize(rest), total))
            return;
        found.assign(std::min(rest.size(), batchPerThread * static_cast<std::size_t>(threads)), Found());
        const qsizetype count = std::ssize(found);
        forEachOnThreads(threads, (count + pairsAtOnce - 1) / pairsAtOnce, [&](int thread, qsizetype turn) {
            Aligner &aligner = aligners[static_cast<std::size_t>(thread)];
            qint32 prepared = -1;
            for (qsizetype i = turn * pairsAtOnce; i < std::min(count, (turn + 1) * pairsAtOnce); ++i) {
                const Pair pair = rest[static_cast<std::size_t>(i)];
                if (checkpoint.isCancelled())
                    return;
                if (unions.root(firstOf(pair)) == unions.root(secondOf(pair)))
                    continue;
                if (std::exchange(prepared, firstOf(pair)) != firstOf(pair))
                    aligner.setFirst(tracks[firstOf(pair)].fingerprint);
                if (const auto alignment = aligner.alignWith(tracks[secondOf(pair)].fingerprint))
                    found[static_cast<std::size_t>(i)] = { Found::Copy, alignment->bitErrorRate };
                else if (aligner.mayBeEdit())
                    found[static_cast<std::size_t>(i)].what = Found::Edit;
            }
        });
        for (std::size_t i = 0; i < found.size() && !checkpoint.isCancelled(); ++i) {
            if (found[i].what == Found::Copy && unions.findRoot(firstOf(rest[i])) != unions.findRoot(secondOf(rest[i])))
                unions.linkAligned(firstOf(rest[i]), secondOf(rest[i]), found[i].errorRate);
            else if (found[i].what == Found::Edit && unions.edits().size() < mostEdits)
                unions.noteEdit(firstOf(rest[i]), secondOf(rest[i]));
        }
    }
}

} // namespace

void matchThoroughly(const QList<TrackInfo> &tracks, const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                     const ProgressFn &progress, MatchUnion &unions)
{
    const Checkpoint checkpoint(cancelFlag, progress);
    const AlignmentRules rules = alignmentRules(options);
    const int threads = usefulThreads(options.decoderThreads, tracks.size());
    const std::vector<Pair> candidates = findCandidates(tracks, rules.engine, threads, checkpoint, unions);
    linkAligned(candidates, tracks, rules, threads, checkpoint, unions);
}

} // namespace epr
