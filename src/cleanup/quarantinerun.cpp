// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "quarantinerun.h"

#include "filemove.h"
#include "quarantinepath.h"
#include "removal.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype movesPerJournalWrite = 256; // one wait for the disk, some milliseconds, for so many files
constexpr int maxRunsPerSecond = 99;
constexpr int maxOccupied = 1000; // in a row, for one file: then it is no coincidence

// Sorts behind the plain name, so that the list of manifests stays in order of time.
QString runName(const QString &timestamp, int number)
{
    return number == 1 ? timestamp : u"%1_%2"_s.arg(timestamp).arg(number, 2, 10, QLatin1Char('0'));
}

// The path as it is to be found again later, from whatever folder the program then works in.
QString lastingPath(const QString &path)
{
    if (QDir::isAbsolutePath(path) && QDir::cleanPath(path) == path)
        return path;
    const QFileInfo info(path);
    return QDir(info.canonicalPath()).filePath(info.fileName());
}

} // namespace

QuarantineRun::QuarantineRun(const QStringList &paths, const QString &quarantineRoot, const QStringList &scanRoots)
    : m_paths(paths)
    , m_scanRoots(scanRoots)
{
    m_manifest.mode = removalModeLabel(RemovalMode::Quarantine);
    m_manifest.quarantineRoot = quarantineRoot;
}

bool QuarantineRun::move(qsizetype index, qint64 size, QString *error)
{
    const QString &path = m_paths.at(index);
    if (!path.isValidUtf16()) {
        *error = QCoreApplication::translate("epr::Cleanup", "Could not move %1: an undo could not find it by its name")
                     .arg(path);
        return false;
    }
    if (prepare(index)) {
        ManifestEntry entry = m_planned.take(index);
        entry.size = size;
        if (moveAsPlanned(&entry)) {
            m_manifest.entries.append(entry);
            return true;
        }
    }
    *error = QCoreApplication::translate("epr::Cleanup", "Could not move %1").arg(path);
    if (!m_failure.isEmpty())
        *error += ": "_L1 + m_failure;
    return false;
}

bool QuarantineRun::prepare(qsizetype index)
{
    if (!m_failure.isEmpty())
        return false;
    if (m_manifestPath.isEmpty() && !begin())
        return false;
    return m_planned.contains(index) || (planFrom(index) && m_planned.contains(index));
}

bool QuarantineRun::begin()
{
    if (m_manifest.quarantineRoot.isEmpty() || !QDir().mkpath(m_manifest.quarantineRoot)) {
        return fail(QCoreApplication::translate("epr::Cleanup", "the quarantine folder %1 cannot be made")
                        .arg(m_manifest.quarantineRoot));
    }
    const QDateTime now = QDateTime::currentDateTime();
    m_manifest.createdAt = now.toString(Qt::ISODate);
    const QString timestamp = now.toString(u"yyyyMMdd-HHmmss"_s);
    for (int number = 1; number <= maxRunsPerSecond && m_failure.isEmpty(); ++number) {
        if (claim(runName(timestamp, number)))
            return true;
    }
    return m_failure.isEmpty() && fail(QCoreApplication::translate("epr::Cleanup", "too many clean-ups at once"));
}

// Takes the name for this run alone: journal and folder are made only if they are not there yet. False without a
// failure means that another run has the name.
bool QuarantineRun::claim(const QString &runName)
{
    const QString manifestPath = QDir(undoDirectory()).filePath(u"undo-%1.json"_s.arg(runName));
    const QString journalPath = UndoJournal::pathFor(manifestPath);
    const QString runFolder = QDir(QDir(m_manifest.quarantineRoot).absolutePath()).filePath(runName);
    if (entryExists(manifestPath) || entryExists(journalPath) || entryExists(runFolder))
        return false;

    const QString cannotWrite = QCoreApplication::translate("epr::Cleanup", "no undo manifest can be written (%1)");
    if (!m_journal.create(journalPath))
        return !entryExists(journalPath) && fail(cannotWrite.arg(m_journal.errorString()));
    QString error;
    // Another run may have come and gone since the look at the names.
    if (entryExists(manifestPath) || !QDir().mkdir(runFolder)) {
        m_journal.remove();
        return !entryExists(manifestPath) && !entryExists(runFolder)
            && fail(QCoreApplication::translate("epr::Cleanup", "the folder %1 cannot be made").arg(runFolder));
    }
    if (!writeManifest(manifestPath, m_manifest, &error)) {
        m_journal.remove();
        QDir().rmdir(runFolder);
        return fail(cannotWrite.arg(error));
    }
    m_manifestPath = manifestPath;
    m_runFolder = runFolder;
    return true;
}

