// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanup.h"

#include "cleanuplock.h"
#include "displaytext.h"
#include "filemove.h"
#include "hashing.h"
#include "nativefile.h"
#include "patience.h"
#include "removalguard.h"
#include "traces.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// Whoever edits a manifest may write anything, but a path that means different files at different times is not
// followed.
bool isPlainAbsolute(const QString &path)
{
    return QDir::isAbsolutePath(path) && QDir::cleanPath(path) == QDir::fromNativeSeparators(path);
}

bool isFileOrLink(const QString &path)
{
    const QFileInfo info(path);
    return info.isFile() || info.isSymLink();
}

QString occupied(const QString &path)
{
    return QCoreApplication::translate("epr::Cleanup", "A file already exists at %1").arg(nativePath(path));
}

/// What became of one entry.
struct EntryOutcome {
    std::optional<QString> problem; ///< none if the file is back
    bool isKept = true; ///< with a problem: whether there may be something to restore later
    bool wasDone = false; ///< by an earlier undo
};

// The folder that the run made and nobody removes: without it the drive with the quarantine is not there.
bool hasRunFolder(const ManifestEntry &entry, const QString &quarantineRoot)
{
    const QString inside = QDir::cleanPath(quarantineRoot) + u'/';
    if (quarantineRoot.isEmpty() || !entry.to.startsWith(inside))
        return QFileInfo(QFileInfo(entry.to).path()).isDir();
    return QFileInfo(inside + entry.to.mid(inside.size()).section(u'/', 0, 0)).isDir();
}

EntryOutcome withoutCopy(const ManifestEntry &entry, const QString &quarantineRoot)
{
    const QFileInfo original(entry.from);
    if (isFileOrLink(entry.from) && (original.isSymLink() ? 0 : original.size()) == entry.size)
        return { .problem = {}, .isKept = false, .wasDone = true };
    const QString message =
        QCoreApplication::translate("epr::Cleanup", "Quarantined copy missing: %1").arg(nativePath(entry.to));
    return { .problem = message, .isKept = !hasRunFolder(entry, quarantineRoot) };
}

// A move to another drive that was killed before it had removed its original leaves two files that are alike to the
// time of their last change.
bool isLeftOfAMove(const ManifestEntry &entry)
{
    const auto copy = nativefile::statusOf(entry.to);
    const auto original = nativefile::statusOf(entry.from);
    const QFileInfo copyInfo(entry.to);
    const QFileInfo originalInfo(entry.from);
    if (!copy || !original || copy->size != original->size || copy->modified != original->modified
        || copyInfo.isSymLink() || originalInfo.isSymLink() || !copyInfo.isFile() || !originalInfo.isFile()) {
        return false;
    }
    const QString digest = hashWholeFile(entry.from);
    return !digest.isEmpty() && digest == hashWholeFile(entry.to);
}

/// Removes the copy in the quarantine if it is what a move left that was killed, and the other is proved to stay.
bool removeLeftOver(const ManifestEntry &entry)
{
    if (!isLeftOfAMove(entry))
        return false;
    const QFileInfo original(entry.from);
    RemovalChecks checks;
    checks.kept = { { entry.to, { { entry.from, original.size(), original.lastModified() } } } };
    return RemovalGuard(RemovalMode::Delete, checks).mayGo(entry.to, {}).value_or(false)
        && nativefile::removeFile(entry.to);
}

// "undo-1_02.json" for "undo-1.json", "undo-1_03.json" for that: a name of its own beside the one in the list.
QString restPath(const QString &path)
{
    const QFileInfo info(path);
    QString name = info.completeBaseName();
    if (name.size() > 3 && name.at(name.size() - 3) == u'_')
        name.chop(3);
    for (int number = 2; number <= 99; ++number) {
        const QString candidate = u"%1/%2_%3.json"_s.arg(info.path(), name).arg(number, 2, 10, QLatin1Char('0'));
        if (!entryExists(candidate) && !entryExists(UndoJournal::pathFor(candidate)))
            return candidate;
    }
    return path;
}

/// One undo of a manifest that was read.
class Restoration final {
public:
    Restoration(UndoManifest manifest, MissingFolders missing)
        : m_manifest(std::move(manifest))
        , m_missing(missing)
    {
    }

