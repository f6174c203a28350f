// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filelook.h"

#include "backgroundwork.h"
#include "lookworker.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QThread>

namespace epr {

using namespace Qt::StringLiterals;

QStringList outOfReach(const QStringList &folders)
{
    QStringList missing;
    for (const QString &path : folders) {
        const QDir folder(path);
        if (!folder.exists() || folder.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System))
            missing.append(path);
    }
    return missing;
}

bool isBelow(const QString &path, const QStringList &folders)
{
    return std::any_of(folders.cbegin(), folders.cend(), [&path](const QString &folder) {
        return path.startsWith(folder.endsWith(u'/') ? folder : folder + u'/');
    });
}

FileState stateOf(const TrackInfo &track, bool followLinks)
{
    const QFileInfo info(track.path);
    if (!info.exists())
        return FileState::Vanished;
    const bool isSame = info.isFile() && (followLinks || !info.isSymbolicLink()) && info.size() == track.size
        && info.lastModified() == track.mtime;
    return isSame ? FileState::AsScanned : FileState::Changed;
}

void LookWorker::look(const ReviewRecord &review, int number)
{
    constexpr int interval = 500; // ms
    FileLookSummary summary;
    summary.outOfReach = outOfReach(review.options.roots);
    QHash<qint32, FileState> states;
    QElapsedTimer clock;
    clock.start();
    for (const MatchGroup &group : review.groups) {
        for (const qint32 member : group.members) {
            if (*m_wanted != number)
                return;
            const FileState state = stateOf(review.tracks.at(member), review.options.followSymlinks);
            if (state != FileState::AsScanned)
                states.insert(member, state);
        }
        if (clock.hasExpired(interval)) {
            tell(review, std::exchange(states, {}), summary, number);
            clock.restart();
        }
    }
    tell(review, states, summary, number);
    Q_EMIT finished(summary, number);
}

// A drive that went in the meantime took its files with it, and may bring them back as they were.
void LookWorker::tell(const ReviewRecord &review, QHash<qint32, FileState> states, FileLookSummary &summary, int number)
{
    if (states.values().contains(FileState::Vanished))
        summary.outOfReach = outOfReach(review.options.roots);
    states.removeIf([&](const auto &entry) { return isBelow(review.tracks.at(entry.key()).path, summary.outOfReach); });
    for (const FileState state : std::as_const(states))
        ++(state == FileState::Changed ? summary.changed : summary.vanished);
    if (!states.isEmpty())
        Q_EMIT found(states, number);
}

FileLook::FileLook(QObject *parent)
    : QObject(parent)
{
    auto *worker = new LookWorker(m_number);
    m_thread = createWorkerThread(u"epr-look"_s, worker, this);
    connect(this, &FileLook::lookWanted, worker, &LookWorker::look);
    connect(worker, &LookWorker::found, this, &FileLook::take);
    connect(worker, &LookWorker::finished, this, &FileLook::finish);
    m_thread->start(QThread::LowPriority);
}

FileLook::~FileLook()
{
    stop();
    m_thread->quit();
    waitOrLeave(m_thread, std::chrono::seconds(1));
}

void FileLook::look(const ReviewRecord &review)
{
    stop();
    m_isLooking = true;
    Q_EMIT lookWanted(review, *m_number);
}

void FileLook::stop()
{
    ++*m_number;
    m_isLooking = false;
}

void FileLook::take(const QHash<qint32, FileState> &states, int number)
{
    if (number == *m_number)
        Q_EMIT found(states);
}

void FileLook::finish(const FileLookSummary &summary, int number)
{
    if (number != *m_number)
        return;
    m_isLooking = false;
    Q_EMIT finished(summary);
}

} // namespace epr
