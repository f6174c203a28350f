// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanup.h"

#include "cleanuplock.h"
#include "filemove.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <optional>

namespace epr {

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

CleanupFailure occupied(const QString &path)
{
    return { QCoreApplication::translate("epr::Cleanup", "A file already exists at %1").arg(path), {} };
}

std::optional<CleanupFailure> restoreEntry(const ManifestEntry &entry)
{
    const QString message = QCoreApplication::translate("epr::Cleanup", "Could not restore %1").arg(entry.from);
    if (!isPlainAbsolute(entry.from) || !isPlainAbsolute(entry.to))
        return CleanupFailure { message, {} };
    if (!entryExists(entry.to))
        return CleanupFailure {
            QCoreApplication::translate("epr::Cleanup", "Quarantined copy missing: %1").arg(entry.to), {}
        };
    if (entryExists(entry.from))
        return occupied(entry.from);
    if (!isFileOrLink(entry.to))
        return CleanupFailure { message, {} };
    const Result<MoveOutcome> outcome = moveFile(entry.to, entry.from);
    if (!outcome)
        return CleanupFailure { message, outcome.error() };
    return *outcome == MoveOutcome::Occupied ? std::optional(occupied(entry.from)) : std::nullopt;
}

void addOutcome(const std::optional<CleanupFailure> &left, RestoreResult *result)
{
    if (!left) {
        ++result->succeeded;
        return;
    }
    ++result->failed;
    result->errors.append(left->message);
    result->reasons.append(left->reason);
}

/// Returns the number of entries that were dealt with.
qsizetype restoreEntries(const QList<ManifestEntry> &entries, const CleanupProgressFn &progress, RestoreResult *result)
{
    for (qsizetype index = 0; index < entries.size(); ++index) {
        const ManifestEntry &entry = entries.at(index);
        if (progress && !progress(index, entries.size(), entry.from))
            return index;
        if (!entry.from.isEmpty())
            addOutcome(restoreEntry(entry), result);
    }
    return entries.size();
}

void keepRest(const QString &path, UndoManifest manifest, qsizetype done)
{
    manifest.entries.remove(0, done);
    // The whole manifest, should the shorter one not be written, still names every file that is left.
    if (writeManifest(path, manifest))
        removeJournal(path);
}

} // namespace

bool hasQuarantinedCopies(const QString &path)
{
    const QList<ManifestEntry> entries = readManifest(path).value_or(UndoManifest()).entries;
    return entries.isEmpty() || std::any_of(entries.cbegin(), entries.cend(), [](const ManifestEntry &entry) {
               return entryExists(entry.to);
           });
}

RestoreResult restoreManifest(const QString &path, const CleanupProgressFn &progress)
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
        result.reasons.append(manifest.error());
        return result;
    }
    if (isPlainAbsolute(manifest->quarantineRoot)) {
        if (const Result<> locked = lock.takeQuarantine(manifest->quarantineRoot); !locked) {
            result.refusal = locked.error();
            return result;
        }
    }
    const qsizetype done = restoreEntries(manifest->entries, progress, &result);
    if (done < manifest->entries.size())
        keepRest(path, *manifest, done);
    else
        removeManifest(path);
    return result;
}

} // namespace epr
