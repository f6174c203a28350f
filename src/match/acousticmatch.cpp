// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matching.h"

#include "acousticcomparison.h"
#include "candidates.h"
#include "matchunion.h"
#include "parallel.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace epr {

namespace {

constexpr qint64 keysPerReport = 4096;
constexpr qint64 candidatesPerReport = 1024;

// What each thread does between two reports: enough to be worth being started for. A batch of candidates begins small,
// for the first report, and grows.
constexpr qint32 rowsPerBatch = 1024; // to be counted
constexpr qint64 candidatesPerBatch = 1 << 17; // to be compared, on average

/// The number of candidates before each track's row, and behind the last row that of all. Storing the candidates would
/// take gigabytes in a large library. They are counted here, so that the comparison can say how far it is, and found
/// once more when they are compared, which takes a fraction of the time of comparing. Incomplete if cancelled.
std::vector<qint64> countCandidates(std::vector<RowCounter> &counters, qint32 trackCount, qint64 keyCount,
                                    const Checkpoint &checkpoint)
{
    Milestones milestones(checkpoint, acousticprogress::finding, keysPerReport, keyCount);
    const int threads = static_cast<int>(counters.size());
    std::vector<qint64> before(static_cast<std::size_t>(trackCount) + 1);
    for (qint32 begin = 0; milestones.reach(begin, trackCount) && begin < trackCount;) {
        const qint32 count = std::min(rowsPerBatch * threads, trackCount - begin);
        forEachOnThreads(threads, count, [&](int thread, qsizetype index) {
            const auto track = begin + static_cast<qint32>(index);
            if (!checkpoint.isCancelled())
                before[static_cast<std::size_t>(track) + 1] =
                    std::ssize(counters[static_cast<std::size_t>(thread)].row(track));
        });
        begin += count;
    }
    std::partial_sum(before.begin(), before.end(), before.begin());
    return before;
}

/// A candidate that is to be linked, by its place among all candidates.
struct Found {
    qint64 place = 0;
    qint32 a = 0;
    qint32 b = 0;
    std::optional<double>
        errorRate = {}; ///< not compared yet if earlier pairs made it likely that the two are in one set

    bool operator<(const Found &other) const { return place < other.place; }
};

/// Compares candidates on many threads, a batch of rows at a time, and links them in their order, as one thread would
/// that compared one after the other.
class Comparison final {
public:
    Comparison(const QList<TrackInfo> &tracks, const ScanOptions &options, const Checkpoint &checkpoint,
               MatchUnion &unions)
        : m_tracks(tracks)
        , m_rules(acousticRules(options))
        , m_durationTolerance(options.durationTolerance)
        , m_checkpoint(checkpoint)
        , m_unions(unions)
        , m_likeness(static_cast<std::size_t>(tracks.size()))
    {
        for (qint32 track = 0; track < unions.trackCount(); ++track)
            likeness(track) = track;
    }

    /// With as many threads as there are counters. Nothing is compared after a cancelled search.
    void run(std::vector<RowCounter> &counters, const std::vector<qint64> &before);

private:
    void compareRow(std::span<const qint32> row, Found next, std::vector<Found> &found);
    bool link(std::vector<Found> &found);
    bool lookUpTo(qint64 place);

    std::atomic<qint32> &likeness(qint32 track) { return m_likeness[static_cast<std::size_t>(track)]; }

