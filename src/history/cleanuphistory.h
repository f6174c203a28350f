// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanupstore.h"

namespace epr {

/// Keeps the record of clean-ups true to what happens. The undo lists decide what can be brought back, the record only
/// remembers; without it everything works as it does with it. For one thread.
class CleanupHistory final {
public:
    explicit CleanupHistory(const QString &file = CleanupStore::defaultFilePath());

    Result<> open() { return m_store.open(); } ///< as CleanupStore::open()
    CleanupStore &store() { return m_store; }

    /// Before a clean-up; it counts as interrupted unless finish() follows. Gives its id.
    Result<qint64> begin(RemovalMode mode, const QStringList &roots, const QList<RecordedFile> &files);
    Result<> finish(qint64 run, const RemovalResult &result); ///< looks at the files unless they were quarantined

    /// After the files of a list, or some of them, have met this fate.
    Result<> follow(const QString &manifestPath, FileFate fate);

    /// Takes up what happened without this record: lists that it does not know, clean-ups that were killed, undone
    /// elsewhere. Reads only lists that it has not read before. Returns what to tell the operator.
    QStringList refresh(const CleanupProgressFn &progress = {});

private:
    Result<> settle(CleanupRun run, const QString &manifestPath, FileFate others);
    Result<> settleInterrupted(CleanupRun run, const QStringList &unknown, qint64 nextBegan);
    FileFate fateElsewhere(const CleanupRun &run);
    Result<> takeIn(const QString &manifestPath);

    CleanupStore m_store;
};

/// CleanupHistory::follow() in the user's record. Fails if that cannot be opened.
Result<> followRecorded(const QString &manifestPath, FileFate fate);

/// Whether some of its files can still be brought back, as far as the record says.
bool isInQuarantine(const CleanupRun &run);

} // namespace epr
