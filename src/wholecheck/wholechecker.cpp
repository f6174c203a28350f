// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wholechecker.h"

#include "backgroundwork.h"
#include "displaytext.h"

#include <QDeadlineTimer>
#include <QSet>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <utility>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#endif

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int maxThreads = 8;
constexpr auto patience = std::chrono::milliseconds(800); // with all threads together
constexpr auto releasedFor = std::chrono::seconds(10);

/// Behind whatever else wants the processor. On Linux the tools that the thread starts inherit it.
void lowerPriority()
{
#ifdef Q_OS_LINUX
    constexpr int nice = 10;
    setpriority(PRIO_PROCESS, 0, nice); // of this thread alone
#else
    QThread::currentThread()->setPriority(QThread::LowestPriority);
#endif
}

} // namespace

CheckWorker::CheckWorker(int number, QString cachePath, std::shared_ptr<CheckSignals> state)
    : m_number(number)
    , m_cachePath(std::move(cachePath))
    , m_state(std::move(state))
{
}

void CheckWorker::check(const CheckItem &item)
{
    if (!std::exchange(m_isModest, true))
        lowerPriority();
    GroupCheck found;
    {
        CheckCache cache(m_cachePath);
        GroupChecker checker(item, m_state->stop, [this](const QString &path) { Q_EMIT fileBegun(m_number, path); });
        found = checker.run(cache);
    }
    m_state->isBusy = false;
    Q_EMIT done(m_number, found);
}

WholeChecker::WholeChecker(QString cachePath, QObject *parent)
    : QObject(parent)
    , m_cachePath(std::move(cachePath))
{
    qRegisterMetaType<CheckItem>("epr::CheckItem");
    qRegisterMetaType<CheckProgress>("epr::CheckProgress");
    qRegisterMetaType<GroupCheck>("epr::GroupCheck");
    m_sinceRelease.setSingleShot(true);
    m_sinceRelease.setInterval(releasedFor);
    connect(&m_sinceRelease, &QTimer::timeout, this, &WholeChecker::resume);
}

WholeChecker::~WholeChecker()
{
    for (const Slot &slot : m_slots) {
        slot.state->stop = true;
        slot.worker->disconnect(this);
        slot.thread->requestInterruption();
        slot.thread->quit();
    }
    const QDeadlineTimer deadline(patience);
    for (const Slot &slot : m_slots)
        waitOrLeave(slot.thread, std::chrono::milliseconds(deadline.remainingTime()));
}

bool WholeChecker::isIdle() const
{
    return std::ranges::none_of(m_slots, [](const Slot &slot) { return slot.item.has_value(); });
}

bool WholeChecker::isRunning() const
{
    return !m_waiting.isEmpty() || !m_released.isEmpty() || !isIdle();
}

void WholeChecker::makeThreads()
{
    const int count = std::clamp(QThread::idealThreadCount() / 2, 1, maxThreads);
    for (int number = static_cast<int>(m_slots.size()); number < count; ++number) {
        Slot slot;
        slot.state = std::make_shared<CheckSignals>();
        slot.worker = new CheckWorker(number, m_cachePath, slot.state);
        slot.thread = createWorkerThread(u"epr-check-%1"_s.arg(number), slot.worker, this);
        connect(slot.worker, &CheckWorker::fileBegun, this, &WholeChecker::noteFile);
        connect(slot.worker, &CheckWorker::done, this, &WholeChecker::take);
        slot.thread->start();
        m_slots.push_back(slot);
    }
}

void WholeChecker::check(const QList<CheckItem> &items)
{
    if (!isRunning()) {
        m_progress = {};
        m_wasStopped = false;
    }
    for (const CheckItem &item : items) {
        const auto sameGroup = [&item](const CheckItem &other) { return other.group == item.group; };
        m_progress.files += item.members.size();
        const auto waiting = std::ranges::find_if(m_waiting, sameGroup);
        if (waiting == m_waiting.end()) {
            ++m_progress.groups;
            m_waiting.append(item);
        } else {
            m_progress.files -= waiting->members.size();
            *waiting = item;
        }
    }
    dispatch();
    tellProgress();
}

void WholeChecker::dispatch()
{
    if (m_waiting.isEmpty() || m_isPaused)
        return;
    makeThreads();
    for (Slot &slot : m_slots) {
        if (slot.item || m_waiting.isEmpty())
            continue;
        slot.item = m_waiting.takeFirst();
        slot.filesBegun = 0;
        slot.ifStopped = IfStopped::DoNext;
        slot.state->stop = false;
        slot.state->isBusy = true;
        QMetaObject::invokeMethod(slot.worker, "check", Qt::QueuedConnection, Q_ARG(epr::CheckItem, *slot.item));
    }
}

