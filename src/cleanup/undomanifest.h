// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journalfile.h"
#include "result.h"

#include <functional>

namespace epr {

/// One file that was moved into the quarantine.
struct ManifestEntry {
    QString from; ///< absolute path before the move
    QString to; ///< absolute path inside the quarantine
    qint64 size = 0; ///< bytes; 0 for a symbolic link

    bool operator==(const ManifestEntry &) const = default;
};

/// Called with one entry after the other. A list may have a million of them: only who needs them all keeps them.
using ManifestEntryFn = std::function<void(const ManifestEntry &entry)>;

/// What an undo needs to know about one quarantine run.
struct UndoManifest {
    QString createdAt; ///< local time, ISO 8601
    QString mode; ///< a display text
    QString quarantineRoot;
    QList<ManifestEntry> entries;

    bool operator==(const UndoManifest &) const = default;
};

/// What a quarantine run is about to do, line by line, while the manifest proper can still not be written.
///
/// Every intended move is on the disk before it is tried, so a run that dies at any instant leaves a list of all it may
/// have moved. Intentions are written many at a time: one wait for the disk serves them all.
class UndoJournal final {
public:
    static QString pathFor(const QString &manifestPath);

    /// Hands over the moves that were intended and not given up later, in order. A line cut off by the end of the run
    /// is left out: nothing that it speaks of was tried. Fails if the file cannot be read to its end.
    [[nodiscard]] static Result<> read(const QString &path, const ManifestEntryFn &each);

    /// Of these the ones that were made: an intended move of which only the original is there was not.
    [[nodiscard]] static Result<> readMoved(const QString &path, const ManifestEntryFn &each);

    /// Fails if the file exists.
    [[nodiscard]] Result<> create(const QString &path) { return m_file.create(path); }

    [[nodiscard]] Result<> appendIntended(const QList<ManifestEntry> &moves);

    /// In place of a move that found its new name taken.
    [[nodiscard]] Result<> appendReplaced(const QString &givenUpDestination, const ManifestEntry &move);

    void remove() { m_file.remove(); }

private:
    JournalFile m_file;
};

/// The folder that holds the manifests. Asking for it makes it.
QString undoDirectory();

/// Absolute paths of the manifests, newest first.
QStringList listUndoManifests();

/// One line for a list: when the run was and how many files it moved. A run that was cut short counts the files that it
/// got to move; a manifest without a readable time shows its file name instead.
QString describeManifest(const QString &path);

/// Replaces the file in one step: whoever reads it sees the old manifest or the new one, never a part.
[[nodiscard]] Result<> writeManifest(const QString &path, const UndoManifest &manifest);

/// Hands over each entry as it is read, so that the memory does not grow with the list; the result has none. Fails,
/// maybe only after the last entry, if the file is not a manifest or if there is a journal that cannot be read. An
/// entry without both paths comes with empty ones. For a run that was cut short the entries come from its journal:
/// those that were moved, as far as can be told from the disk.
[[nodiscard]] Result<UndoManifest> readManifest(const QString &path, const ManifestEntryFn &each);

/// The same with its entries.
[[nodiscard]] Result<UndoManifest> readManifest(const QString &path);

/// Deletes the manifest and what a run that was cut short left beside it.
void removeManifest(const QString &path);

/// Deletes only what a run that was cut short left beside the manifest.
void removeJournal(const QString &manifestPath);

} // namespace epr
