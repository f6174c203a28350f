// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysiscache.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QStandardPaths>
#include <QUuid>
#include <QVariant>
#include <QtEndian>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// Rows of any other layout are not read. The table's own default stays 1, the layout of files that did not yet write
// the number, so that their rows never pass for current ones.
constexpr qint32 layoutVersion = 4;

// A row written by another program instance is awaited this long before the cache is given up for the moment.
constexpr auto connectOptions = "QSQLITE_BUSY_TIMEOUT=2000"_L1;

constexpr auto createTable =
    "CREATE TABLE IF NOT EXISTS tracks ( path TEXT PRIMARY KEY, size INTEGER NOT NULL, mtime INTEGER NOT NULL, "
    "full_hash TEXT, audio_hash TEXT, title TEXT, artist TEXT, album TEXT, album_artist TEXT, genre TEXT, "
    "year TEXT, comment TEXT, track_no INTEGER, duration_ms INTEGER, bitrate INTEGER, sample_rate INTEGER, "
    "channels INTEGER, fingerprint BLOB, fingerprint_mask BLOB, fingerprint_alt BLOB, fingerprint_alt_mask BLOB, "
    "engine INTEGER NOT NULL DEFAULT 0, schema_version INTEGER NOT NULL DEFAULT 1, analysed_at INTEGER)"_L1;
constexpr auto createIndex = "CREATE INDEX IF NOT EXISTS idx_tracks_audio ON tracks(audio_hash)"_L1;

constexpr auto selectRow =
    "SELECT size, mtime, full_hash, audio_hash, title, artist, album, album_artist, genre, year, comment, "
    "track_no, duration_ms, bitrate, sample_rate, channels, fingerprint, fingerprint_mask, fingerprint_alt, "
    "fingerprint_alt_mask, schema_version, engine FROM tracks WHERE path = ?"_L1;

// Positions in the result of selectRow.
enum Column {
    SizeColumn,
    MtimeColumn,
    FullHashColumn,
    AudioHashColumn,
    TitleColumn,
    ArtistColumn,
    AlbumColumn,
    AlbumArtistColumn,
    GenreColumn,
    YearColumn,
    CommentColumn,
    TrackNoColumn,
    DurationColumn,
    BitrateColumn,
    SampleRateColumn,
    ChannelsColumn,
    FingerprintColumn,
    FingerprintMaskColumn,
    FingerprintAltColumn,
    FingerprintAltMaskColumn,
    SchemaVersionColumn,
    EngineColumn,
};

constexpr auto replaceRow =
    "INSERT OR REPLACE INTO tracks (path,size,mtime,full_hash,audio_hash,title,artist, "
    "album,album_artist,genre,year,comment,track_no,duration_ms,bitrate,sample_rate, "
    "channels,fingerprint,fingerprint_mask,fingerprint_alt,fingerprint_alt_mask, "
    "engine,schema_version,analysed_at) VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)"_L1;

// Words are kept least significant byte first, whatever the processor. An empty list is an empty blob and not a NULL.
QByteArray toBlob(const QList<quint32> &words)
{
    QByteArray blob(words.size() * 4, Qt::Uninitialized);
    for (qsizetype i = 0; i < words.size(); ++i)
        qToLittleEndian(words.at(i), blob.data() + i * 4);
    return blob;
}

QList<quint32> fromBlob(const QByteArray &blob)
{
    QList<quint32> words(blob.size() / 4);
    for (qsizetype i = 0; i < words.size(); ++i)
        words[i] = qFromLittleEndian<quint32>(blob.constData() + i * 4);
    return words;
}

bool isCurrent(const QSqlQuery &row, const TrackInfo &track, qint32 engine)
{
    return row.value(SizeColumn).toLongLong() == track.size
        && row.value(MtimeColumn).toLongLong() == track.mtime.toSecsSinceEpoch()
        && row.value(SchemaVersionColumn).toInt() == layoutVersion && row.value(EngineColumn).toInt() == engine;
}

void readRow(const QSqlQuery &row, TrackInfo &track)
{
    track.fullHash = row.value(FullHashColumn).toString();
    track.audioHash = row.value(AudioHashColumn).toString();
    track.title = row.value(TitleColumn).toString();
    track.artist = row.value(ArtistColumn).toString();
    track.album = row.value(AlbumColumn).toString();
    track.albumArtist = row.value(AlbumArtistColumn).toString();
    track.genre = row.value(GenreColumn).toString();
    track.year = row.value(YearColumn).toString();
    track.comment = row.value(CommentColumn).toString();
    track.trackNo = row.value(TrackNoColumn).toInt();
    track.durationMs = row.value(DurationColumn).toLongLong();
    track.bitrateKbps = row.value(BitrateColumn).toInt();
    track.sampleRate = row.value(SampleRateColumn).toInt();
    track.channels = row.value(ChannelsColumn).toInt();
    track.fingerprint = fromBlob(row.value(FingerprintColumn).toByteArray());
    track.fingerprintMask = fromBlob(row.value(FingerprintMaskColumn).toByteArray());
    track.fingerprintAlt = fromBlob(row.value(FingerprintAltColumn).toByteArray());
    track.fingerprintAltMask = fromBlob(row.value(FingerprintAltMaskColumn).toByteArray());
    track.analysed = true;
    track.flags |= TrackFromCache;
}

