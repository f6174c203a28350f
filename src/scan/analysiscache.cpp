// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysiscache.h"

#include "cachetable.h"
#include "damagedcache.h"

#include <QDir>
#include <QFileInfo>
#include <QMultiHash>
#include <QSqlError>
#include <QStandardPaths>
#include <QUuid>
#include <QVariant>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// A row written by another program instance is awaited this long before the cache is given up for the moment.
constexpr auto connectOptions = "QSQLITE_BUSY_TIMEOUT=2000"_L1;

// The driver describes all columns afresh at every execution, which costs more than finding and reading a row.
constexpr std::size_t pathsPerQuery = 256;

// A row that is too big, or breaks a rule of the table; the next one may not. The code's lower byte is the primary one.
bool refusesRowOnly(const QSqlError &error)
{
    constexpr int tooBig = 18;
    constexpr int mismatch = 20;
    const int code = error.nativeErrorCode().toInt() & 0xFF;
    return code >= tooBig && code <= mismatch;
}

} // namespace

AnalysisCache::~AnalysisCache()
{
    close();
}

QString AnalysisCache::defaultFilePath()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath(u"analysis-cache.sqlite"_s);
}

bool AnalysisCache::isOpen() const
{
    return m_db.isValid() && m_db.isOpen();
}

int AnalysisCache::count() const
{
    if (!isOpen())
        return 0;
    QSqlQuery query(m_db);
    return query.exec(u"SELECT COUNT(*) FROM tracks"_s) && query.next() ? query.value(0).toInt() : 0;
}

qint64 AnalysisCache::fileSize() const
{
    return isOpen() ? QFileInfo(m_filePath).size() : 0;
}

// The statements are prepared here, so that a table of another layout is refused at once and not at every file.
bool AnalysisCache::open(QString *error)
{
    close();
    m_isDamaged = false;
    if (openConnection(error) && createSchema(error) && prepareStatements(error))
        return true;
    close();
    return false;
}

bool AnalysisCache::openConnection(QString *error)
{
    m_filePath = defaultFilePath();
    QDir().mkpath(QFileInfo(m_filePath).absolutePath());
    m_connectionName = u"epr-cache-%1"_s.arg(QUuid::createUuid().toString(QUuid::Id128));
    m_db = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_connectionName);
    m_db.setDatabaseName(m_filePath);
    m_db.setConnectOptions(connectOptions);
    return m_db.open() || fail(m_db.lastError(), error);
}

bool AnalysisCache::createSchema(QString *error)
{
    execute(u"PRAGMA journal_mode=WAL"_s, nullptr);
    execute(u"PRAGMA synchronous=NORMAL"_s, nullptr);
    if (!execute(cachetable::createStatement(), error))
        return false;
    execute(cachetable::createIndexStatement(), nullptr);
    execute(cachetable::createKeysStatement(), nullptr);
    return true;
}

bool AnalysisCache::prepareStatements(QString *error)
{
    m_lookup.emplace(m_db);
    m_lookup->setForwardOnly(true);
    m_lookupMany.emplace(m_db);
    m_lookupMany->setForwardOnly(true);
    m_lookupDescriptions.emplace(m_db);
    m_lookupDescriptions->setForwardOnly(true);
    m_store.emplace(m_db);
    m_touchMany.emplace(m_db);
    for (const auto &[query, statement] :
         { std::pair(&*m_lookup, cachetable::selectStatement()),
           std::pair(&*m_lookupMany, cachetable::selectStatement(pathsPerQuery, true)),
           std::pair(&*m_lookupDescriptions, cachetable::selectStatement(pathsPerQuery, false)),
           std::pair(&*m_store, cachetable::replaceStatement()),
           std::pair(&*m_touchMany, cachetable::touchStatement(pathsPerQuery)) }) {
        if (!query->prepare(statement))
            return fail(query->lastError(), error);
    }
    prepareLookupOfKeys();
    return true;
}

// The table of an earlier version lacks a column, which another thread's connection may add at the same moment.
void AnalysisCache::prepareLookupOfKeys()
{
    m_lookupKeys.emplace(m_db);
    m_lookupKeys->setForwardOnly(true);
    const QString statement = cachetable::selectKeysStatement(pathsPerQuery);
    if (m_lookupKeys->prepare(statement))
        return;
    execute(cachetable::addGuessStatement(), nullptr);
    if (!m_lookupKeys->prepare(statement))
        m_lookupKeys.reset();
}

bool AnalysisCache::execute(const QString &statement, QString *error)
{
    QSqlQuery query(m_db);
    return query.exec(statement) || fail(query.lastError(), error);
}

