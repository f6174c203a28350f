// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "matching.h"

#include "acousticcomparison.h"
#include "candidates.h"
#include "matchunion.h"

namespace epr {

namespace {

constexpr qint32 rowsPerLook = 1024; // at the cancel flag
constexpr qint64 keysPerReport = 4096;
constexpr qint64 candidatesPerReport = 1024;

struct CandidateCount {
    qint64 total = 0;
    std::vector<bool> inRow; ///< per track: whether its row has any
};

/// Storing the candidates would take gigabytes in a large library. They are counted here, so that the comparison can
/// say how far it is, and found once more when they are compared, which takes a fraction of the time of comparing.
CandidateCount countCandidates(CandidateRows &rows, qint64 keyCount, const Checkpoint &checkpoint)
{
    Milestones milestones(checkpoint, acousticprogress::finding, keysPerReport, keyCount);
    CandidateCount count { 0, std::vector<bool>(static_cast<std::size_t>(rows.trackCount())) };
    for (qint32 track = 0; track < rows.trackCount(); ++track) {
        if (track % rowsPerLook == 0 && !milestones.reach(track, rows.trackCount()))
            return count;
        const std::size_t found = rows.row(track).size();
        count.total += static_cast<qint64>(found);
        count.inRow[static_cast<std::size_t>(track)] = found > 0;
    }
    static_cast<void>(milestones.reach(1, 1)); // the comparison looks at the flag again
    return count;
}

/// Compares candidates in the order in which they are given.
class Comparison final {
public:
    Comparison(const QList<TrackInfo> &tracks, const ScanOptions &options, MatchUnion &unions)
        : m_tracks(tracks)
        , m_rules(acousticRules(options))
        , m_durationTolerance(options.durationTolerance)
        , m_unions(unions)
    {
    }

    void compare(qint32 a, qint32 b)
    {
        const TrackInfo &first = m_tracks[a];
        const TrackInfo &second = m_tracks[b];
        if (durationsAgree(first.stream.durationMs, second.stream.durationMs, m_durationTolerance)
            && m_unions.findRoot(a) != m_unions.findRoot(b) && sameRecording(first, second, m_rules))
            m_unions.link(a, b, MatchType::SameRecording);
    }

private:
    const QList<TrackInfo> &m_tracks;
    AcousticRules m_rules;
    qint32 m_durationTolerance = 0;
    MatchUnion &m_unions;
};

/// Begins with a look at the cancel flag, so that nothing is compared after a cancelled search.
void compareCandidates(CandidateRows &rows, const CandidateCount &count, Comparison &comparison,
                       const Checkpoint &checkpoint)
{
    qint64 done = 0;
    for (qint32 a = 0; a < rows.trackCount(); ++a) {
        if (!count.inRow[static_cast<std::size_t>(a)])
            continue;
        for (const qint32 b : rows.row(a)) {
            if (done % candidatesPerReport == 0 && !checkpoint.pass(acousticprogress::comparing, done, count.total))
                return;
            comparison.compare(a, b);
            ++done;
        }
    }
}

} // namespace

void matchAcoustic(const QList<TrackInfo> &tracks, const ScanOptions &options, const std::atomic<qint32> &cancelFlag,
                   const ProgressFn &progress, MatchUnion &unions)
{
    const Checkpoint checkpoint(cancelFlag, progress);
    const AcousticRules rules = acousticRules(options);
    PostingLists lists = rules.engine == FingerprintEngine::Fpcalc ? wordPostings(tracks, checkpoint)
                                                                   : halfWordPostings(tracks, checkpoint);
    const qint64 keyCount = lists.keyCount;
    CandidateRows rows(std::move(lists), tracks.size(), rules.minSharedKeys);
    const CandidateCount count = countCandidates(rows, keyCount, checkpoint);
    Comparison comparison(tracks, options, unions);
    compareCandidates(rows, count, comparison, checkpoint);
}

} // namespace epr
