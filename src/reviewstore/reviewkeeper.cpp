// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewkeeper.h"

#include "backgroundwork.h"
#include "review.h"
#include "storeworker.h"

#include <QThread>

#include <utility>

namespace epr {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

ReviewKeeper::ReviewKeeper(const Review &review, const QString &file, QObject *parent)
    : QObject(parent)
    , m_review(review)
{
    auto *worker = new StoreWorker(file);
    m_thread = createWorkerThread(u"epr-review"_s, worker, this);
    connect(this, &ReviewKeeper::openWanted, worker, &StoreWorker::open);
    connect(this, &ReviewKeeper::saveWanted, worker, &StoreWorker::save);
    connect(this, &ReviewKeeper::updateWanted, worker, &StoreWorker::update);
    connect(this, &ReviewKeeper::closeWanted, worker, &StoreWorker::close);
    connect(worker, &StoreWorker::opened, this, &ReviewKeeper::takeOpened);
    connect(worker, &StoreWorker::written, this, &ReviewKeeper::takeWritten);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &ReviewKeeper::flush);
    watch();
    m_thread->start();
}

// Where close() gave up waiting, the thread is nobody's.
ReviewKeeper::~ReviewKeeper()
{
    if (m_thread) {
        Q_EMIT closeWanted();
        waitOrLeave(m_thread);
    }
}

ReviewRecord ReviewKeeper::record() const
{
    ScanOptions options = m_origin.options;
    options.keeperPolicy = m_review.keeperOptions().keeperPolicy;
    options.keeperRules = m_review.keeperOptions().keeperRules;
    options.protectedFolders = m_review.keeperOptions().protectedFolders;
    ReviewRecord record { .options = options,
                          .scanned = m_origin.scanned,
                          .unreadableFolders = m_origin.unreadableFolders,
                          .files = m_review.totals().files,
                          .tracks = m_review.tracks(),
                          .groups = m_review.groups(),
                          .decisions = {},
                          .currentGroup = m_place.group,
                          .currentTrack = m_place.track };
    record.decisions.reserve(record.groups.size());
    for (int group = 0; group < record.groups.size(); ++group)
        record.decisions.append(m_review.decision(group));
    return record;
}

void ReviewKeeper::open()
{
    Q_EMIT openWanted();
}

void ReviewKeeper::keep(const ReviewOrigin &origin)
{
    m_origin = origin;
    m_isWatching = true;
    noteWhole();
    flush();
}

// What was decided until now is still for the file.
void ReviewKeeper::hold()
{
    flush();
    m_isWatching = false;
}

void ReviewKeeper::setPlace(const ReviewPlaceRecord &place)
{
    if (!m_isWatching || place == m_place)
        return;
    m_place = place;
    m_isPlaceChanged = true;
    schedule(1000ms);
}

void ReviewKeeper::flush()
{
    m_timer.stop();
    if (!m_isUsable)
        return;
    if (std::exchange(m_isWholeChanged, false)) {
        Q_EMIT saveWanted(record());
    } else if (m_isAllChanged || m_isPlaceChanged || !m_changed.isEmpty()) {
        QList<StoredDecision> decisions;
        for (int group = 0; m_isAllChanged && group < m_review.groups().size(); ++group)
            decisions.append(decisionOf(group));
        for (const int group : std::as_const(m_changed)) {
            if (!m_isAllChanged)
                decisions.append(decisionOf(group));
        }
        Q_EMIT updateWanted(decisions, m_place);
    }
    m_changed.clear();
    m_isAllChanged = m_isPlaceChanged = false;
}

// The thread ends itself when it has done with what it was given before.
void ReviewKeeper::close()
{
    if (!m_thread)
        return;
    flush();
    m_isWatching = false;
    Q_EMIT closeWanted();
    waitOrLeave(std::exchange(m_thread, nullptr), 10s);
}

void ReviewKeeper::watch()
{
    connect(&m_review, &Review::tickChanged, this, &ReviewKeeper::note);
    connect(&m_review, &Review::keeperChanged, this, &ReviewKeeper::note);
    connect(&m_review, &Review::checkChanged, this, &ReviewKeeper::note);
    connect(&m_review, &Review::statesChanged, this, [this](const QList<int> &groups) {
        for (const int group : groups)
            note(group);
    });
    connect(&m_review, &Review::ticksChanged, this, &ReviewKeeper::noteAll);
    connect(&m_review, &Review::fileStatesChanged, this, &ReviewKeeper::noteAll);
    connect(&m_review, &Review::keeperOptionsChanged, this, &ReviewKeeper::noteWhole);
    connect(&m_review, &Review::reset, this, &ReviewKeeper::noteWhole);
}

void ReviewKeeper::note(int group)
{
    m_changed.insert(group);
    schedule(500ms);
}

void ReviewKeeper::noteAll()
{
    m_isAllChanged = true;
    schedule(500ms);
}

void ReviewKeeper::noteWhole()
{
    m_isWholeChanged = true;
    schedule(500ms);
}

void ReviewKeeper::schedule(std::chrono::milliseconds delay)
{
    if (!m_isWatching) {
        m_changed.clear();
        m_isAllChanged = m_isWholeChanged = false;
        return;
    }
    if (!m_timer.isActive() || m_timer.remainingTimeAsDuration() > delay)
        m_timer.start(delay);
    if (!m_changed.isEmpty() || m_isAllChanged || m_isWholeChanged)
        Q_EMIT changed();
}

StoredDecision ReviewKeeper::decisionOf(int group) const
{
    const MatchGroup &record = m_review.groups().at(group);
    return { record.id, m_review.decision(group), record.check };
}

void ReviewKeeper::takeOpened(const ReviewRecord &record, bool isUsable, const QString &message)
{
    m_isUsable = isUsable;
    Q_EMIT opened(record, message);
}

// What was not written goes with the next change: all of it, since by then the file may be another one.
void ReviewKeeper::takeWritten(const QString &error)
{
    if (!error.isEmpty()) {
        m_isWholeChanged = m_isWatching;
        if (!m_hasFailed)
            Q_EMIT failed(tr("The review could not be stored: %1").arg(error));
    }
    m_hasFailed = !error.isEmpty();
}

} // namespace epr
