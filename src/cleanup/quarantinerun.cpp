// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "quarantinerun.h"

#include "cleanup.h"
#include "cleanuplock.h"
#include "displaytext.h"
#include "filemove.h"
#include "nativefile.h"
#include "patience.h"

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
constexpr qsizetype maxNameLength = 255; // bytes, on Windows UTF-16 units
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

QString relativeDestination(const QString &path, const QStringList &scanRoots)
{
    for (const QString &root : scanRoots) {
        const QDir folder(QDir::cleanPath(QDir(root).absolutePath()));
        const QString relative = folder.relativeFilePath(path);
        if (relative != ".."_L1 && !relative.startsWith("../"_L1) && QDir::isRelativePath(relative))
            return folder.dirName() + u'/' + relative; // the top of a drive has no name
    }
    return QFileInfo(path).fileName();
}

/// As file systems count it.
qsizetype nameLength(const QString &name)
{
#ifdef Q_OS_WIN
    return name.size();
#else
    return QFile::encodeName(name).size();
#endif
}

/// Without as many of its last characters as it takes; empty if even that is too long.
QString shortened(QString name, const QString &ending)
{
    while (!name.isEmpty() && nameLength(name + ending) > maxNameLength)
        name.chop(name.back().isLowSurrogate() && name.size() > 1 ? 2 : 1);
    return name;
}

/// "folder/name (2).mp3" for "folder/name.mp3". A name that would be too long is cut before the number. What follows
/// the last full stop is then cut as well, if it is so long that nothing would be left of the rest.
QString numberedPath(const QString &path, int number)
{
    const QFileInfo info(path);
    const QString suffix = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    const QString count = u" (%1)"_s.arg(number);
    const QString name = shortened(info.completeBaseName(), count + suffix);
    if (name.isEmpty() && nameLength(info.fileName() + count) > maxNameLength)
        return info.path() + u'/' + shortened(info.fileName(), count) + count;
    return info.path() + u'/' + name + count + suffix;
}

QString journalMessage(const QString &reason)
{
    return QCoreApplication::translate("epr::Cleanup", "the undo journal cannot be written (%1)").arg(reason);
}

} // namespace

QString quarantineDestination(const QString &path, const QString &runFolder, const QStringList &scanRoots)
{
    const QString inside = runFolder + u'/';
    const QString destination = QDir::cleanPath(inside + relativeDestination(path, scanRoots));
    return destination.startsWith(inside) ? destination : inside + QFileInfo(path).fileName();
}

QString copyGone(const QString &path)
{
    return QCoreApplication::translate("epr::Cleanup",
                                       "%1 was left in place: no other copy of it is as it was scanned and can be "
                                       "read any more")
        .arg(nativePath(path));
}

QuarantineRun::QuarantineRun(const QStringList &paths, const QString &quarantineRoot, const QStringList &scanRoots,
                             CleanupLock &lock)
    : m_paths(paths)
    , m_scanRoots(scanRoots)
    , m_lock(lock)
{
    m_manifest.mode = removalModeLabel(RemovalMode::Quarantine);
    m_manifest.quarantineRoot = quarantineRoot;
}

std::optional<QString> QuarantineRun::move(qsizetype index, qint64 size, const MayGoFn &mayGo, Patience &patience)
{
    const QString &path = m_paths.at(index);
    if (!path.isValidUtf16()) {
        return QCoreApplication::translate("epr::Cleanup", "Could not move %1: an undo could not find it by its name")
            .arg(nativePath(path));
    }
    Result<> moved = prepare(index);
    if (moved) {
        ManifestEntry entry = m_planned.take(index);
        entry.size = size;
        moved = moveAsPlanned(&entry, patience);
        if (moved && !mayGo(path))
            return moveBack(entry);
        if (moved) {
            m_manifest.entries.append(entry);
            return std::nullopt;
        }
    }
    return withReason(QCoreApplication::translate("epr::Cleanup", "Could not move %1").arg(nativePath(path)),
                      moved.error());
}

// The copy that was to stay went in the very moment: another program took it, or both were one file by two ways.
std::optional<QString> QuarantineRun::moveBack(const ManifestEntry &entry)
{
    Patience patience; // that nobody ends
    const Result<MoveOutcome> back = moveFile(entry.to, entry.from, m_notes, patience);
    if (back == MoveOutcome::Moved)
        return copyGone(entry.from);
    m_manifest.entries.append(entry);
    return withReason(
        QCoreApplication::translate("epr::Cleanup", "The last copy of %1 is now %2 and could not be moved back")
            .arg(nativePath(entry.from), nativePath(entry.to)),
        back ? QString() : back.error());
}

Result<> QuarantineRun::prepare(qsizetype index)
{
    if (!m_failure.isEmpty())
        return failure(m_failure);
    if (m_manifestPath.isEmpty()) {
        if (Result<> begun = begin(); !begun)
            return begun;
    } else if (!QFileInfo(m_runFolder).isDir()) {
        // Of a drive that goes, an empty folder stays: what is moved there now is hidden when the drive comes back.
        return endRun(QCoreApplication::translate("epr::Cleanup", "the quarantine folder %1 is gone")
                          .arg(nativePath(m_runFolder)));
    }
    if (!m_planned.contains(index)) {
        if (Result<> planned = planFrom(index); !planned)
            return planned;
    }
    return m_planned.contains(index) ? Result<>() : failure({}); // it may have vanished this very moment
}

