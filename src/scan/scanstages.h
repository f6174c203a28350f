// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fileproblem.h"
#include "progress.h"
#include "records.h"

#include <atomic>

namespace epr {

class AnalysisCache;

/// How a stage is told to stop, and how it says what it does. It reports on the thread that runs it.
struct StageContext {
    const std::atomic<qint32> &cancelFlag; ///< other than zero: stop
    std::function<void(const QString &title)> phase = [](const QString &) {};
    ProgressFn progress = [](int, int, const QString &) {};
    std::function<void(const QString &message)> log = [](const QString &) {};
    std::function<void(const ScanStep &step)> step = [](const ScanStep &) {};
    const std::atomic<qint32> *pauseFlag = nullptr; ///< other than zero: begin no further file for the time being

    bool isCancelled() const { return cancelFlag.load() != 0; }
    bool isPaused() const { return pauseFlag && pauseFlag->load() != 0; }
    void waitWhilePaused() const; ///< on any thread; a cancel ends it
};

// The stages of a scan, in their order. The options name the fingerprint engine that is really there, and use the cache
// only when it can be opened. A stage that finds the flag raised hands on what it has; tracks stay in discovery order.

/// Without the acoustic method nothing is fingerprinted.
inline int stepCount(const ScanOptions &options)
{
    return options.detectAcoustic ? 5 : 4;
}

struct DiscoveredFiles {
    QStringList paths; ///< none when cancelled
    QList<FileProblem> problems; ///< folders that could not be looked into, or are not there
};
DiscoveredFiles discoverFiles(const ScanOptions &options, const StageContext &context);

/// Records of the files, measured and, where the cache knows enough of them, complete, which TrackFromCache says.
struct CheckedFiles {
    QList<TrackInfo> tracks;
    bool isCacheDamaged = false; ///< so that not all have been looked up
};
CheckedFiles checkCache(const QStringList &paths, const ScanOptions &options, const StageContext &context);

/// Reads tags and makes digests of what did not come from the cache. If the options say so, only files that may be
/// copies get digests, from the cache or not; the others have content keys that no other file shares.
QList<TrackInfo> analyseFiles(QList<TrackInfo> tracks, const ScanOptions &options, const StageContext &context);

struct FilteredTracks {
    QList<TrackInfo> kept;
    QList<TrackInfo> tooShort; ///< left out of the results, but worth caching
};
FilteredTracks filterShortFiles(QList<TrackInfo> tracks, const ScanOptions &options, const StageContext &context);

/// Fingerprints what has no complete fingerprint yet.
QList<TrackInfo> fingerprintFiles(QList<TrackInfo> tracks, const ScanOptions &options, const StageContext &context);

/// Also after a cancel: what has been analysed need not be analysed again.
void writeCache(const FilteredTracks &tracks, const ScanOptions &options, AnalysisCache &cache,
                const StageContext &context);

/// Takes the fingerprints of silence away before the files are compared, and says so in their records. After the cache
/// is written, which keeps them: the files need no other analysis.
QList<TrackInfo> leaveOutSilence(QList<TrackInfo> tracks, const ScanOptions &options, const StageContext &context);

QList<MatchGroup> groupDuplicates(const QList<TrackInfo> &tracks, const ScanOptions &options,
                                  const StageContext &context);

/// Takes the digests that members of groups lack because no copy of them was possible. They are recorded for the
/// reports and for the checks of a clean-up, and in the cache if the options use it; the groups stay as they are. False
/// when that was cancelled: without its digests a file could be deleted that is no longer as it was scanned.
bool completeMembers(QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, const ScanOptions &options,
                     AnalysisCache *cache, const StageContext &context);
void writeDigests(const QList<TrackInfo *> &tracks, const ScanOptions &options, AnalysisCache &cache,
                  const StageContext &context);

/// What is reported of a scan: without fingerprints and, after a cancel, without files that were not got round to.
QList<TrackInfo> reportableTracks(QList<TrackInfo> tracks, bool cancelled);

/// Whether the track has all that the engine makes; only the built-in analysis makes masks.
bool hasCompleteFingerprint(const TrackInfo &track, FingerprintEngine engine);

} // namespace epr
