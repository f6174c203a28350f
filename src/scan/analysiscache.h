// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <optional>
#include <span>

namespace epr {

/// Analysis results of earlier scans in an SQLite file, keyed by path and valid as long as the file's size and
/// modification time (in whole seconds) are the same. Every object has a connection of its own and belongs to one
/// thread at a time; several may be open on the file at once. When not open, every operation but open() does nothing
/// and returns false, 0 or nothing.
class AnalysisCache final {
public:
    AnalysisCache() = default;
    ~AnalysisCache();
    Q_DISABLE_COPY_MOVE(AnalysisCache)

    static QString defaultFilePath();

    bool isOpen() const;
    QString filePath() const { return m_filePath; }
    int count() const;
    qint64 fileSize() const; ///< bytes

    /// Opens the file in the application's data folder, creating both when missing. An existing file that cannot be
    /// used is left as it is.
    [[nodiscard]] bool open(QString *error = nullptr);
    void close();

    /// Whether opening or any operation since then has met damage in the file. Look-ups and stores that lasted until
    /// then hold.
    bool isDamaged() const { return m_isDamaged; }

    /// Completes a measured record from the row of its path; false when there is no row or it no longer holds.
    [[nodiscard]] bool lookup(TrackInfo &track, FingerprintEngine engine);
    /// The same for many records at a fraction of the cost. What was found says so by TrackFromCache in its flags.
    /// Fingerprints are most of a row, and reading them is half of the cost.
    enum class LookupScope { Everything, AllButFingerprint };
    void lookupAll(std::span<TrackInfo> tracks, FingerprintEngine engine, LookupScope scope = LookupScope::Everything);
    void store(const TrackInfo &track, FingerprintEngine engine);
    /// Stores records that are as their rows have them: of those only the time is written, which leaves most of a long
    /// row's pages alone. A row that is no longer there, or another engine's by now, is written whole, except that a
    /// fingerprint which was not looked up is gone with the row.
    void touchAll(std::span<const TrackInfo *const> tracks, FingerprintEngine engine);
    /// Completes records that came from the cache with their content keys, where these are known, and with whether
    /// their duration is a guess.
    void lookupKeys(std::span<TrackInfo> tracks);
    void storeKeys(std::span<const TrackInfo *const> tracks);
    /// Adds the digests of records to their rows, which have the rest of them.
    void storeDigests(std::span<const TrackInfo *const> tracks, FingerprintEngine engine);
    void beginTransaction();
    void commitTransaction();

    /// The first error of look-ups, stores and transactions since the last call; empty = none. After an error,
    /// look-ups miss and stores do nothing until it is taken: a database that another program holds locked would
    /// otherwise cost the time-out again for every file. A row that alone was refused keeps no other from being stored.
    [[nodiscard]] QString takeError();

    [[nodiscard]] bool clear(QString *error = nullptr);
    int pruneMissing(); ///< removes the rows whose files are gone and returns how many

private:
    bool openConnection(QString *error);
    bool createSchema(QString *error);
    bool prepareStatements(QString *error);
    void prepareLookupOfKeys();
    bool execute(const QString &statement, QString *error);
    bool fail(const QSqlError &reason, QString *error);
    using PathOf = QString (*)(const QSqlQuery &row);
    template <typename Take> void readRows(QSqlQuery &select, std::span<TrackInfo> tracks, PathOf pathOf, Take take);
    template <typename Bind>
    void storeEach(const QString &statement, std::span<const TrackInfo *const> tracks, Bind bind);
    void storeWhole(TrackInfo track, FingerprintEngine engine);
    [[nodiscard]] bool touchBatch(std::span<const TrackInfo *const> tracks, FingerprintEngine engine);
    void noteStoreError(const QSqlError &error);
    QStringList missingPaths(const QString &table);
    void removeRows(const QStringList &paths);
    void noteError(const QSqlError &error);

    QSqlDatabase m_db;
    QString m_filePath;
    QString m_connectionName;
    std::optional<QSqlQuery> m_lookup; ///< prepared once, for the life of the connection
    std::optional<QSqlQuery> m_lookupMany;
    std::optional<QSqlQuery> m_lookupDescriptions; ///< of as many, without fingerprints
    std::optional<QSqlQuery> m_lookupKeys; ///< nothing when a protected cache could not be given the table
    std::optional<QSqlQuery> m_store;
    std::optional<QSqlQuery> m_touchMany;
    QString m_error;
    QString m_refusal; ///< of a single row
    bool m_isDamaged = false;
};

} // namespace epr
