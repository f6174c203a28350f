// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fingerprintpool.h"

#include "analyser.h"
#include "backgroundwork.h"
#include "decoding.h"
#include "fpcalc.h"
#include "mediabackend.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int maxThreads = 16; // more only compete for the disk
constexpr int defaultSeconds = 120;
constexpr auto patience = std::chrono::milliseconds(800); // with threads that do not answer, all of them together

} // namespace

FingerprintWorker::FingerprintWorker(int seconds, bool preferFpcalc)
    : m_seconds(seconds)
    , m_preferFpcalc(preferFpcalc)
{
}

void FingerprintWorker::process(int id, const QString &path)
{
    if (QThread::currentThread()->isInterruptionRequested())
        return;
    FingerprintResult result = m_preferFpcalc && hasFpcalc() ? runTool(path) : analyse(path);
    if (result.fingerprint.words.isEmpty() && result.error.isEmpty())
        result.error = tr("No decodable audio found");
    Q_EMIT completed(id, result);
}

// A file that fails here stays failed: fingerprints of the two engines cannot be compared with each other.
FingerprintResult FingerprintWorker::runTool(const QString &path) const
{
    const FpcalcResult tool = runFpcalc(path, m_seconds);
    FingerprintResult result;
    result.fingerprint.words = tool.fingerprint;
    result.durationMs = tool.durationMs;
    result.error = tool.error;
    return result;
}

FingerprintResult FingerprintWorker::analyse(const QString &path) const
{
    FingerprintResult result;
    Analyser analyser;
    QList<float> samples;
    QString error;
    bool hasRefused = false;
    if (decodeWithFfmpeg(path, analysisRate, m_seconds, samples, result.durationMs, error, &hasRefused))
        analyser.feed(samples.constData(), samples.size());
    else if (!hasRefused || !mediaBackendIsFfmpeg()) // which would say the same, or not a word
        decodeWithQt(*this, analyser, path, result.durationMs, error);
    result.fingerprint.words = analyser.main().words();
    result.fingerprint.mask = analyser.main().masks();
    result.fingerprint.alternative = analyser.alternative().words();
    result.fingerprint.alternativeMask = analyser.alternative().masks();
    if (result.fingerprint.words.isEmpty())
        result.error = error;
    return result;
}

FingerprintPool::FingerprintPool(int threads, int seconds, bool preferFpcalc, QObject *parent)
    : QObject(parent)
{
    const int count = std::clamp(threads, 1, maxThreads);
    for (int i = 0; i < count; ++i)
        addLane(i, seconds > 0 ? seconds : defaultSeconds, preferFpcalc);
}

void FingerprintPool::addLane(int index, int seconds, bool preferFpcalc)
{
    auto *const worker = new FingerprintWorker(seconds, preferFpcalc);
    QThread *const thread = createWorkerThread(u"epr-fingerprint-%1"_s.arg(index), worker, this);
    thread->start();
    m_lanes.push_back({ thread, worker });
}

// Threads are told before any is waited for, so that their waits overlap. Their tools are gone within a moment; what
// remains stuck is in the system, and whoever pressed Stop does not wait for that.
FingerprintPool::~FingerprintPool()
{
    cancel();
    for (const Lane &lane : m_lanes)
        lane.thread->quit();
    const QDeadlineTimer deadline(patience);
    for (const Lane &lane : m_lanes)
        waitOrLeave(lane.thread, std::chrono::milliseconds(deadline.remainingTime()));
}

void FingerprintPool::cancel()
{
    m_isCancelled = true;
    for (const Lane &lane : m_lanes)
        lane.thread->requestInterruption();
    Q_EMIT cancelled({});
}

void FingerprintPool::setPaused(bool paused)
{
    if (std::exchange(m_isPaused, paused) == paused || paused)
        return;
    for (Lane &lane : m_lanes) {
        if (!lane.isBusy)
            dispatch(lane);
    }
}

void FingerprintPool::run(const QList<FingerprintJob> &jobs)
{
    if (jobs.isEmpty() || m_isCancelled)
        return;
    m_jobs = jobs;
    m_next = m_inFlight = m_done = 0;
    QEventLoop loop;
    connect(this, &FingerprintPool::cancelled, &loop, &QEventLoop::quit);
    QObject batch; // takes the connections with it
    for (Lane &lane : m_lanes) {
        lane.isBusy = false;
        connect(
            lane.worker, &FingerprintWorker::completed, &batch,
            [this, &lane, &loop](int id, const FingerprintResult &result) {
                finishJob(lane, id, result);
                if (!hasWork())
                    loop.quit();
            },
            Qt::QueuedConnection);
        dispatch(lane);
    }
    if (hasWork())
        loop.exec();
    m_jobs.clear();
}

bool FingerprintPool::hasWork() const
{
    return m_inFlight > 0 || (m_next < m_jobs.size() && !m_isCancelled);
}

void FingerprintPool::dispatch(Lane &lane)
{
    if (m_next >= m_jobs.size() || m_isCancelled || m_isPaused)
        return;
    lane.isBusy = true;
    const FingerprintJob &job = m_jobs.at(m_next++);
    ++m_inFlight;
    QMetaObject::invokeMethod(lane.worker, "process", Qt::QueuedConnection, Q_ARG(int, job.id),
                              Q_ARG(QString, job.path));
}

void FingerprintPool::finishJob(Lane &lane, int id, const FingerprintResult &result)
{
    lane.isBusy = false;
    --m_inFlight;
    ++m_done;
    Q_EMIT completed(id, result);
    Q_EMIT progress(m_done, static_cast<int>(m_jobs.size()));
    dispatch(lane);
}

} // namespace epr
