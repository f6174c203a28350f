// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanuphistory.h"

#include "cleanuplock.h"
#include "displaytext.h"
#include "filemove.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <limits>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString nameOf(const QString &manifestPath)
{
    return QFileInfo(manifestPath).fileName();
}

/// The part that the list of a run and that of its rest have in common: "undo-20260301-210500".
QString runNameOf(const QString &manifestName)
{
    constexpr qsizetype length = 20;
    return manifestName.first(std::min(length, manifestName.size()));
}

/// The time in the name, in ms since 1970; 0 if there is none.
qint64 timeOf(const QString &manifestName)
{
    const QDateTime time = QDateTime::fromString(runNameOf(manifestName).mid(5), u"yyyyMMdd-HHmmss"_s);
    return time.isValid() ? time.toMSecsSinceEpoch() : 0;
}

using Fates = QHash<QString, FileFate>;

Result<Fates> removedBy(const QString &manifestPath)
{
    Fates fates;
    if (manifestPath.isEmpty())
        return fates;
    const Result<UndoManifest> read = readManifest(
        manifestPath, [&fates](const ManifestEntry &entry) { fates.insert(entry.from, FileFate::Removed); });
    return read ? Result<Fates>(fates)
                : failure(QCoreApplication::translate("epr::CleanupHistory", "The list %1 cannot be read: %2")
                              .arg(nativePath(manifestPath), read.error()));
}

/// The lists that no run is known to have.
QStringList unknownLists(const QList<CleanupRun> &runs)
{
    QSet<QString> known;
    for (const CleanupRun &run : runs)
        known.insert(run.manifest);
    QStringList lists = listUndoManifests();
    lists.removeIf([&known](const QString &path) { return known.contains(nameOf(path)); });
    return lists;
}

QString pathOf(const CleanupRun &run)
{
    return run.manifest.isEmpty() ? QString() : QDir(undoDirectory()).filePath(run.manifest);
}

/// Where the list of a run, or of what is left of it, is now.
QString currentList(const CleanupRun &run, const QStringList &unknown)
{
    if (run.manifest.isEmpty() || QFileInfo::exists(pathOf(run)))
        return pathOf(run);
    const auto rest = std::ranges::find_if(
        unknown, [&run](const QString &path) { return runNameOf(nameOf(path)) == runNameOf(run.manifest); });
    return rest == unknown.cend() ? QString() : *rest;
}

} // namespace

CleanupHistory::CleanupHistory(const QString &file)
    : m_store(file)
{
}

Result<qint64> CleanupHistory::begin(RemovalMode mode, const QStringList &roots, const QList<RecordedFile> &files)
{
    CleanupRun run;
    run.id = QDateTime::currentMSecsSinceEpoch();
    run.mode = mode;
    run.roots = roots;
    return m_store.add(run, files);
}

Result<> CleanupHistory::finish(qint64 run, const RemovalResult &result)
{
    if (!result.refusal.isEmpty())
        return m_store.remove(run);
    CleanupRun ended;
    ended.id = run;
    ended.mode = result.manifestPath.isEmpty() ? RemovalMode::Delete : RemovalMode::Quarantine;
    ended.state = RunState::Done;
    ended.errors = result.errors;
    if (result.succeeded == 0)
        return m_store.settle(ended, {}, FileFate::Stayed);
    return settle(ended, result.manifestPath, FileFate::Stayed);
}

Result<> CleanupHistory::follow(const QString &manifestPath, FileFate fate)
{
    const Result<QList<CleanupRun>> runs = m_store.runs();
    if (!runs)
        return failure(runs.error());
    const auto found = std::ranges::find(*runs, nameOf(manifestPath), &CleanupRun::manifest);
    if (found == runs->cend())
        return {};
    CleanupRun run = *found;
    const QString list = currentList(run, unknownLists(*runs));
    Result<Fates> fates = removedBy(list);
    const Result<QList<RecordedFile>> files = m_store.files(run.id, 0, std::numeric_limits<int>::max());
    if (!fates || !files)
        return failure(fates ? files.error() : fates.error());
    for (const RecordedFile &file : *files) {
        if (fate == FileFate::Back && file.fate == FileFate::Removed && !entryExists(file.path)
            && !fates->contains(file.path))
            fates->insert(file.path, FileFate::Lost); // an undo gives up what has gone from the quarantine
    }
    run.manifest = list.isEmpty() ? QString() : nameOf(list);
    return m_store.settle(run, *fates, fate);
}

