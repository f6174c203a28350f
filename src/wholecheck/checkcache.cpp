// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkcache.h"

#include "checkstream.h"
#include "groupcheck.h"

#include <QDataStream>
#include <QIODevice>
#include <QSqlQuery>
#include <QUuid>
#include <QVariant>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 layout = 2; ///< to be raised when the records or what they mean change
constexpr auto connectOptions = "QSQLITE_BUSY_TIMEOUT=500"_L1; // a check is told to stop within a second

template <typename Record> QByteArray toBytes(const Record &record)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << layout << record;
    return bytes;
}

template <typename Record> std::optional<Record> fromBytes(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_6_4);
    qint32 ofLayout = 0;
    Record record;
    stream >> ofLayout;
    if (ofLayout != layout)
        return std::nullopt;
    stream >> record;
    return stream.status() == QDataStream::Ok ? std::optional(record) : std::nullopt;
}

QVariantList keyOf(const TrackInfo &track)
{
    return { track.path, track.size, track.mtime.toSecsSinceEpoch() };
}

constexpr auto measuresKey = "whole_measures WHERE path = ? AND size = ? AND mtime = ?"_L1;
constexpr auto pairKey = "whole_pairs WHERE path = ? AND size = ? AND mtime = ? AND other_path = ? AND other_size = ? "
                         "AND other_mtime = ?"_L1;

} // namespace

CheckCache::CheckCache(const QString &filePath)
{
    if (filePath.isEmpty())
        return;
    m_connection = "epr-check-"_L1 + QUuid::createUuid().toString(QUuid::Id128);
    m_db = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_connection);
    m_db.setDatabaseName(filePath);
    m_db.setConnectOptions(connectOptions);
    m_isUsable = m_db.open();
    for (const auto statement :
         { "PRAGMA journal_mode=WAL"_L1, "PRAGMA synchronous=NORMAL"_L1,
           "CREATE TABLE IF NOT EXISTS whole_measures (path TEXT PRIMARY KEY, size INTEGER NOT NULL, "
           "mtime INTEGER NOT NULL, content BLOB NOT NULL) WITHOUT ROWID"_L1,
           "CREATE TABLE IF NOT EXISTS whole_pairs (path TEXT NOT NULL, size INTEGER NOT NULL, mtime INTEGER NOT NULL, "
           "other_path TEXT NOT NULL, other_size INTEGER NOT NULL, other_mtime INTEGER NOT NULL, "
           "content BLOB NOT NULL, PRIMARY KEY (path, other_path)) WITHOUT ROWID"_L1 })
        run(statement, {});
}

CheckCache::~CheckCache()
{
    m_db = QSqlDatabase();
    if (!m_connection.isEmpty())
        QSqlDatabase::removeDatabase(m_connection);
}

std::optional<SoundMeasures> CheckCache::measures(const TrackInfo &track)
{
    return fromBytes<SoundMeasures>(run("SELECT content FROM "_L1 + measuresKey, keyOf(track)));
}

std::optional<PairCheck> CheckCache::pair(const TrackInfo &first, const TrackInfo &second)
{
    const bool isTurned = second.path < first.path;
    const QVariantList key = isTurned ? keyOf(second) + keyOf(first) : keyOf(first) + keyOf(second);
    const auto found = fromBytes<PairCheck>(run("SELECT content FROM "_L1 + pairKey, key));
    return found && isTurned ? mirrored(*found) : found;
}

void CheckCache::begin()
{
    m_isUsable = m_isUsable && m_db.transaction();
}

void CheckCache::store(const TrackInfo &track, const SoundMeasures &measures)
{
    run(u"INSERT OR REPLACE INTO whole_measures VALUES (?,?,?,?)"_s, keyOf(track) << toBytes(measures));
}

void CheckCache::store(const TrackInfo &first, const TrackInfo &second, const PairCheck &pair)
{
    const bool isTurned = second.path < first.path;
    const QVariantList key = isTurned ? keyOf(second) + keyOf(first) : keyOf(first) + keyOf(second);
    run(u"INSERT OR REPLACE INTO whole_pairs VALUES (?,?,?,?,?,?,?)"_s,
        key + QVariantList { toBytes(isTurned ? mirrored(pair) : pair) });
}

void CheckCache::commit()
{
    if (m_isUsable && !m_db.commit())
        m_db.rollback();
}

// After a failure every statement would fail, and where the database is locked wait for it first.
QByteArray CheckCache::run(const QString &statement, const QVariantList &values)
{
    if (!m_isUsable)
        return {};
    QSqlQuery query(m_db);
    query.setForwardOnly(true);
    m_isUsable = query.prepare(statement);
    for (const QVariant &value : values)
        query.addBindValue(value);
    m_isUsable = m_isUsable && query.exec();
    return m_isUsable && query.next() ? query.value(0).toByteArray() : QByteArray();
}

} // namespace epr