    [[nodiscard]] RestoreResult run(const QString &path, const CleanupProgressFn &progress, const ChosenFiles &chosen)
    {
        QList<ManifestEntry> entries = std::exchange(m_manifest.entries, {});
        const auto stays = [&chosen](const ManifestEntry &entry) { return chosen && !chosen->contains(entry.from); };
        std::ranges::copy_if(entries, std::back_inserter(m_manifest.entries), stays);
        entries.removeIf(stays);
        const bool isPart = !m_manifest.entries.isEmpty();
        qsizetype done = 0;
        const auto goesOn = [&](const QString &text) { return !progress || progress(done, entries.size(), text); };
        m_patience = Patience(goesOn);
        for (; done < entries.size(); ++done) {
            const ManifestEntry &entry = entries.at(done);
            if (!goesOn(entry.from) || (!entry.from.isEmpty() && !restoreOne(entry)))
                break;
        }
        m_manifest.entries += entries.sliced(done);
        keepRest(path, isPart || done < entries.size() ? path : restPath(path));
        return m_result;
    }

private:
    [[nodiscard]] EntryOutcome restoreEntry(const ManifestEntry &entry)
    {
        const QString message =
            QCoreApplication::translate("epr::Cleanup", "Could not restore %1").arg(nativePath(entry.from));
        if (!isPlainAbsolute(entry.from) || !isPlainAbsolute(entry.to))
            return { message };
        if (!entryExists(entry.to))
            return withoutCopy(entry, m_manifest.quarantineRoot);
        if (entryExists(entry.from)) {
            if (removeLeftOver(entry))
                return { .problem = {}, .wasDone = true };
            return { occupied(entry.from) };
        }
        if (!isFileOrLink(entry.to))
            return { message };
        if (m_missing == MissingFolders::Leave && !QFileInfo(QFileInfo(entry.from).path()).isDir())
            return { QCoreApplication::translate("epr::Cleanup",
                                                 "Could not restore %1: the folder that it came from is not there")
                         .arg(nativePath(entry.from)) };
        const Result<MoveOutcome> outcome = moveFile(entry.to, entry.from, m_notes, m_patience);
        if (!outcome)
            return { withReason(message, outcome.error()) };
        return { *outcome == MoveOutcome::Occupied ? std::optional(occupied(entry.from)) : std::nullopt };
    }

    /// False if it was stopped while the file was in use.
    [[nodiscard]] bool restoreOne(const ManifestEntry &entry)
    {
        const EntryOutcome outcome = restoreEntry(entry);
        if (outcome.problem && m_patience.hasStopped())
            return false;
        if (outcome.problem) {
            ++m_result.failed;
            m_result.errors.append(*outcome.problem);
            m_result.problems.append({ entry.from, Attempt::Restore, *outcome.problem });
            if (outcome.isKept)
                m_manifest.entries.append(entry);
        } else if (!outcome.wasDone) {
            ++m_result.succeeded;
        }
        return true;
    }

    // The whole manifest, should the shorter one not be written, still names every file that is left.
    void keepRest(const QString &path, const QString &newPath)
    {
        const bool isLeft = !m_manifest.entries.isEmpty();
        const Result<> written = isLeft ? writeManifest(newPath, m_manifest) : Result<>();
        if (!written) {
            m_result.errors.append(
                QCoreApplication::translate("epr::Cleanup", "The undo manifest %1 cannot be written (%2)")
                    .arg(nativePath(newPath), written.error()));
        } else if (isLeft && newPath == path) {
            removeJournal(path);
        } else {
            removeManifest(path);
        }
    }

    UndoManifest m_manifest; ///< its entries are those that stay
    const MissingFolders m_missing;
    TraceNotes m_notes;
    Patience m_patience;
    RestoreResult m_result;
};

} // namespace

UndoOutlook lookAtUndo(const QString &path, const ChosenFiles &chosen)
{
    UndoOutlook outlook;
    bool hasEntries = false;
    bool hasCopies = false;
    QSet<QString> folders;
    const Result<UndoManifest> read = readManifest(path, [&](const ManifestEntry &entry) {
        if (chosen && !chosen->contains(entry.from))
            return;
        hasEntries = true;
        hasCopies = hasCopies || entryExists(entry.to);
        folders.insert(QFileInfo(entry.from).path());
    });
    if (!read)
        return outlook;
    outlook.hasCopies = hasCopies || !hasEntries;
    for (const QString &folder : std::as_const(folders)) {
        if (!QFileInfo(folder).isDir())
            outlook.missingFolders.append(folder);
    }
    outlook.missingFolders.sort();
    return outlook;
}

RestoreResult restoreManifest(const QString &path, const CleanupProgressFn &progress, MissingFolders missing,
                              const ChosenFiles &chosen)
{
    RestoreResult result;
    CleanupLock lock;
    if (const Result<> locked = lock.take({}); !locked) {
        result.refusal = locked.error();
        return result;
    }
    const Result<UndoManifest> manifest = readManifest(path);
    if (!manifest) {
        result.errors.append(
            QCoreApplication::translate("epr::Cleanup", "Cannot read manifest: %1").arg(manifest.error()));
        return result;
    }
    if (isPlainAbsolute(manifest->quarantineRoot)) {
        if (const Result<> locked = lock.takeQuarantine(manifest->quarantineRoot); !locked) {
            result.refusal = locked.error();
            return result;
        }
    }
    return Restoration(*manifest, missing).run(path, progress, chosen);
}

} // namespace epr
