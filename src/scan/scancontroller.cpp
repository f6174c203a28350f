// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scancontroller.h"

#include "analysiscache.h"
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

// A cancel is noticed before grouping or not at all: the groups that have been found by then are worth showing.
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
        QList<TrackInfo> all = checkCache(files.paths, options, context);
        all = analyseFiles(std::move(all), options, context);
        tracks = filterShortFiles(std::move(all), options, context);
        tracks.kept = fingerprintFiles(std::move(tracks.kept), options, context);
        if (options.useCache)
            writeCache(tracks, options, *m_cache, context);
        cancelled = context.isCancelled();
        if (!cancelled)
            groups = groupDuplicates(tracks.kept, options, context);
    }
    const QList<TrackInfo> reported = reportableTracks(std::move(tracks.kept), cancelled);
    m_running.store(0);
    if (files.unreadableFolders > 0)
        Q_EMIT foldersUnreadable(files.unreadableFolders);
    Q_EMIT finished(reported, groups, cancelled, clock.elapsed());
}

StageContext ScanController::stageContext()
{
    return { m_cancelFlag, [this](const QString &title) { Q_EMIT phaseChanged(title); },
             [this](int done, int total, const QString &detail) { Q_EMIT progress(done, total, detail); },
             [this](const QString &message) { Q_EMIT logMessage(message); } };
}

bool ScanController::openCache()
{
    if (!m_cache)
        m_cache = std::make_unique<AnalysisCache>();
    QString error;
    if (!m_cache->isOpen() && !m_cache->open(&error)) {
        Q_EMIT logMessage(tr("Analysis cache unavailable (%1) - continuing without it.").arg(error));
        return false;
    }
    Q_EMIT logMessage(tr("Analysis cache: %1 entries at %2").arg(m_cache->count()).arg(m_cache->filePath()));
    return true;
}

} // namespace epr
