// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace epr {

/// One file that was moved into the quarantine.
struct ManifestEntry {
    QString from; ///< absolute path before the move
    QString to; ///< absolute path inside the quarantine
    qint64 size = 0; ///< bytes; 0 for a symbolic link

    bool operator==(const ManifestEntry &) const = default;
};

/// What an undo needs to know about one quarantine run.
struct UndoManifest {
    QString createdAt; ///< local time, ISO 8601
    QString mode; ///< a display text
    QString quarantineRoot;
    QList<ManifestEntry> entries;

    bool operator==(const UndoManifest &) const = default;
};

/// The folder that holds the manifests. Asking for it makes it.
[[nodiscard]] QString undoDirectory();

/// Absolute paths of the manifests, newest first.
[[nodiscard]] QStringList listUndoManifests();

/// One line for a list: when the run was and how many files it moved. A run that was cut short counts the files that it
/// got to move; a manifest without a readable time shows its file name instead.
[[nodiscard]] QString describeManifest(const QString &path);

/// Replaces the file in one step: whoever reads it sees the old manifest or the new one, never a part.
[[nodiscard]] bool writeManifest(const QString &path, const UndoManifest &manifest, QString *error);

/// Nothing if the file is not a manifest, with the reason in *error. An entry without both paths comes back with empty
/// ones. For a run that was cut short the entries come from its journal: those that were moved, as far as can be told
/// from the disk.
[[nodiscard]] std::optional<UndoManifest> readManifest(const QString &path, QString *error);

/// Deletes the manifest and what a run that was cut short left beside it.
void removeManifest(const QString &path);

/// Deletes only what a run that was cut short left beside the manifest.
void removeJournal(const QString &manifestPath);

} // namespace epr