Result<> QuarantineRun::begin()
{
    // A list with half a character in its paths could not be read again.
    const QString &root = m_manifest.quarantineRoot;
    const Result<> made = root.isEmpty() || !root.isValidUtf16() ? failure({}) : makeFolders(QDir(root).absolutePath());
    if (!made) {
        const QString message = QCoreApplication::translate("epr::Cleanup", "the quarantine folder %1 cannot be made");
        return endRun(withReason(message.arg(nativePath(root)), made.error()));
    }
    if (const Result<> locked = m_lock.takeQuarantine(root); !locked)
        return endRun(locked.error());
    const QDateTime now = QDateTime::currentDateTime();
    m_manifest.createdAt = now.toString(Qt::ISODate);
    const QString timestamp = now.toString(u"yyyyMMdd-HHmmss"_s);
    for (int number = 1; number <= maxRunsPerSecond; ++number) {
        const Result<bool> claimed = claim(runName(timestamp, number));
        if (!claimed)
            return endRun(claimed.error());
        if (*claimed)
            return {};
    }
    return endRun(QCoreApplication::translate("epr::Cleanup", "too many clean-ups at once"));
}

// Takes the name for this run alone: journal and folder are made only if they are not there yet. False means that
// another run has the name.
Result<bool> QuarantineRun::claim(const QString &runName)
{
    const QString manifestPath = QDir(undoDirectory()).filePath(u"undo-%1.json"_s.arg(runName));
    const QString journalPath = UndoJournal::pathFor(manifestPath);
    const QString runFolder = QDir(QDir(m_manifest.quarantineRoot).absolutePath()).filePath(runName);
    if (entryExists(manifestPath) || entryExists(journalPath) || entryExists(runFolder))
        return false;

    const QString cannotWrite = QCoreApplication::translate("epr::Cleanup", "no undo manifest can be written (%1)");
    if (const Result<> created = m_journal.create(journalPath); !created) {
        if (entryExists(journalPath))
            return false;
        return failure(cannotWrite.arg(created.error()));
    }
    // Another run may have come and gone since the look at the names.
    const Result<> made = entryExists(manifestPath) ? failure({}) : nativefile::makeFolder(runFolder);
    if (!made) {
        m_journal.remove();
        if (entryExists(manifestPath) || entryExists(runFolder))
            return false;
        const QString message = QCoreApplication::translate("epr::Cleanup", "the folder %1 cannot be made");
        return failure(withReason(message.arg(nativePath(runFolder)), made.error()));
    }
    if (const Result<> written = writeManifest(manifestPath, m_manifest); !written) {
        m_journal.remove();
        QDir().rmdir(runFolder);
        return failure(cannotWrite.arg(written.error()));
    }
    m_manifestPath = manifestPath;
    m_runFolder = runFolder;
    return true;
}

/// Chooses where the next files go and has the journal note it down.
Result<> QuarantineRun::planFrom(qsizetype first)
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
    const Result<> noted = m_journal.appendIntended(moves);
    return noted ? noted : endRun(journalMessage(noted.error()));
}

Result<> QuarantineRun::moveAsPlanned(ManifestEntry *entry, Patience &patience)
{
    for (int tries = 0; tries < maxOccupied; ++tries) {
        const Result<MoveOutcome> outcome = moveFile(entry->from, entry->to, m_notes, patience);
        if (!outcome)
            return failure(outcome.error());
        if (*outcome == MoveOutcome::Moved)
            return {};
        if (Result<> replanned = replan(entry); !replanned)
            return replanned;
    }
    return failure({});
}

/// Something took the new name after it was chosen.
Result<> QuarantineRun::replan(ManifestEntry *entry)
{
    const QString occupied = entry->to;
    entry->to = freeDestination(quarantineDestination(entry->from, m_runFolder, m_scanRoots));
    const Result<> noted = m_journal.appendReplaced(occupied, *entry);
    return noted ? noted : endRun(journalMessage(noted.error()));
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

Result<> QuarantineRun::endRun(const QString &reason)
{
    m_failure = reason;
    return failure(reason);
}

std::optional<QString> QuarantineRun::finish()
{
    if (m_manifestPath.isEmpty())
        return std::nullopt;
    if (m_manifest.entries.isEmpty()) {
        m_journal.remove();
        removeManifest(std::exchange(m_manifestPath, QString()));
        QDir().rmdir(m_runFolder);
        return std::nullopt;
    }
    if (const Result<> written = writeManifest(m_manifestPath, m_manifest); !written) {
        return QCoreApplication::translate(
                   "epr::Cleanup", "The undo manifest %1 could not be completed (%2); its journal serves instead")
            .arg(nativePath(m_manifestPath), written.error());
    }
    m_journal.remove();
    return std::nullopt;
}

} // namespace epr