    const QList<TrackInfo> &m_tracks;
    AcousticRules m_rules;
    qint32 m_durationTolerance = 0;
    const Checkpoint &m_checkpoint;
    MatchUnion &m_unions;
    std::vector<std::atomic<qint32>> m_likeness; ///< equal for tracks that a thread has found to be one recording
    qint64 m_total = 0;
    qint64 m_nextLook = 0; ///< the candidate before which the flag is looked at next
};

void Comparison::run(std::vector<RowCounter> &counters, const std::vector<qint64> &before)
{
    const int threads = static_cast<int>(counters.size());
    std::vector<std::vector<Found>> foundBy(counters.size());
    qint64 batch = threads * candidatesPerReport;
    m_total = before.back();
    for (auto begin = before.begin(); lookUpTo(std::min(*begin, m_total - 1)) && *begin < m_total;) {
        const auto end = std::lower_bound(begin, before.end() - 1, *begin + batch);
        forEachOnThreads(threads, end - begin, [&](int thread, qsizetype index) {
            const auto row = begin + index;
            const auto track = static_cast<qint32>(row - before.begin());
            const bool isDone = row[1] == row[0] || (row[0] >= m_nextLook && m_checkpoint.isCancelled());
            const auto number = static_cast<std::size_t>(thread);
            if (!isDone)
                compareRow(counters[number].row(track), { .place = *row, .a = track }, foundBy[number]);
        });
        std::vector<Found> found;
        for (std::vector<Found> &part : foundBy) {
            found.insert(found.end(), part.begin(), part.end());
            part.clear();
        }
        if (!link(found))
            return;
        begin = end;
        batch = std::min(2 * batch, threads * candidatesPerBatch);
    }
}

/// Where copies are many, most pairs are in one set before their turn comes. What the threads have found out so far
/// tells which ones those probably are; that they are, is looked at when all before them are linked.
void Comparison::compareRow(std::span<const qint32> row, Found next, std::vector<Found> &found)
{
    const TrackInfo &first = m_tracks[next.a];
    for (const qint32 b : row) {
        if (next.place >= m_nextLook && m_checkpoint.isCancelled())
            return;
        next.b = b;
        const TrackInfo &second = m_tracks[b];
        if (durationsAgree(first.stream.durationMs, second.stream.durationMs, m_durationTolerance)
            && m_unions.root(next.a) != m_unions.root(b)) {
            const qint32 like = likeness(next.a).load(std::memory_order_relaxed);
            const bool isWorthIt = like != likeness(b).load(std::memory_order_relaxed);
            next.errorRate = isWorthIt ? sameRecording(first, second, m_rules) : std::nullopt;
            if (!isWorthIt || next.errorRate) {
                likeness(b).store(like, std::memory_order_relaxed);
                found.push_back(next);
            }
        }
        ++next.place;
    }
}

/// False if cancelled.
bool Comparison::link(std::vector<Found> &found)
{
    std::sort(found.begin(), found.end());
    for (const Found &pair : found) {
        if (!lookUpTo(pair.place))
            return false;
        if (m_unions.findRoot(pair.a) == m_unions.findRoot(pair.b))
            continue;
        const std::optional<double> errorRate =
            pair.errorRate ? pair.errorRate : sameRecording(m_tracks[pair.a], m_tracks[pair.b], m_rules);
        if (errorRate)
            m_unions.link(pair.a, pair.b, MatchType::SameRecording, *errorRate);
    }
    return true;
}

bool Comparison::lookUpTo(qint64 place)
{
    for (; m_nextLook <= place; m_nextLook += candidatesPerReport)
        if (!m_checkpoint.pass(acousticprogress::comparing, m_nextLook, m_total))
            return false;
    return true;
}

} // namespace

void matchAcoustic(const QList<TrackInfo> &tracks, const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                   const ProgressFn &progress, MatchUnion &unions)
{
    const Checkpoint checkpoint(cancelFlag, progress);
    const AcousticRules rules = acousticRules(options);
    const int threads = usefulThreads(options.decoderThreads, tracks.size());
    PostingLists lists = rules.engine == FingerprintEngine::Fpcalc
        ? wordPostings(tracks, checkpoint, { .threads = threads })
        : halfWordPostings(tracks, checkpoint);
    const qint64 keyCount = lists.keyCount;
    const CandidateRows rows(std::move(lists), tracks.size(), rules.minSharedKeys);
    std::vector<RowCounter> counters(static_cast<std::size_t>(threads), RowCounter(rows));
    const std::vector<qint64> before = countCandidates(counters, rows.trackCount(), keyCount, checkpoint);
    Comparison(tracks, options, checkpoint, unions).run(counters, before);
}

} // namespace epr
