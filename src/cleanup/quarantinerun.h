// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "undojournal.h"
#include "undomanifest.h"

#include <QHash>
#include <QSet>
#include <QStringList>

namespace epr {

/// One run that moves files into the quarantine. Nothing is made on disk before the first move is asked for.
class QuarantineRun final {
public:
    /// paths is what the run will be asked to move, in that order.
    QuarantineRun(const QStringList &paths, const QString &quarantineRoot, const QStringList &scanRoots);

    /// False with the message for the operator in *error; the file then is where it was.
    [[nodiscard]] bool move(qsizetype index, qint64 size, QString *error);

    /// Ends the run: completes the manifest, or leaves nothing if nothing was moved. Returns the manifest's path or
    /// empty text. A manifest that could not be completed is reported in *error; the run can be undone all the same.
    [[nodiscard]] QString finish(QString *error);

private:
    [[nodiscard]] bool prepare(qsizetype index);
    [[nodiscard]] bool begin();
    [[nodiscard]] bool claim(const QString &runName);
    [[nodiscard]] bool planFrom(qsizetype first);
    [[nodiscard]] bool moveAsPlanned(ManifestEntry *entry);
    [[nodiscard]] bool replan(ManifestEntry *entry);
    [[nodiscard]] QString freeDestination(const QString &wanted);
    bool fail(const QString &reason);

    const QStringList m_paths;
    const QStringList m_scanRoots;
    UndoManifest m_manifest;
    UndoJournal m_journal;
    QString m_manifestPath; ///< empty until the run has begun
    QString m_runFolder;
    QString m_failure; ///< why the run can move nothing more
    QHash<qsizetype, ManifestEntry> m_planned; ///< by index; on the disk in the journal
    QSet<QString> m_taken; ///< destinations given out
    QHash<QString, int> m_nextNumber; ///< for destinations wanted more than once
};

} // namespace epr
