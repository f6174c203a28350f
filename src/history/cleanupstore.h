// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"
#include "records.h"
#include "result.h"

#include <QMap>
#include <QSqlDatabase>
#include <QVariantList>

namespace epr {

/// What became of a file that a clean-up was to remove. The numbers are stored.
enum class FileFate : qint32 {
    Planned = 0, ///< nobody knows yet
    Removed = 1, ///< into the quarantine where it still is, into the bin, or for good
    Stayed = 2,
    Back = 3, ///< from the quarantine
    Purged = 4, ///< deleted from the quarantine
    Lost = 5, ///< neither in the quarantine nor back when it was to come back
};

struct RecordedFile {
    qint64 number = 0; ///< within its run, from 0
    QString path;
    qint64 size = 0; ///< bytes
    MatchType type = MatchType::Unmatched; ///< to the copy that stayed; Unmatched = not recorded
    FileFate fate = FileFate::Planned;

    bool operator==(const RecordedFile &) const = default;
};

/// How far a clean-up has come. The numbers are stored.
enum class RunState : qint32 {
    Begun = 0, ///< under way, or killed
    Done = 1,
    Interrupted = 2,
};

/// One clean-up, without its files.
struct CleanupRun {
    qint64 id = 0; ///< when it began: ms since 1970
    RemovalMode mode = RemovalMode::Quarantine;
    RunState state = RunState::Begun;
    QString manifest; ///< file name of the list by which it can be undone; empty = cannot
    QStringList roots; ///< of the scan; empty = not known
    QStringList errors; ///< the first of them
    QMap<FileFate, qint64> files; ///< how many of each
    qint64 bytes = 0; ///< of all that were removed, whatever became of them
    QMap<MatchType, qint64> types; ///< of the same

    qint64 removed() const; ///< whatever became of them

    bool operator==(const CleanupRun &) const = default;
};

/// The clean-ups of a user and their files, in an SQLite file. For one thread; several may be open at a time.
class CleanupStore final {
public:
    explicit CleanupStore(const QString &file);
    ~CleanupStore();
    Q_DISABLE_COPY_MOVE(CleanupStore)

    static QString defaultFilePath();

    /// Makes the file where there is none. One that is damaged or holds something else gets another name, and a new one
    /// is begun, which the error says too. One that is locked or of a newer layout is left alone.
    Result<> open();
    bool isOpen() const { return m_isOpen; }

    Result<QList<CleanupRun>> runs(); ///< the newest first
    /// Of one run, in their order, from a number on. Only those whose path has the text, in any letter case.
    Result<QList<RecordedFile>> files(qint64 run, qint64 from, int atMost, const QString &text = {});
    Result<QSet<qint64>> runsWith(const QString &text); ///< that have such a file

    /// Gives the run an id of its own, and the files numbers.
    Result<qint64> add(CleanupRun run, const QList<RecordedFile> &files);
    Result<> remove(qint64 run);

    /// Stores what is known of a run now, and of files by their paths. Of the others, those that were removed have met
    /// the fate given, and those that were planned stayed.
    Result<> settle(const CleanupRun &run, const QHash<QString, FileFate> &known, FileFate others);

private:
    Result<> begin();
    Result<> checkHeader();
    void close();
    Result<> countFiles(qint64 run);
    bool run(const QString &statement, const QVariantList &values = {});
    template <typename Work> Result<> inTransaction(Work work);

    const QString m_file;
    const QString m_connection;
    QSqlDatabase m_db;
    bool m_isOpen = false;
    bool m_isDamaged = false;
    QString m_error; ///< of the last statement that failed
};

} // namespace epr