bool AnalysisCache::fail(const QSqlError &reason, QString *error)
{
    m_isDamaged = m_isDamaged || saysDamaged(reason);
    if (error)
        *error = reason.text();
    return false;
}

// The handle goes before the registry's entry: the registry complains about a connection that is still held.
void AnalysisCache::close()
{
    m_lookup.reset();
    m_lookupMany.reset();
    m_lookupDescriptions.reset();
    m_lookupKeys.reset();
    m_store.reset();
    m_touchMany.reset();
    if (m_db.isOpen())
        m_db.close();
    m_db = QSqlDatabase();
    if (QSqlDatabase::contains(m_connectionName))
        QSqlDatabase::removeDatabase(m_connectionName);
    static_cast<void>(takeError());
}

bool AnalysisCache::lookup(TrackInfo &track, FingerprintEngine engine)
{
    if (!isOpen() || !m_error.isEmpty())
        return false;
    m_lookup->addBindValue(track.path);
    if (!m_lookup->exec()) {
        noteError(m_lookup->lastError());
        return false;
    }
    const bool hit = m_lookup->next() && cachetable::isCurrent(*m_lookup, track, engine);
    if (hit)
        cachetable::read(*m_lookup, track);
    else if (m_lookup->lastError().isValid())
        noteError(m_lookup->lastError());
    m_lookup->finish(); // an unfinished read would keep the write-ahead log from being folded back
    return hit;
}

void AnalysisCache::lookupAll(std::span<TrackInfo> tracks, FingerprintEngine engine, LookupScope scope)
{
    QSqlQuery &select = *(scope == LookupScope::Everything ? m_lookupMany : m_lookupDescriptions);
    while (!tracks.empty() && isOpen() && m_error.isEmpty()) {
        const auto batch = tracks.first(std::min(tracks.size(), pathsPerQuery));
        readRows(select, batch, cachetable::pathOf, [&](TrackInfo &track) {
            if (cachetable::isCurrent(select, track, engine))
                cachetable::read(select, track);
        });
        tracks = tracks.subspan(batch.size());
    }
}

void AnalysisCache::lookupKeys(std::span<TrackInfo> tracks)
{
    while (!tracks.empty() && m_lookupKeys && m_error.isEmpty()) {
        const auto batch = tracks.first(std::min(tracks.size(), pathsPerQuery));
        readRows(*m_lookupKeys, batch, cachetable::pathOfKeys,
                 [this](TrackInfo &track) { cachetable::readKeys(*m_lookupKeys, track); });
        tracks = tracks.subspan(batch.size());
    }
}

// The rows come in the database's order and so are assigned by their paths.
template <typename Take>
void AnalysisCache::readRows(QSqlQuery &select, std::span<TrackInfo> tracks, PathOf pathOf, Take take)
{
    QMultiHash<QStringView, TrackInfo *> wanted;
    wanted.reserve(pathsPerQuery);
    for (TrackInfo &track : tracks) {
        wanted.insert(track.path, &track);
        select.addBindValue(track.path);
    }
    for (std::size_t i = tracks.size(); i < pathsPerQuery; ++i)
        select.addBindValue(QVariant()); // equals no path
    select.exec();
    while (select.next()) {
        const QString path = pathOf(select);
        for (auto [entry, end] = wanted.equal_range(path); entry != end; ++entry)
            take(**entry);
    }
    if (select.lastError().isValid())
        noteError(select.lastError());
    select.finish();
}

void AnalysisCache::store(const TrackInfo &track, FingerprintEngine engine)
{
    if (!isOpen() || !m_error.isEmpty() || track.path.isEmpty())
        return;
    cachetable::bind(*m_store, track, engine);
    if (!m_store->exec())
        noteStoreError(m_store->lastError());
    m_store->finish();
}

template <typename Bind>
void AnalysisCache::storeEach(const QString &statement, std::span<const TrackInfo *const> tracks, Bind bind)
{
    if (tracks.empty() || !isOpen() || !m_error.isEmpty())
        return;
    QSqlQuery query(m_db);
    if (!query.prepare(statement))
        noteError(query.lastError());
    for (const TrackInfo *track : tracks) {
        if (!m_error.isEmpty())
            return;
        bind(query, *track);
        if (!query.exec())
            noteStoreError(query.lastError());
    }
}

void AnalysisCache::storeKeys(std::span<const TrackInfo *const> tracks)
{
    storeEach(cachetable::replaceKeysStatement(), tracks, cachetable::bindKeys);
}

