// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanstages.h"

#include "acousticcomparison.h"
#include "analysiscache.h"
#include "displaytext.h"
#include "libraryfiles.h"
#include "matching.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <iterator>
#include <utility>

namespace epr {

namespace {

constexpr int pollPauseMs = 50;
constexpr qsizetype namedFolders = 100; // in the log; a drive that drops out may take thousands with it

void logProblems(const DiscoveryProblems &problems, const StageContext &context)
{
    for (const QString &root : problems.missingRoots)
        context.log(QCoreApplication::translate("epr::ScanController", "Folder not found: %1").arg(nativePath(root)));
    for (const auto &folder :
         problems.unreadableFolders.first(std::min(problems.unreadableFolders.size(), namedFolders))) {
        context.log(QCoreApplication::translate("epr::ScanController", "Could not read the folder %1: %2")
                        .arg(nativePath(folder.path), folder.reason));
    }
    if (const auto unnamed = static_cast<int>(problems.unreadableFolders.size() - namedFolders); unnamed > 0) {
        context.log(
            QCoreApplication::translate("epr::ScanController", "Could not read %n more folder(s).", nullptr, unnamed));
    }
    if (problems.unusableNames > 0) {
#ifdef Q_OS_WIN
        const char *text =
            QT_TRANSLATE_NOOP("epr::ScanController", "Left out %n file(s) whose names Windows takes for devices.");
#else
        const char *text = QT_TRANSLATE_NOOP("epr::ScanController",
                                             "Left out %n file(s) or folder(s) whose names are not valid UTF-8.");
#endif
        context.log(QCoreApplication::translate("epr::ScanController", text, nullptr, problems.unusableNames));
    }
}

QList<FileProblem> fileProblems(const DiscoveryProblems &problems)
{
    QList<FileProblem> found;
    for (const QString &root : problems.missingRoots)
        found.append({ root, Attempt::ReadFolder,
                       QCoreApplication::translate("epr::ScanController", "The folder was not found") });
    for (const auto &folder : problems.unreadableFolders)
        found.append({ folder.path, Attempt::ReadFolder, folder.reason });
    return found;
}

void commit(AnalysisCache &cache, const StageContext &context)
{
    cache.commitTransaction();
    if (const QString error = cache.takeError(); !error.isEmpty()) {
        context.log(QCoreApplication::translate("epr::ScanController", "The analysis cache could not be written (%1).")
                        .arg(error));
    }
}

QString megabytes(qint64 bytes)
{
    return QString::number(static_cast<double>(bytes) / 1048576.0, 'f', 1);
}

} // namespace

void StageContext::waitWhilePaused() const
{
    while (isPaused() && !isCancelled())
        QThread::msleep(pollPauseMs);
}

bool hasCompleteFingerprint(const TrackInfo &track, FingerprintEngine engine)
{
    return !track.fingerprint.words.isEmpty()
        && (engine != FingerprintEngine::BuiltIn || track.fingerprint.words.size() == track.fingerprint.mask.size());
}

DiscoveredFiles discoverFiles(const ScanOptions &options, const StageContext &context)
{
    context.step({ .number = 1, .count = stepCount(options) });
    context.phase(QCoreApplication::translate("epr::ScanController", "Scanning folders"));
    DiscoveryProblems problems;
    const QStringList paths = discover(
        options, context.cancelFlag,
        [&context](int count, const QString &) {
            context.waitWhilePaused();
            context.progress(count, 0, QCoreApplication::translate("epr::ScanController", "%1 files found").arg(count));
        },
        &problems);
    if (context.isCancelled())
        return {};
    logProblems(problems, context);
    context.log(
        paths.isEmpty()
            ? QCoreApplication::translate("epr::ScanController", "No audio files matched the current filters.")
            : QCoreApplication::translate("epr::ScanController", "Discovered %1 audio files.").arg(paths.size()));
    return { paths, fileProblems(problems) };
}

FilteredTracks filterShortFiles(QList<TrackInfo> tracks, const ScanOptions &options, const StageContext &context)
{
    if (context.isCancelled() || options.minDurationMs <= 0)
        return { std::move(tracks), {} };
    const auto firstShort = std::stable_partition(tracks.begin(), tracks.end(), [&options](const TrackInfo &track) {
        return track.stream.durationMs < 1 || track.stream.durationMs >= options.minDurationMs;
    });
    QList<TrackInfo> tooShort(firstShort, tracks.end());
    tracks.erase(firstShort, tracks.end());
    if (!tooShort.isEmpty()) {
        context.log(QCoreApplication::translate("epr::ScanController", "Skipped %1 file(s) shorter than %2 seconds.")
                        .arg(tooShort.size())
                        .arg(options.minDurationMs / 1000));
    }
    return { std::move(tracks), std::move(tooShort) };
}

void writeCache(const FilteredTracks &tracks, const ScanOptions &options, AnalysisCache &cache,
                const StageContext &context)
{
    QList<const TrackInfo *> known;
    QList<const TrackInfo *> fresh;
    QList<const TrackInfo *> withDigests;
    QList<const TrackInfo *> withKeys;
    for (const QList<TrackInfo> *list : { &tracks.kept, &tracks.tooShort }) {
        for (const TrackInfo &track : *list) {
            if (!track.analysed || !track.error.isEmpty())
                continue;
            const bool isKnown = (track.flags & TrackFromCache) != 0;
            (isKnown ? known : fresh).append(&track);
            if (isKnown && (track.flags & TrackDigestsAreNew) != 0)
                withDigests.append(&track);
            const bool isWorthARow = track.keys.isKnown() || (!isKnown && track.stream.durationIsGuess);
            if (isWorthARow && (track.flags & TrackKeysFromCache) == 0)
                withKeys.append(&track);
        }
    }
    if (known.isEmpty() && fresh.isEmpty())
        return;
    context.phase(QCoreApplication::translate("epr::ScanController", "Updating the cache"));
    cache.beginTransaction();
    cache.touchAll(known, options.fingerprintEngine);
    for (const TrackInfo *track : fresh)
        cache.store(*track, options.fingerprintEngine);
    cache.storeDigests(withDigests, options.fingerprintEngine);
    cache.storeKeys(withKeys);
    commit(cache, context);
}

void writeDigests(const QList<TrackInfo *> &tracks, const ScanOptions &options, AnalysisCache &cache,
                  const StageContext &context)
{
    QList<const TrackInfo *> complete;
    std::copy_if(tracks.cbegin(), tracks.cend(), std::back_inserter(complete),
                 [&](const TrackInfo *track) { return hasWantedDigests(*track, options); });
    cache.beginTransaction();
    cache.storeDigests(complete, options.fingerprintEngine);
    commit(cache, context);
}

QList<TrackInfo> leaveOutSilence(QList<TrackInfo> tracks, const ScanOptions &options, const StageContext &context)
{
    if (!options.detectAcoustic)
        return tracks;
    int silent = 0;
    for (TrackInfo &track : tracks) {
        if (!isMostlySilent(track.fingerprint, options.fingerprintEngine))
            continue;
        track.fingerprint = {};
        if (track.error.isEmpty()) {
            track.error = QCoreApplication::translate("epr::ScanController",
                                                      "Mostly silence in the analysed part: not compared by sound");
        }
        ++silent;
    }
    if (silent > 0) {
        context.log(QCoreApplication::translate("epr::ScanController",
                                                "%n file(s) are mostly silence in the analysed part. They are still "
                                                "checked by hash.",
                                                nullptr, silent));
    }
    return tracks;
}

namespace {

// They are in no group, so that there is no row to say it in.
void logEdits(const EditPairs &pairs, const QList<TrackInfo> &tracks, const StageContext &context)
{
    constexpr qsizetype mostNamed = 100;
    for (const auto &[first, second] : pairs.first(std::min(pairs.size(), mostNamed))) {
        context.log(QCoreApplication::translate("epr::ScanController", "One may be an edit of the other: %1, %2")
                        .arg(nativePath(tracks.at(first).path), nativePath(tracks.at(second).path)));
    }
    if (pairs.size() > mostNamed) {
        context.log(QCoreApplication::translate("epr::ScanController", "%n more pair(s) of files may be edits.",
                                                nullptr, static_cast<int>(pairs.size() - mostNamed)));
    }
}

} // namespace

QList<MatchGroup> groupDuplicates(const QList<TrackInfo> &tracks, const ScanOptions &options,
                                  const StageContext &context)
{
    context.step({ .number = stepCount(options), .count = stepCount(options) });
    context.phase(QCoreApplication::translate("epr::ScanController", "Grouping duplicates"));
    QString phase;
    const auto report = [&](int step, int total, const QString &text) {
        context.waitWhilePaused();
        if (text != std::exchange(phase, text))
            context.phase(text);
        context.progress(step, total, text);
    };
    EditPairs singleEdits;
    const QList<MatchGroup> groups = buildMatchGroups(tracks, options, context.cancelFlag, report, &singleEdits);
    logEdits(singleEdits, tracks, context);
    qint64 reclaimable = 0;
    for (const MatchGroup &group : groups)
        reclaimable += group.reclaimableBytes;
    context.log(
        QCoreApplication::translate("epr::ScanController", "Found %1 duplicate group(s); %2 MB could be reclaimed.")
            .arg(groups.size())
            .arg(megabytes(reclaimable)));
    return groups;
}

// Nobody compares fingerprints after the scan, and they are most of what a record weighs: 1.5 GB for 200,000 files.
QList<TrackInfo> reportableTracks(QList<TrackInfo> tracks, bool cancelled)
{
    for (TrackInfo &track : tracks)
        track.fingerprint = {};
    if (cancelled)
        tracks.removeIf([](const TrackInfo &track) { return !track.analysed && track.error.isEmpty(); });
    return tracks;
}

} // namespace epr