QStringList CleanupHistory::refresh(const CleanupProgressFn &progress)
{
    CleanupLock lock; // while another window cleans up, its run looks as if it had been killed
    const Result<QList<CleanupRun>> runs = m_store.runs();
    if (!runs)
        return { runs.error() };
    if (!lock.take({}) || !lock.isCertain())
        return {};
    QStringList unknown = unknownLists(*runs);
    QStringList messages;
    const auto note = [&messages](const Result<> &done) {
        if (!done)
            messages.append(done.error());
    };
    qint64 nextBegan = std::numeric_limits<qint64>::max();
    for (const CleanupRun &run : *runs) {
        if (run.state == RunState::Begun)
            note(settleInterrupted(run, unknown, nextBegan));
        else if (!run.manifest.isEmpty() && !QFileInfo::exists(pathOf(run)))
            note(settle(run, currentList(run, unknown), fateElsewhere(run)));
        nextBegan = run.id;
    }
    unknown = unknownLists(m_store.runs().value_or(*runs));
    for (qsizetype i = 0; i < unknown.size() && (!progress || progress(i, unknown.size(), unknown.at(i))); ++i)
        note(takeIn(unknown.at(i)));
    return messages;
}

Result<> CleanupHistory::settle(CleanupRun run, const QString &manifestPath, FileFate others)
{
    if (run.mode == RemovalMode::Quarantine) {
        const Result<Fates> fates = removedBy(manifestPath);
        if (!fates)
            return failure(fates.error());
        run.manifest = manifestPath.isEmpty() ? QString() : nameOf(manifestPath);
        return m_store.settle(run, *fates, others);
    }
    Fates fates;
    const Result<QList<RecordedFile>> files = m_store.files(run.id, 0, std::numeric_limits<int>::max());
    if (!files)
        return failure(files.error());
    for (const RecordedFile &file : *files) {
        if (file.fate != FileFate::Planned || entryExists(file.path))
            continue;
        if (QFileInfo(QFileInfo(file.path).path()).isDir())
            fates.insert(file.path, FileFate::Removed);
        else if (run.state == RunState::Interrupted)
            return {}; // its drive may be away: nothing is known until it is back
    }
    return m_store.settle(run, fates, others);
}

// Its list has been written since it began, and before any later run did.
Result<> CleanupHistory::settleInterrupted(CleanupRun run, const QStringList &unknown, qint64 nextBegan)
{
    run.state = RunState::Interrupted;
    constexpr qint64 second = 1000; // names have no parts of it
    QSet<QString> recorded;
    for (const RecordedFile &file :
         m_store.files(run.id, 0, std::numeric_limits<int>::max()).value_or(QList<RecordedFile>()))
        recorded.insert(file.path);
    const auto own = std::ranges::find_if(unknown, [&](const QString &path) {
        const qint64 time = timeOf(nameOf(path));
        if (time < run.id / second * second || time >= nextBegan)
            return false;
        const Result<Fates> fates = removedBy(path);
        return !fates || std::any_of(fates->keyBegin(), fates->keyEnd(), [&recorded](const QString &from) {
            return recorded.contains(from);
        });
    });
    return settle(run, own == unknown.cend() ? QString() : *own, FileFate::Stayed);
}

// Its list was used up by an undo, or by a purge that was killed before the record was written.
FileFate CleanupHistory::fateElsewhere(const CleanupRun &run)
{
    const QList<RecordedFile> files =
        m_store.files(run.id, 0, std::numeric_limits<int>::max()).value_or(QList<RecordedFile>());
    const auto removed = std::ranges::find(files, FileFate::Removed, &RecordedFile::fate);
    return removed == files.cend() || entryExists(removed->path) ? FileFate::Back : FileFate::Purged;
}

// A list of which nothing else is known: a run of an earlier version, or one whose record was lost.
Result<> CleanupHistory::takeIn(const QString &manifestPath)
{
    QList<RecordedFile> files;
    const Result<UndoManifest> manifest = readManifest(manifestPath, [&files](const ManifestEntry &entry) {
        if (!entry.from.isEmpty())
            files.append({ 0, entry.from, entry.size, MatchType::Unmatched, FileFate::Removed });
    });
    if (!manifest)
        return failure(QCoreApplication::translate("epr::CleanupHistory", "The list %1 cannot be read: %2")
                           .arg(nativePath(manifestPath), manifest.error()));
    CleanupRun run;
    const QDateTime created = QDateTime::fromString(manifest->createdAt, Qt::ISODate);
    run.id = created.isValid() ? created.toMSecsSinceEpoch() : timeOf(nameOf(manifestPath));
    run.state = QFileInfo::exists(UndoJournal::pathFor(manifestPath)) ? RunState::Interrupted : RunState::Done;
    run.manifest = nameOf(manifestPath);
    const Result<qint64> added = m_store.add(run, files);
    if (!added)
        return failure(added.error());
    run.id = *added;
    return m_store.settle(run, {}, FileFate::Removed);
}

Result<> followRecorded(const QString &manifestPath, FileFate fate)
{
    CleanupHistory history;
    const Result<> opened = history.open();
    return opened ? history.follow(manifestPath, fate) : opened;
}

bool isInQuarantine(const CleanupRun &run)
{
    return !run.manifest.isEmpty() && run.files.value(FileFate::Removed) > 0;
}

} // namespace epr