void AnalysisCache::storeDigests(std::span<const TrackInfo *const> tracks, FingerprintEngine engine)
{
    storeEach(cachetable::digestsStatement(), tracks,
              [engine](QSqlQuery &query, const TrackInfo &track) { cachetable::bindDigests(query, track, engine); });
}

void AnalysisCache::noteStoreError(const QSqlError &error)
{
    if (refusesRowOnly(error))
        m_refusal = error.text();
    else
        noteError(error);
}

void AnalysisCache::touchAll(std::span<const TrackInfo *const> tracks, FingerprintEngine engine)
{
    while (!tracks.empty() && isOpen() && m_error.isEmpty()) {
        const auto batch = tracks.first(std::min(tracks.size(), pathsPerQuery));
        if (!touchBatch(batch, engine)) {
            for (const TrackInfo *track : batch)
                storeWhole(*track, engine);
        }
        tracks = tracks.subspan(batch.size());
    }
}

// A fingerprint that was left in its row must not be lost with it.
void AnalysisCache::storeWhole(TrackInfo track, FingerprintEngine engine)
{
    TrackInfo row = track;
    if (track.fingerprint.words.isEmpty() && lookup(row, engine))
        track.fingerprint = row.fingerprint;
    store(track, engine);
}

// Whether that has stored all of them.
bool AnalysisCache::touchBatch(std::span<const TrackInfo *const> tracks, FingerprintEngine engine)
{
    cachetable::bindTouch(*m_touchMany, engine);
    for (std::size_t i = 0; i < pathsPerQuery; ++i)
        m_touchMany->addBindValue(i < tracks.size() ? QVariant(tracks[i]->path) : QVariant()); // which equals no path
    const bool touched = m_touchMany->exec();
    if (!touched)
        noteStoreError(m_touchMany->lastError());
    const int rows = m_touchMany->numRowsAffected();
    m_touchMany->finish();
    return touched && rows == static_cast<int>(tracks.size());
}

void AnalysisCache::beginTransaction()
{
    if (isOpen() && !m_db.transaction())
        noteError(m_db.lastError());
}

// What was stored before the database failed is kept if it still can be.
void AnalysisCache::commitTransaction()
{
    if (!isOpen())
        return;
    if (!m_isDamaged && m_db.commit())
        return;
    noteError(m_db.lastError());
    m_db.rollback();
}

void AnalysisCache::noteError(const QSqlError &error)
{
    QString text;
    fail(error, &text);
    if (m_error.isEmpty())
        m_error = text;
}

QString AnalysisCache::takeError()
{
    const QString refusal = std::exchange(m_refusal, QString());
    const QString error = std::exchange(m_error, QString());
    return error.isEmpty() ? refusal : error;
}

bool AnalysisCache::clear(QString *error)
{
    if (!isOpen() || !execute(u"DELETE FROM tracks"_s, error))
        return false;
    for (const auto table : { "content_keys"_L1, "whole_measures"_L1, "whole_pairs"_L1 })
        execute("DELETE FROM "_L1 + table, nullptr);
    execute(u"VACUUM"_s, nullptr);
    return true;
}

// Files that were checked over their whole length have rows of their own, also those of a scan without the cache.
int AnalysisCache::pruneMissing()
{
    if (!isOpen())
        return 0;
    const QStringList missing = missingPaths(u"tracks"_s);
    const QStringList all = missing + missingPaths(u"whole_measures"_s);
    if (!all.isEmpty())
        removeRows(all);
    return static_cast<int>(missing.size());
}

QStringList AnalysisCache::missingPaths(const QString &table)
{
    QStringList missing;
    QSqlQuery paths(m_db);
    paths.setForwardOnly(true);
    paths.exec("SELECT path FROM "_L1 + table);
    while (paths.next()) {
        const QString path = paths.value(0).toString();
        if (!QFileInfo::exists(path))
            missing.append(path);
    }
    return missing;
}

void AnalysisCache::removeRows(const QStringList &paths)
{
    m_db.transaction();
    for (const auto rows : { "tracks WHERE path"_L1, "content_keys WHERE path"_L1, "whole_measures WHERE path"_L1,
                             "whole_pairs WHERE path"_L1, "whole_pairs WHERE other_path"_L1 }) {
        QSqlQuery remove(m_db);
        if (!remove.prepare("DELETE FROM %1 = ?"_L1.arg(rows)))
            continue; // earlier versions have fewer tables
        for (const QString &path : paths) {
            remove.addBindValue(path);
            remove.exec();
        }
    }
    m_db.commit();
}

} // namespace epr
