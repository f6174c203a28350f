// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scancontroller.h"

#include "analysiscache.h"
#include "damagedcache.h"
#include "displaytext.h"
#include "fpcalc.h"
#include "scanstages.h"

#include <QElapsedTimer>

namespace epr {

namespace {

// What fpcalc and the built-in analysis make cannot be compared with each other, so the whole scan, its cache and its
// matching use the one that is really there.
FingerprintEngine engineFor(const ScanOptions &options)
{
    const bool fpcalc = options.fingerprintEngine == FingerprintEngine::Fpcalc && hasFpcalc();
    return fpcalc ? FingerprintEngine::Fpcalc : FingerprintEngine::BuiltIn;
}

} // namespace

ScanController::ScanController(QObject *parent)
    : QObject(parent)
{
}

ScanController::~ScanController() = default;

bool ScanController::isRunning() const
{
    return m_running.load() != 0;
}

void ScanController::cancel()
{
    m_cancelFlag.store(1);
}

void ScanController::setPaused(bool paused)
{
    m_pauseFlag.store(paused ? 1 : 0);
}

// A cancel is noticed before grouping, or when members of groups have yet to be hashed, or not at all: groups that are
// complete are worth showing.
void ScanController::start(const ScanOptions &wanted)
{
    if (m_running.exchange(1) != 0) { // the event polling of a running scan delivers queued calls
        Q_EMIT failed(tr("A scan is already running."));
        return;
    }
    m_cancelFlag.store(0);
    ScanOptions options = wanted;
    options.fingerprintEngine = engineFor(wanted);
    QElapsedTimer clock;
    clock.start();
    Q_EMIT started();

    const StageContext context = stageContext();
    options.useCache = wanted.useCache && openCache();
    FilteredTracks tracks;
    QList<MatchGroup> groups;
    const DiscoveredFiles files = discoverFiles(options, context);
    bool cancelled = context.isCancelled();
    if (!files.paths.isEmpty()) {
        tracks = analysedTracks(files.paths, options, context);
        cancelled = context.isCancelled();
        if (!cancelled) {
            tracks.kept = leaveOutSilence(std::move(tracks.kept), options, context);
            groups = groupDuplicates(tracks.kept, options, context);
            cancelled = !completeMembers(tracks.kept, groups, options, m_cache.get(), context);
            if (cancelled)
                groups.clear();
        }
    }
    const QList<TrackInfo> reported = reportableTracks(std::move(tracks.kept), cancelled);
    m_running.store(0);
    Q_EMIT problemsFound(files.problems);
    if (!files.problems.isEmpty())
        Q_EMIT foldersUnreadable(static_cast<int>(files.problems.size()));
    Q_EMIT finished(reported, groups, cancelled, clock.elapsed());
}

FilteredTracks ScanController::analysedTracks(const QStringList &paths, const ScanOptions &options,
                                              const StageContext &context)
{
    CheckedFiles checked = checkCache(paths, options, context);
    if (checked.isCacheDamaged)
        replaceDamagedCache();
    QList<TrackInfo> all = analyseFiles(std::move(checked.tracks), options, context);
    FilteredTracks tracks = filterShortFiles(std::move(all), options, context);
    tracks.kept = fingerprintFiles(std::move(tracks.kept), options, context);
    if (options.useCache)
        storeTracks(tracks, options, context);
    return tracks;
}

StageContext ScanController::stageContext()
{
    return { m_cancelFlag,
             [this](const QString &title) { Q_EMIT phaseChanged(title); },
             [this](int done, int total, const QString &detail) { Q_EMIT progress(done, total, detail); },
             [this](const QString &message) { Q_EMIT logMessage(message); },
             [this](const ScanStep &step) { Q_EMIT stepChanged(step); },
             &m_pauseFlag };
}

bool ScanController::openCache()
{
    if (!m_cache)
        m_cache = std::make_unique<AnalysisCache>();
    QString error;
    if (!m_cache->isOpen() && !m_cache->open(&error) && !(m_cache->isDamaged() && replaceDamagedCache())) {
        Q_EMIT logMessage(tr("Analysis cache unavailable (%1) - continuing without it.").arg(error));
        return false;
    }
    Q_EMIT logMessage(
        tr("Analysis cache: %1 entries at %2").arg(m_cache->count()).arg(nativePath(m_cache->filePath())));
    return true;
}

// The results that were read before the damage showed are stored in the new cache with the others.
bool ScanController::replaceDamagedCache()
{
    m_cache->close();
    const Result<QString> aside = setDamagedCacheAside(m_cache->filePath());
    Q_EMIT logMessage(
        aside ? tr("The analysis cache is damaged. It is kept as %1, and a new one is begun.").arg(nativePath(*aside))
              : tr("The analysis cache seems to be damaged but was left as it is (%1).").arg(aside.error()));
    return m_cache->open() && aside;
}

void ScanController::storeTracks(const FilteredTracks &tracks, const ScanOptions &options, const StageContext &context)
{
    writeCache(tracks, options, *m_cache, context);
    if (m_cache->isDamaged() && replaceDamagedCache())
        writeCache(tracks, options, *m_cache, context);
}

} // namespace epr