void WholeChecker::noteFile(int number, const QString &path)
{
    ++m_slots[static_cast<std::size_t>(number)].filesBegun;
    m_progress.path = path;
    tellProgress();
}

void WholeChecker::take(int number, const GroupCheck &check)
{
    Slot &slot = m_slots[static_cast<std::size_t>(number)];
    if (check.isDone())
        report(*slot.item, check);
    else if (slot.ifStopped != IfStopped::Forget)
        putBack(slot);
    slot.item.reset();
    dispatch();
    tellProgress();
    endIfIdle();
}

void WholeChecker::report(const CheckItem &item, const GroupCheck &check)
{
    ++m_progress.groupsDone;
    m_progress.filesDone += item.members.size();
    for (qsizetype i = 0; i < item.members.size(); ++i)
        if (const QString error = check.measures.value(item.members.at(i)).error; !error.isEmpty())
            Q_EMIT logMessage(
                tr("Not checked over its whole length: %1 (%2)").arg(nativePath(item.tracks.at(i).path), error));
    Q_EMIT checked(item.group, check);
}

// A newer order for the group makes what was begun of no use.
void WholeChecker::putBack(const Slot &slot)
{
    const auto sameGroup = [&slot](const CheckItem &other) { return other.group == slot.item->group; };
    if (std::ranges::any_of(m_waiting, sameGroup)) {
        --m_progress.groups;
        m_progress.files -= slot.item->members.size();
    } else if (slot.ifStopped == IfStopped::DoLater) {
        m_released.append(*slot.item);
        m_sinceRelease.start();
    } else {
        m_waiting.prepend(*slot.item);
    }
}

void WholeChecker::resume()
{
    m_waiting += std::exchange(m_released, {});
    dispatch();
}

void WholeChecker::tellProgress()
{
    CheckProgress progress = m_progress;
    for (const Slot &slot : m_slots)
        if (slot.item)
            progress.filesDone += std::max<qint64>(slot.filesBegun - 1, 0);
    Q_EMIT progressChanged(progress);
}

void WholeChecker::endIfIdle()
{
    if (!isRunning())
        Q_EMIT finished(std::exchange(m_wasStopped, false));
}

void WholeChecker::setPaused(bool isPaused)
{
    m_isPaused = isPaused;
    for (const Slot &slot : m_slots)
        if (isPaused && slot.item)
            slot.state->stop = true;
    dispatch();
}

void WholeChecker::stop()
{
    if (!isRunning())
        return;
    m_wasStopped = true;
    m_waiting.clear();
    m_released.clear();
    for (Slot &slot : m_slots) {
        slot.ifStopped = IfStopped::Forget;
        slot.state->stop = true;
    }
    if (isIdle()) // paused, say: the end comes by a turn of the event loop all the same
        QMetaObject::invokeMethod(this, "endIfIdle", Qt::QueuedConnection);
}

bool WholeChecker::release(const QStringList &paths)
{
    const QSet<QString> wanted(paths.cbegin(), paths.cend()); // a clean-up may have tens of thousands
    const auto hasOne = [&wanted](const CheckItem &item) {
        return std::ranges::any_of(item.tracks, [&](const TrackInfo &track) { return wanted.contains(track.path); });
    };
    std::vector<const Slot *> asked;
    for (Slot &slot : m_slots) {
        if (!slot.item || !hasOne(*slot.item))
            continue;
        if (slot.ifStopped == IfStopped::DoNext)
            slot.ifStopped = IfStopped::DoLater;
        slot.state->stop = true;
        asked.push_back(&slot);
    }
    for (qsizetype i = m_waiting.size() - 1; i >= 0; --i)
        if (hasOne(m_waiting.at(i)))
            m_released.prepend(m_waiting.takeAt(i));
    if (!m_released.isEmpty())
        m_sinceRelease.start();
    const QDeadlineTimer deadline(patience);
    const auto isOpen = [](const Slot *slot) { return slot->state->isBusy.load(); };
    while (std::ranges::any_of(asked, isOpen) && !deadline.hasExpired())
        QThread::msleep(5);
    return std::ranges::none_of(asked, isOpen);
}

} // namespace epr