/// Chooses where the next files go and has the journal note it down.
bool QuarantineRun::planFrom(qsizetype first)
{
    const qsizetype end = std::min(first + movesPerJournalWrite, m_paths.size());
    QList<ManifestEntry> moves;
    QSet<QString> planned;
    for (qsizetype index = first; index < end; ++index) {
        const QString &path = m_paths.at(index);
        const QFileInfo info(path);
        // A path that comes twice is planned again when its turn comes, should there be a file again by then.
        if (m_planned.contains(index) || planned.contains(path) || !info.exists() || !path.isValidUtf16())
            continue;
        planned.insert(path);
        const QString from = lastingPath(path);
        const QString wanted = quarantineDestination(from, m_runFolder, m_scanRoots);
        moves.append({ from, freeDestination(wanted), info.isSymLink() ? 0 : info.size() });
        m_planned.insert(index, moves.last());
    }
    if (m_journal.appendIntended(moves))
        return true;
    return fail(QCoreApplication::translate("epr::Cleanup", "the undo journal cannot be written (%1)")
                    .arg(m_journal.errorString()));
}

bool QuarantineRun::moveAsPlanned(ManifestEntry *entry)
{
    for (int tries = 0; tries < maxOccupied; ++tries) {
        const MoveOutcome outcome = moveFile(entry->from, entry->to);
        if (outcome != MoveOutcome::Occupied)
            return outcome == MoveOutcome::Moved;
        if (!replan(entry))
            return false;
    }
    return false;
}

/// Something took the new name after it was chosen.
bool QuarantineRun::replan(ManifestEntry *entry)
{
    const QString occupied = entry->to;
    entry->to = freeDestination(quarantineDestination(entry->from, m_runFolder, m_scanRoots));
    if (m_journal.appendReplaced(occupied, *entry))
        return true;
    return fail(QCoreApplication::translate("epr::Cleanup", "the undo journal cannot be written (%1)")
                    .arg(m_journal.errorString()));
}

// Thousands of files may want one name. The numbers below the last one given out are not tried again: the run folder is
// this run's own.
QString QuarantineRun::freeDestination(const QString &wanted)
{
    QString candidate = wanted;
    while (m_taken.contains(candidate) || entryExists(candidate)) {
        int &number = m_nextNumber.insert(wanted, m_nextNumber.value(wanted, 2)).value();
        candidate = numberedPath(wanted, number++);
    }
    m_taken.insert(candidate);
    return candidate;
}

bool QuarantineRun::fail(const QString &reason)
{
    m_failure = reason;
    return false;
}

QString QuarantineRun::finish(QString *error)
{
    if (m_manifestPath.isEmpty())
        return {};
    if (m_manifest.entries.isEmpty()) {
        m_journal.remove();
        removeManifest(m_manifestPath);
        QDir().rmdir(m_runFolder);
        return {};
    }
    QString reason;
    if (writeManifest(m_manifestPath, m_manifest, &reason)) {
        m_journal.remove();
    } else {
        *error = QCoreApplication::translate(
                     "epr::Cleanup", "The undo manifest %1 could not be completed (%2); its journal serves instead")
                     .arg(m_manifestPath, reason);
    }
    return m_manifestPath;
}

} // namespace epr
