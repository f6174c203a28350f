// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"
#include "reviewblobs.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QVariant>

QT_FORWARD_DECLARE_CLASS(QSqlQuery)

namespace epr {

/// A review in an SQLite file of its own. Every function says why it failed; one that writes has then written nothing.
/// As long as it is open nobody else can open it. For one thread.
class ReviewStore final {
public:
    explicit ReviewStore(const QString &file);
    ~ReviewStore();
    Q_DISABLE_COPY_MOVE(ReviewStore)

    static QString defaultFilePath();

    /// Makes the file and its folder where there is none, and checks one that is there. One of a newer layout, or that
    /// somebody else has open, is left alone.
    Result<> open();
    void close();

    /// Whether open() or load() failed because the file is damaged or holds something else. setAside() then closes it
    /// and gives it another name, which it returns.
    bool isDamaged() const { return m_isDamaged; }
    Result<QString> setAside();

    /// Of a new file a review without groups.
    [[nodiscard]] Result<ReviewRecord> load();

    /// In place of what was there.
    Result<> save(const ReviewRecord &review);
    /// What was decided of some groups, and the place. A group that is not stored stays so.
    Result<> update(const QList<StoredDecision> &decisions, const ReviewPlaceRecord &place);

private:
    Result<> connectTo();
    Result<> checkHeader();
    Result<> checkContent();
    Result<> prepareToWrite();
    Result<> run(const QString &statement);
    QVariant value(const QString &statement);
    bool writeScan(QSqlQuery &insert, const ReviewRecord &review);
    template <typename Work> Result<> inTransaction(Work work);
    template <typename Record> bool write(QSqlQuery &query, ReviewKey key, const Record &record);
    tl::unexpected<QString> damaged();
    QString reason() const;

    const QString m_file;
    const QString m_connection;
    QSqlDatabase m_db;
    QSqlError m_error; ///< of the last statement that failed
    bool m_isDamaged = false;
};

/// The indexes of the tracks that a store keeps: members of groups, and what these may be edits of.
QList<qint32> tracksToStore(qsizetype trackCount, const QList<MatchGroup> &groups);

} // namespace epr
