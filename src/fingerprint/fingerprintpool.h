// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fpcalcbatch.h"
#include "records.h"

#include <atomic>
#include <vector>

class QThread;

namespace epr {

/// Fingerprints files on the thread it lives on.
class FingerprintWorker final : public QObject {
    Q_OBJECT

public:
    /// seconds is how much of each file is analysed, at least 1. Without preferFpcalc, or without the tool, the
    /// built-in analysis is used.
    FingerprintWorker(int seconds, bool preferFpcalc);

    int seconds() const { return m_seconds; }

    /// To be called from any thread. While it is paused, processAll() begins no further file, nor do the tools it has
    /// started.
    void setPaused(bool paused) { m_isPaused = paused; }

public Q_SLOTS:
    void process(int id, const QString &path);

    /// Processes them all, several with one process of fpcalc where that can be, and ends with finished().
    void processAll(QList<epr::FingerprintJob> jobs);

Q_SIGNALS:
    void completed(int id, const epr::FingerprintResult &result);
    void finished(const QList<epr::FingerprintJob> &left);

private:
    void finish(int id, FingerprintResult result);
    FingerprintResult analyse(const QString &path) const;

    int m_seconds;
    bool m_preferFpcalc;
    std::atomic<bool> m_isPaused = false;
    FpcalcBatch m_batch;
};

/// Fingerprints batches of files on threads of its own, "epr-fingerprint-0" and so on. It is used on the thread that
/// made it.
class FingerprintPool final : public QObject {
    Q_OBJECT

public:
    /// 1 to 16 threads; seconds below 1 means 120.
    FingerprintPool(int threads, int seconds, bool preferFpcalc, QObject *parent = nullptr);
    ~FingerprintPool() override;

    /// Blocks in a local event loop until every file of the batch has reported. When its thread is told to quit, or the
    /// pool to cancel, it returns at once, and what is still being worked on is dropped.
    void run(const QList<FingerprintJob> &jobs);

    /// Ends the running batch and every one after it: the threads let go of what they are at.
    void cancel();

    /// A paused pool begins no further file. What the threads are at they finish, but one process that has several
    /// files is ended, and those it has not done with are taken back.
    void setPaused(bool paused);

Q_SIGNALS:
    /// Once for each file, as they finish.
    void completed(int id, const epr::FingerprintResult &result);
    /// After each completed().
    void progress(int done, int total);
    void cancelled(QPrivateSignal);

private:
    struct Lane {
        QThread *thread = nullptr;
        FingerprintWorker *worker = nullptr;
        bool isBusy = false;
    };

    void addLane(int index, int seconds, bool preferFpcalc);
    bool hasWork() const;
    QList<FingerprintJob> nextJobs();
    void dispatch(Lane &lane);
    void finishJob(int id, const FingerprintResult &result);
    void takeBack(const QList<FingerprintJob> &jobs);

    std::vector<Lane> m_lanes;
    QList<FingerprintJob> m_jobs;
    qsizetype m_next = 0; ///< index of the next job to hand out
    qsizetype m_mostAtOnce = 1; ///< jobs for one thread
    int m_done = 0;
    bool m_isCancelled = false;
    bool m_isPaused = false;
};

} // namespace epr
