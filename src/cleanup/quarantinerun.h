// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "traces.h"
#include "undomanifest.h"

#include <QHash>
#include <QSet>

#include <functional>
#include <optional>

namespace epr {

class CleanupLock;
class Patience;

/// Whether a file may go, asked with its path.
using MayGoFn = std::function<bool(const QString &path)>;

/// The message for a file that stays because no other copy does.
QString copyGone(const QString &path);

/// Where in the run folder a file goes: below the name of the first scan root that holds it, or under its bare name.
/// The answer never leads out of the run folder.
QString quarantineDestination(const QString &path, const QString &runFolder, const QStringList &scanRoots);

/// One run that moves files into the quarantine. Nothing is made on disk before the first move is asked for.
class QuarantineRun final {
public:
    /// paths is what the run will be asked to move, in that order.
    QuarantineRun(const QStringList &paths, const QString &quarantineRoot, const QStringList &scanRoots,
                  CleanupLock &lock);

    /// Nothing, or why the file is where it was: it could not be moved, or must not go by a look after its move.
    [[nodiscard]] std::optional<QString> move(qsizetype index, qint64 size, const MayGoFn &mayGo, Patience &patience);

    /// Ends the run: completes the manifest, or leaves nothing if nothing was moved. The run can be undone also if its
    /// manifest could not be completed, which is then said.
    [[nodiscard]] std::optional<QString> finish();

    /// Empty if there is nothing to undo.
    QString manifestPath() const { return m_manifestPath; }

private:
    [[nodiscard]] Result<> prepare(qsizetype index);
    [[nodiscard]] Result<> begin();
    [[nodiscard]] Result<bool> claim(const QString &runName);
    [[nodiscard]] Result<> planFrom(qsizetype first);
    [[nodiscard]] Result<> moveAsPlanned(ManifestEntry *entry, Patience &patience);
    [[nodiscard]] std::optional<QString> moveBack(const ManifestEntry &entry);
    [[nodiscard]] Result<> replan(ManifestEntry *entry);
    QString freeDestination(const QString &wanted);
    [[nodiscard]] Result<> endRun(const QString &reason);

    const QStringList m_paths;
    const QStringList m_scanRoots;
    CleanupLock &m_lock;
    UndoManifest m_manifest;
    UndoJournal m_journal;
    TraceNotes m_notes;
    QString m_manifestPath; ///< empty until the run has begun
    QString m_runFolder;
    QString m_failure; ///< why the run can move nothing more
    QHash<qsizetype, ManifestEntry> m_planned; ///< by index; on the disk in the journal
    QSet<QString> m_taken; ///< destinations given out
    QHash<QString, int> m_nextNumber; ///< for destinations wanted more than once
};

} // namespace epr
