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
constexpr qsizetype filesPerProcess = 12; // the start of a process is then some 5 % of its work
constexpr qsizetype maxPathLetters = 30000; // of one command line, which on Windows has 32,767
constexpr auto patience = std::chrono::milliseconds(800); // with threads that do not answer, all of them together

// Has no container that could say how long it is: tools go by the bit rate of the first frames.
bool isBareStream(const QString &path)
{
    const QLatin1StringView endings[] { ".aac"_L1, ".mp3"_L1, ".mp2"_L1 };
    return std::ranges::any_of(endings, [&](auto ending) { return path.endsWith(ending, Qt::CaseInsensitive); });
}

// A file that fails here stays failed: fingerprints of the two engines cannot be compared with each other.
FingerprintResult resultOf(const FpcalcResult &tool, const QString &path = {})
{
    FingerprintResult result;
    result.fingerprint.words = tool.fingerprint;
    result.durationMs = tool.durationMs;
    result.durationIsGuess = isBareStream(path);
    result.error = tool.error;
    return result;
}

} // namespace

FingerprintWorker::FingerprintWorker(int seconds, bool preferFpcalc)
    : m_seconds(seconds)
    , m_preferFpcalc(preferFpcalc)
    , m_batch(preferFpcalc ? fpcalcPath() : QString(), seconds, toolTimeouts(seconds), m_isPaused)
{
}

// A file that is shorter than the analysed length stays alone: fpcalc 1.5.1 fails on it and has to be asked again. One
// of unknown length, too: see what FpcalcBatch does with the length.
void FingerprintWorker::processAll(QList<FingerprintJob> jobs)
{
    const auto isLong = [this](const FingerprintJob &job) { return job.durationMs / 1000 > m_seconds; };
    const qsizetype longJobs = std::stable_partition(jobs.begin(), jobs.end(), isLong) - jobs.begin();
    qsizetype done = 0;
    if (longJobs > 1)
        done = m_batch.run(jobs.first(longJobs), [this](int id, const auto &result) { finish(id, resultOf(result)); });
    const auto isToStop = [this] { return m_isPaused || QThread::currentThread()->isInterruptionRequested(); };
    for (; done < jobs.size() && !isToStop(); ++done)
        process(jobs.at(done).id, jobs.at(done).path);
    Q_EMIT finished(jobs.sliced(done));
}

void FingerprintWorker::process(int id, const QString &path)
{
    if (QThread::currentThread()->isInterruptionRequested())
        return;
    finish(id, m_preferFpcalc && hasFpcalc() ? resultOf(runFpcalc(path, m_seconds), path) : analyse(path));
}

void FingerprintWorker::finish(int id, FingerprintResult result)
{
    if (result.fingerprint.words.isEmpty() && result.error.isEmpty())
        result.error = tr("No decodable audio found");
    Q_EMIT completed(id, result);
}

FingerprintResult FingerprintWorker::analyse(const QString &path) const
{
    FingerprintResult result;
    Analyser analyser;
    QList<float> samples;
    QString error;
    bool hasRefused = false;
    if (decodeWithFfmpeg(path, analysisRate, m_seconds, samples, result.durationMs, error, &hasRefused)) {
        constexpr qint64 deviationMs = 500; // ffmpeg may stop a packet earlier
        analyser.feed(samples.constData(), samples.size());
        result.durationIsGuess = result.durationMs >= m_seconds * qint64 { 1000 } - deviationMs; // it goes on there
    } else if (!hasRefused || !mediaBackendIsFfmpeg()) { // which would say the same, or not a word
        decodeWithQt(*this, analyser, path, result.durationMs, error);
        result.durationIsGuess = isBareStream(path);
    }
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
    , m_mostAtOnce(preferFpcalc && hasFpcalc() ? filesPerProcess : 1)
{
    qRegisterMetaType<QList<FingerprintJob>>(); // a thread gets its files as an argument by name
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
    if (std::exchange(m_isPaused, paused) == paused)
        return;
    for (Lane &lane : m_lanes) {
        lane.worker->setPaused(paused);
        if (!paused && !lane.isBusy)
            dispatch(lane);
    }
}

void FingerprintPool::run(const QList<FingerprintJob> &jobs)
{
    if (jobs.isEmpty() || m_isCancelled)
        return;
    m_jobs = jobs;
    m_next = m_done = 0;
    QEventLoop loop;
    connect(this, &FingerprintPool::cancelled, &loop, &QEventLoop::quit);
    QObject batch; // takes the connections with it
    for (Lane &lane : m_lanes) {
        lane.isBusy = false;
        connect(
            lane.worker, &FingerprintWorker::completed, &batch,
            [this](int id, const FingerprintResult &result) { finishJob(id, result); }, Qt::QueuedConnection);
        connect(
            lane.worker, &FingerprintWorker::finished, &batch,
            [this, &lane, &loop](const QList<FingerprintJob> &left) {
                lane.isBusy = false;
                takeBack(left);
                dispatch(lane);
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
    return std::ranges::any_of(m_lanes, &Lane::isBusy) || (m_next < m_jobs.size() && !m_isCancelled);
}

// Fewer towards the end, so that no thread has files left while others have nothing to do.
QList<FingerprintJob> FingerprintPool::nextJobs()
{
    const qsizetype share = (m_jobs.size() - m_next) / (2 * static_cast<qsizetype>(m_lanes.size()));
    const qsizetype most = std::clamp<qsizetype>(share, 1, m_mostAtOnce);
    QList<FingerprintJob> jobs;
    qsizetype letters = 0;
    for (; jobs.size() < most; ++m_next) {
        letters += m_jobs.at(m_next).path.size() + 3; // quotation marks and a blank
        if (!jobs.isEmpty() && letters > maxPathLetters)
            break;
        jobs.append(m_jobs.at(m_next));
    }
    return jobs;
}

void FingerprintPool::dispatch(Lane &lane)
{
    if (m_next >= m_jobs.size() || m_isCancelled || m_isPaused)
        return;
    lane.isBusy = true;
    QMetaObject::invokeMethod(lane.worker, "processAll", Qt::QueuedConnection,
                              Q_ARG(QList<epr::FingerprintJob>, nextJobs()));
}

void FingerprintPool::finishJob(int id, const FingerprintResult &result)
{
    ++m_done;
    Q_EMIT completed(id, result);
    Q_EMIT progress(m_done, static_cast<int>(m_jobs.size()));
}

// The places of jobs that were handed out are free.
void FingerprintPool::takeBack(const QList<FingerprintJob> &jobs)
{
    m_next -= jobs.size();
    std::ranges::copy(jobs, m_jobs.begin() + m_next);
}

} // namespace epr
