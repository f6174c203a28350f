// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fileproblem.h"
#include "progress.h"
#include "records.h"

#include <atomic>
#include <memory>

namespace epr {

class AnalysisCache;
struct FilteredTracks;
struct StageContext;

/// Runs a scan from folders to duplicate groups on the thread it lives on and reports through signals. The group
/// members are indexes into the track list, which is in discovery order.
class ScanController final : public QObject {
    Q_OBJECT

public:
    explicit ScanController(QObject *parent = nullptr);
    ~ScanController() override;

    bool isRunning() const; ///< may be asked from any thread

Q_SIGNALS:
    void started();
    void phaseChanged(const QString &phase);
    void progress(int done, int total, const QString &detail);
    void logMessage(const QString &message);
    void finished(const QList<epr::TrackInfo> &tracks, const QList<epr::MatchGroup> &groups, bool cancelled,
                  qint64 elapsedMs);
    void failed(const QString &error); ///< a scan could not run at all
    void stepChanged(const epr::ScanStep &step); ///< before the step's phaseChanged()
    void problemsFound(const QList<epr::FileProblem> &folders); ///< before foldersUnreadable(), also if there are none
    void foldersUnreadable(int count); ///< just before finished(), when files may be missing from the tracks

public Q_SLOTS:
    void start(const epr::ScanOptions &options);
    void cancel(); ///< may be called from any thread
    void setPaused(bool paused); ///< from any thread; outlasts a scan. What is being read is read to its end

private:
    FilteredTracks analysedTracks(const QStringList &paths, const ScanOptions &options, const StageContext &context);
    StageContext stageContext();
    bool openCache();
    bool replaceDamagedCache();
    void storeTracks(const FilteredTracks &tracks, const ScanOptions &options, const StageContext &context);

    std::unique_ptr<AnalysisCache> m_cache; ///< made by the first scan that wants it, kept open for later ones
    std::atomic<qint32> m_cancelFlag = 0;
    std::atomic<qint32> m_pauseFlag = 0;
    std::atomic<qint32> m_running = 0;
};

} // namespace epr
