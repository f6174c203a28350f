// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "restore.h"

#include "filemove.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

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

QString occupiedMessage(const QString &path)
{
    return QCoreApplication::translate("epr::Cleanup", "A file already exists at %1").arg(path);
}

/// The message for the operator, empty on success.
QString restoreEntry(const ManifestEntry &entry)
{
    const QString failure = QCoreApplication::translate("epr::Cleanup", "Could not restore %1").arg(entry.from);
    if (!isPlainAbsolute(entry.from) || !isPlainAbsolute(entry.to))
        return failure;
    if (!entryExists(entry.to))
        return QCoreApplication::translate("epr::Cleanup", "Quarantined copy missing: %1").arg(entry.to);
    if (entryExists(entry.from))
        return occupiedMessage(entry.from);
    if (!isFileOrLink(entry.to))
        return failure;
    switch (moveFile(entry.to, entry.from)) {
    case MoveOutcome::Moved:
        return {};
    case MoveOutcome::Occupied:
        return occupiedMessage(entry.from);
    case MoveOutcome::Failed:
        break;
    }
    return failure;
}

void addOutcome(const QString &message, RestoreResult *result)
{
    if (message.isEmpty()) {
        ++result->succeeded;
        return;
    }
    ++result->failed;
    result->errors.append(message);
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
    QString error;
    // The whole manifest, should the shorter one not be written, still names every file that is left.
    if (writeManifest(path, manifest, &error))
        removeJournal(path);
}

} // namespace

bool hasQuarantinedCopies(const QString &path)
{
    QString error;
    const QList<ManifestEntry> entries = readManifest(path, &error).value_or(UndoManifest()).entries;
    return entries.isEmpty() || std::any_of(entries.cbegin(), entries.cend(), [](const ManifestEntry &entry) {
               return entryExists(entry.to);
           });
}

RestoreResult restoreManifest(const QString &path, const CleanupProgressFn &progress)
{
    RestoreResult result;
    QString error;
    const std::optional<UndoManifest> manifest = readManifest(path, &error);
    if (!manifest) {
        result.errors.append(QCoreApplication::translate("epr::Cleanup", "Cannot read manifest: %1").arg(error));
        return result;
    }
    const qsizetype done = restoreEntries(manifest->entries, progress, &result);
    if (done < manifest->entries.size())
        keepRest(path, *manifest, done);
    else
        removeManifest(path);
    return result;
}

} // namespace epr
