// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysiscache.h"
#include "libraryfiles.h"
#include "possiblecopies.h"
#include "scanstages.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrentMap>

#include <algorithm>
#include <utility>

namespace epr {

namespace {

constexpr int eventBudgetMs = 40; // of one polling round
constexpr int pollPauseMs = 50;
constexpr qsizetype looksPerReading = 10; // a look at a file's ends takes at most a tenth of reading all of it

using Files = QList<TrackInfo *>;

// Each worker writes the record of its own file, in place: what is complete when a scan is cancelled stays complete,
// and the records keep their order. The pool is the stage's own: Qt paints large fills on the global one, and the
// window would freeze.
void forEachFile(const Files &files, const std::function<void(TrackInfo *)> &read, const std::function<void()> &report,
                 const StageContext &context)
{
    if (files.isEmpty())
        return;
    QThreadPool pool;
    QFuture<void> running = QtConcurrent::map(&pool, files, [&](TrackInfo *track) {
        context.waitWhilePaused();
        read(track);
    });
    while (!running.isFinished()) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, eventBudgetMs);
        report();
        if (context.isCancelled() && !running.isCanceled())
            running.cancel();
        QThread::msleep(pollPauseMs);
    }
    running.waitForFinished();
    report();
}

// Reads the files that did not come from the cache, and among all of them those whole that may be copies. A file
// without a possible copy may get one later: whoever finds that reads both, so that what is counted is done with.
class AnalysisRun final {
public:
    AnalysisRun(QList<TrackInfo> &tracks, const ScanOptions &options, const StageContext &context);
    void run();

private:
    void readAllWhole();
    void readPossibleCopies();
    void lookAtUnknown();
    void addCached();
    void analyse(TrackInfo *track);
    void analyseNew(TrackInfo *track);
    void forEach(const Files &files, const std::function<void(TrackInfo *)> &read);

    const ScanOptions &m_options;
    const StageContext &m_context;
    PossibleCopies m_copies;
    Files m_work; // what is new
    Files m_cached;
    std::atomic<int> m_done = 0;
    qsizetype m_total = 0;
};

AnalysisRun::AnalysisRun(QList<TrackInfo> &tracks, const ScanOptions &options, const StageContext &context)
    : m_options(options)
    , m_context(context)
    , m_copies(options)
{
    for (TrackInfo &track : tracks)
        ((track.flags & TrackFromCache) != 0 ? m_cached : m_work).append(&track);
}

void AnalysisRun::run()
{
    if (usesKeys(m_options))
        readPossibleCopies();
    else
        readAllWhole();
}

void AnalysisRun::readAllWhole()
{
    m_total = m_work.size();
    forEach(m_work, [this](TrackInfo *track) { *track = analyseFile(*track, m_options, &m_context.cancelFlag); });
}

void AnalysisRun::readPossibleCopies()
{
    lookAtUnknown();
    addCached();
    m_total += m_work.size();
    forEach(m_work, [this](TrackInfo *track) { analyse(track); });
}

// What was cached with digests and without keys may equal any file that lacks digests. Either its keys are read, or,
// when such files are few beside it, all of these are read whole.
void AnalysisRun::lookAtUnknown()
{
    Files unknown;
    qsizetype withoutDigests = m_work.size();
    for (TrackInfo *track : std::as_const(m_cached)) {
        if (!track->keys.isKnown())
            unknown.append(track);
        else if (!hasWantedDigests(*track, m_options))
            ++withoutDigests;
    }
    if (withoutDigests == 0 || unknown.isEmpty())
        return;
    if (unknown.size() <= looksPerReading * withoutDigests) {
        m_total = unknown.size();
        forEach(unknown, [this](TrackInfo *track) { track->keys = readKeys(*track, &m_context.cancelFlag); });
    }
    if (std::any_of(unknown.cbegin(), unknown.cend(), [](const TrackInfo *track) { return !track->keys.isKnown(); }))
        m_copies.requireAll();
}

// A scan that was stopped, or had other methods, may have left possible copies without digests.
void AnalysisRun::addCached()
{
    for (TrackInfo *track : std::as_const(m_cached)) {
        if (track->keys.isKnown())
            m_work += m_copies.add(track);
    }
}

void AnalysisRun::analyse(TrackInfo *track)
{
    if ((track->flags & TrackFromCache) == 0)
        analyseNew(track);
    else
        *track = completeDigests(std::move(*track), m_options, &m_context.cancelFlag);
}

void AnalysisRun::analyseNew(TrackInfo *track)
{
    Files others;
    analyseFile(*track, m_options, &m_context.cancelFlag, [&] {
        others = m_copies.add(track);
        return others.removeOne(track);
    });
    for (TrackInfo *other : std::as_const(others)) {
        m_context.waitWhilePaused();
        *other = completeDigests(std::move(*other), m_options, &m_context.cancelFlag);
    }
}

void AnalysisRun::forEach(const Files &files, const std::function<void(TrackInfo *)> &read)
{
    const auto readOne = [&](TrackInfo *track) {
        read(track);
        ++m_done;
    };
    const auto report = [this] {
        const int done = m_done.load();
        m_context.progress(
            done, static_cast<int>(m_total),
            QCoreApplication::translate("epr::ScanController", "Analysed %1 of %2 files").arg(done).arg(m_total));
    };
    forEachFile(files, readOne, report, m_context);
}

Files membersWithoutDigests(QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, const ScanOptions &options)
{
    Files members;
    for (const MatchGroup &group : groups) {
        for (const qint32 member : group.members) {
            if (tracks.at(member).keys.isKnown() && !hasWantedDigests(tracks.at(member), options))
                members.append(&tracks[member]);
        }
    }
    return members;
}

} // namespace

QList<TrackInfo> analyseFiles(QList<TrackInfo> tracks, const ScanOptions &options, const StageContext &context)
{
    if (context.isCancelled())
        return tracks;
    const bool willDecode = options.detectAcoustic
        && std::any_of(tracks.cbegin(), tracks.cend(),
                       [&](const auto &track) { return !hasCompleteFingerprint(track, options.fingerprintEngine); });
    context.step(
        { .number = 3, .count = stepCount(options), .hasUnknownPace = willDecode, .toCompare = tracks.size() });
    context.phase(QCoreApplication::translate("epr::ScanController", "Reading tags and hashing"));
    AnalysisRun(tracks, options, context).run();
    return tracks;
}

bool completeMembers(QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, const ScanOptions &options,
                     AnalysisCache *cache, const StageContext &context)
{
    const Files members = membersWithoutDigests(tracks, groups, options);
    if (members.isEmpty())
        return true;
    context.phase(QCoreApplication::translate("epr::ScanController", "Completing digests"));
    std::atomic<int> done = 0;
    const auto read = [&](TrackInfo *track) {
        *track = completeDigests(std::move(*track), options, &context.cancelFlag);
        ++done;
    };
    const auto report = [&] {
        const int count = done.load();
        context.progress(count, static_cast<int>(members.size()),
                         QCoreApplication::translate("epr::ScanController", "Hashed %1 of %2 duplicate files")
                             .arg(count)
                             .arg(members.size()));
    };
    forEachFile(members, read, report, context);
    if (options.useCache)
        writeDigests(members, options, *cache, context);
    return membersWithoutDigests(tracks, groups, options).isEmpty();
}

} // namespace epr