QVariantList rowOf(const TrackInfo &track, qint32 engine)
{
    return { track.path,
             track.size,
             track.mtime.toSecsSinceEpoch(),
             track.fullHash,
             track.audioHash,
             track.title,
             track.artist,
             track.album,
             track.albumArtist,
             track.genre,
             track.year,
             track.comment,
             track.trackNo,
             track.durationMs,
             track.bitrateKbps,
             track.sampleRate,
             track.channels,
             toBlob(track.fingerprint),
             toBlob(track.fingerprintMask),
             toBlob(track.fingerprintAlt),
             toBlob(track.fingerprintAltMask),
             engine,
             layoutVersion,
             QDateTime::currentSecsSinceEpoch() };
}

bool execute(const QSqlDatabase &db, const QString &statement, QString *error)
{
    QSqlQuery query(db);
    if (query.exec(statement))
        return true;
    if (error)
        *error = query.lastError().text();
    return false;
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
    if (m_db.open())
        return true;
    if (error)
        *error = m_db.lastError().text();
    return false;
}

bool AnalysisCache::createSchema(QString *error)
{
    execute(m_db, u"PRAGMA journal_mode=WAL"_s, nullptr);
    execute(m_db, u"PRAGMA synchronous=NORMAL"_s, nullptr);
    if (!execute(m_db, createTable, error))
        return false;
    execute(m_db, createIndex, nullptr);
    return true;
}

bool AnalysisCache::prepareStatements(QString *error)
{
    m_lookup.emplace(m_db);
    m_lookup->setForwardOnly(true);
    m_store.emplace(m_db);
    for (const auto &[query, statement] : { std::pair(&*m_lookup, selectRow), std::pair(&*m_store, replaceRow) }) {
        if (query->prepare(statement))
            continue;
        if (error)
            *error = query->lastError().text();
        return false;
    }
    return true;
}

// The handle goes before the registry's entry: the registry complains about a connection that is still held.
void AnalysisCache::close()
{
    m_lookup.reset();
    m_store.reset();
    if (m_db.isOpen())
        m_db.close();
    m_db = QSqlDatabase();
    if (QSqlDatabase::contains(m_connectionName))
        QSqlDatabase::removeDatabase(m_connectionName);
    m_error.clear();
}

bool AnalysisCache::lookup(TrackInfo &track, qint32 engine)
{
    if (!isOpen() || !m_error.isEmpty())
        return false;
    m_lookup->addBindValue(track.path);
    if (!m_lookup->exec()) {
        noteError(m_lookup->lastError().text());
        return false;
    }
    const bool hit = m_lookup->next() && isCurrent(*m_lookup, track, engine);
    if (hit)
        readRow(*m_lookup, track);
    else if (m_lookup->lastError().isValid())
        noteError(m_lookup->lastError().text());
    m_lookup->finish(); // an unfinished read would keep the write-ahead log from being folded back
    return hit;
}

void AnalysisCache::store(const TrackInfo &track, qint32 engine)
{
    if (!isOpen() || !m_error.isEmpty() || track.path.isEmpty())
        return;
    const QVariantList values = rowOf(track, engine);
    for (const QVariant &value : values)
        m_store->addBindValue(value);
    if (!m_store->exec())
        noteError(m_store->lastError().text());
    m_store->finish();
}

void AnalysisCache::beginTransaction()
{
    if (isOpen() && !m_db.transaction())
        noteError(m_db.lastError().text());
}

// A transaction that failed half-way is undone: what it holds is no more than work that the next scan repeats.
void AnalysisCache::commitTransaction()
{
    if (!isOpen())
        return;
    if (m_error.isEmpty() && m_db.commit())
        return;
    noteError(m_db.lastError().text());
    m_db.rollback();
}

void AnalysisCache::noteError(const QString &text)
{
    if (m_error.isEmpty())
        m_error = text;
}

QString AnalysisCache::takeError()
{
    return std::exchange(m_error, QString());
}

bool AnalysisCache::clear(QString *error)
{
    if (!isOpen() || !execute(m_db, u"DELETE FROM tracks"_s, error))
        return false;
    execute(m_db, u"VACUUM"_s, nullptr);
    return true;
}

int AnalysisCache::pruneMissing()
{
    if (!isOpen())
        return 0;
    QStringList missing;
    QSqlQuery paths(m_db);
    paths.setForwardOnly(true);
    paths.exec(u"SELECT path FROM tracks"_s);
    while (paths.next()) {
        const QString path = paths.value(0).toString();
        if (!QFileInfo::exists(path))
            missing.append(path);
    }
    paths.finish();
    if (!missing.isEmpty())
        removeRows(missing);
    return static_cast<int>(missing.size());
}

void AnalysisCache::removeRows(const QStringList &paths)
{
    m_db.transaction();
    QSqlQuery remove(m_db);
    remove.prepare(u"DELETE FROM tracks WHERE path = ?"_s);
    for (const QString &path : paths) {
        remove.addBindValue(path);
        remove.exec();
    }
    m_db.commit();
}

} // namespace epr
