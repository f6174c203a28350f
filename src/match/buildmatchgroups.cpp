// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "buildmatchgroups.h"

#include "acousticmatch.h"
#include "exactmatch.h"
#include "grouping.h"
#include "matchunion.h"
#include "metadatamatch.h"

#include <QCoreApplication>

namespace epr {

namespace {

constexpr int stepCount = 4;

void report(const ProgressFn &progress, int step, const char *text)
{
    if (progress)
        progress(step, stepCount, QCoreApplication::translate("QObject", text));
}

void matchIdenticalFiles(const QList<TrackInfo> &tracks, MatchUnion &sets, const ProgressFn &progress)
{
    report(progress, 0, QT_TRANSLATE_NOOP("QObject", "Matching identical files"));
    linkEqualDigests(tracks, &TrackInfo::fullHash, MatchType::IdenticalFile, sets);
}

void matchAudioPayloads(const QList<TrackInfo> &tracks, MatchUnion &sets, const ProgressFn &progress)
{
    report(progress, 1, QT_TRANSLATE_NOOP("QObject", "Matching audio payloads"));
    linkEqualDigests(tracks, &TrackInfo::audioHash, MatchType::SameAudio, sets);
}

void matchMetadata(const QList<TrackInfo> &tracks, qint32 toleranceMs, MatchUnion &sets, const ProgressFn &progress)
{
    report(progress, 3, QT_TRANSLATE_NOOP("QObject", "Comparing metadata"));
    linkEqualSongs(tracks, toleranceMs, sets);
}

} // namespace

// From the most certain method to the least. Each pass looks at all tracks, also at those already linked: a group takes
// the type of its weakest link.
QList<MatchGroup> buildMatchGroups(const QList<TrackInfo> &tracks, const ScanOptions &options,
                                   const std::atomic<qint32> &cancelFlag, const ProgressFn &progress)
{
    if (tracks.size() < 2)
        return {};
    const auto cancelled = [&cancelFlag] { return cancelFlag.load(std::memory_order_relaxed) != 0; };
    MatchUnion sets(tracks.size());
    if (options.detectIdentical)
        matchIdenticalFiles(tracks, sets, progress);
    if (options.detectSameAudio)
        matchAudioPayloads(tracks, sets, progress);
    if (options.detectAcoustic && !cancelled())
        matchAcoustic(tracks, options, cancelFlag, progress, sets);
    if (options.detectMetadata && !cancelled())
        matchMetadata(tracks, options.metadataTolerance, sets, progress);
    QList<MatchGroup> groups = groupSets(sets, tracks, options);
    report(progress, 4, QT_TRANSLATE_NOOP("QObject", "Grouping complete"));
    return groups;
}

} // namespace epr
