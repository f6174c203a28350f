// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cachetable.h"

#include <QSqlQuery>
#include <QVariant>
#include <QtEndian>

#include <array>

namespace epr::cachetable {

using namespace Qt::StringLiterals;

namespace {

// Rows of any other layout are not read. The table's own default stays 1, the layout of files that did not yet write
// the number, so that their rows never pass for current ones.
constexpr qint32 layoutVersion = 4;

// Words are kept least significant byte first, whatever the processor. An empty list is an empty blob and not a NULL.
QVariant toValue(const QList<quint32> &words)
{
    QByteArray blob(words.size() * 4, Qt::Uninitialized);
    if (!words.isEmpty())
        qToLittleEndian<quint32>(words.constData(), words.size(), blob.data());
    return blob;
}

// SQLite takes a first U+FEFF for a mark of the byte order and drops it, and swaps the bytes of all that follows
// U+FFFE. A mark of our own keeps it from looking any further.
QVariant toValue(const QString &text)
{
    constexpr QChar mark(QChar::ByteOrderMark);
    return text.startsWith(mark) || text.startsWith(QChar(QChar::ByteOrderSwapped)) ? mark + text : text;
}

template <typename Field> QVariant toValue(const Field &field)
{
    return field;
}

void fromValue(const QVariant &value, QList<quint32> &words)
{
    const QByteArray blob = value.toByteArray();
    words.resize(blob.size() / 4);
    if (!words.isEmpty()) // which has no address that may be copied to
        qFromLittleEndian<quint32>(blob.constData(), words.size(), words.data());
}

template <typename Field> void fromValue(const QVariant &value, Field &field)
{
    field = value.value<Field>();
}

// A column that holds a field of the record.
struct Column {
    const char *name;
    const char *type;
    QVariant (*value)(const TrackInfo &track);
    void (*read)(const QVariant &value, TrackInfo &track);
    const char *separator; // after its name in the INSERT, which is written as it always was
};

template <typename Field>
constexpr Column column(const char *name, const char *type, Field, const char *separator = ",")
{
    return { name, type, [](const TrackInfo &track) { return toValue(Field()(track)); },
             [](const QVariant &value, TrackInfo &track) { fromValue(value, Field()(track)); }, separator };
}

constexpr std::array columns {
    column(
        "full_hash", "TEXT", [](auto &track) -> auto & { return track.fullHash; }),
    column(
        "audio_hash", "TEXT", [](auto &track) -> auto & { return track.audioHash; }),
    column(
        "title", "TEXT", [](auto &track) -> auto & { return track.tags.title; }),
    column(
        "artist", "TEXT", [](auto &track) -> auto & { return track.tags.artist; }, ", "),
    column(
        "album", "TEXT", [](auto &track) -> auto & { return track.tags.album; }),
    column(
        "album_artist", "TEXT", [](auto &track) -> auto & { return track.tags.albumArtist; }),
    column(
        "genre", "TEXT", [](auto &track) -> auto & { return track.tags.genre; }),
    column(
        "year", "TEXT", [](auto &track) -> auto & { return track.tags.year; }),
    column(
        "comment", "TEXT", [](auto &track) -> auto & { return track.tags.comment; }),
    column(
        "track_no", "INTEGER", [](auto &track) -> auto & { return track.tags.trackNo; }),
    column(
        "duration_ms", "INTEGER", [](auto &track) -> auto & { return track.stream.durationMs; }),
    column(
        "bitrate", "INTEGER", [](auto &track) -> auto & { return track.stream.bitrateKbps; }),
    column(
        "sample_rate", "INTEGER", [](auto &track) -> auto & { return track.stream.sampleRate; }, ", "),
    column(
        "channels", "INTEGER", [](auto &track) -> auto & { return track.stream.channels; }),
    column(
        "fingerprint", "BLOB", [](auto &track) -> auto & { return track.fingerprint.words; }),
    column(
        "fingerprint_mask", "BLOB", [](auto &track) -> auto & { return track.fingerprint.mask; }),
    column(
        "fingerprint_alt", "BLOB", [](auto &track) -> auto & { return track.fingerprint.alternative; }),
    column(
        "fingerprint_alt_mask", "BLOB", [](auto &track) -> auto & { return track.fingerprint.alternativeMask; }, ", "),
};

// Positions in the result of both SELECTs, which put what tells whether a row holds around the record's columns.
enum ResultColumn {
    SizeColumn,
    MtimeColumn,
    FirstColumn,
    SchemaVersionColumn = FirstColumn + static_cast<int>(columns.size()),
    EngineColumn,
    PathColumn, // only where several paths are asked for at once
};

// The same of the table of keys.
enum KeysColumn { KeyPath, KeySize, KeyMtime, KeySchemaVersion, WholeKey, AudioKey, DurationIsGuess };

// A blob that is not wanted is not read from the file either.
QString selectColumns(bool withFingerprint)
{
    QString names;
    for (const Column &column : columns) {
        const bool isWanted = withFingerprint || QLatin1StringView(column.type) != "BLOB"_L1;
        names += (isWanted ? QLatin1StringView(column.name) : "NULL"_L1) + ", "_L1;
    }
    return "SELECT size, mtime, "_L1 + names + "schema_version, engine"_L1;
}

QString placeholders(qsizetype count)
{
    return QStringList(count, u"?"_s).join(u',');
}

} // namespace

QString createStatement()
{
    QString definitions;
    for (const Column &column : columns)
        definitions += QLatin1StringView(column.name) + u' ' + QLatin1StringView(column.type) + ", "_L1;
    return "CREATE TABLE IF NOT EXISTS tracks ( path TEXT PRIMARY KEY, size INTEGER NOT NULL, mtime INTEGER NOT NULL, "_L1
        + definitions
        + "engine INTEGER NOT NULL DEFAULT 0, schema_version INTEGER NOT NULL DEFAULT 1, analysed_at INTEGER)"_L1;
}

QString createIndexStatement()
{
    return u"CREATE INDEX IF NOT EXISTS idx_tracks_audio ON tracks(audio_hash)"_s;
}

QString replaceStatement()
{
    QString names;
    for (const Column &column : columns)
        names += QLatin1StringView(column.name) + QLatin1StringView(column.separator);
    constexpr qsizetype others = 6; // columns that are no field of the list
    return "INSERT OR REPLACE INTO tracks (path,size,mtime,"_L1 + names
        + "engine,schema_version,analysed_at) VALUES (%1)"_L1.arg(placeholders(columns.size() + others));
}

QString touchStatement(qsizetype paths)
{
    return "UPDATE tracks SET analysed_at = ? WHERE engine = ? AND schema_version = ? AND path IN (%1)"_L1.arg(
        placeholders(paths));
}

QString selectStatement()
{
    return selectColumns(true) + " FROM tracks WHERE path = ?"_L1;
}

QString selectStatement(qsizetype paths, bool withFingerprint)
{
    return selectColumns(withFingerprint) + ", path FROM tracks WHERE path IN (%1)"_L1.arg(placeholders(paths));
}

void bind(QSqlQuery &replace, const TrackInfo &track, FingerprintEngine engine)
{
    replace.addBindValue(track.path);
    replace.addBindValue(track.size);
    replace.addBindValue(track.mtime.toSecsSinceEpoch());
    for (const Column &column : columns)
        replace.addBindValue(column.value(track));
    replace.addBindValue(qToUnderlying(engine));
    replace.addBindValue(layoutVersion);
    replace.addBindValue(QDateTime::currentSecsSinceEpoch());
}

void bindTouch(QSqlQuery &touch, FingerprintEngine engine)
{
    touch.addBindValue(QDateTime::currentSecsSinceEpoch());
    touch.addBindValue(qToUnderlying(engine));
    touch.addBindValue(layoutVersion);
}

bool isCurrent(const QSqlQuery &row, const TrackInfo &track, FingerprintEngine engine)
{
    return row.value(SizeColumn).toLongLong() == track.size
        && row.value(MtimeColumn).toLongLong() == track.mtime.toSecsSinceEpoch()
        && row.value(SchemaVersionColumn).toInt() == layoutVersion
        && row.value(EngineColumn).toInt() == qToUnderlying(engine);
}

void read(const QSqlQuery &row, TrackInfo &track)
{
    for (int position = FirstColumn; const Column &column : columns)
        column.read(row.value(position++), track);
    track.analysed = true;
    track.flags |= TrackFromCache;
}

QString pathOf(const QSqlQuery &row)
{
    return row.value(PathColumn).toString();
}

QString digestsStatement()
{
    return u"UPDATE tracks SET full_hash = ?, audio_hash = ? "
           "WHERE path = ? AND size = ? AND mtime = ? AND engine = ? AND schema_version = ?"_s;
}

void bindDigests(QSqlQuery &update, const TrackInfo &track, FingerprintEngine engine)
{
    update.addBindValue(track.fullHash);
    update.addBindValue(track.audioHash);
    update.addBindValue(track.path);
    update.addBindValue(track.size);
    update.addBindValue(track.mtime.toSecsSinceEpoch());
    update.addBindValue(qToUnderlying(engine));
    update.addBindValue(layoutVersion);
}

// Keys are of payloads as this layout's readers delimit them.
QString createKeysStatement()
{
    return u"CREATE TABLE IF NOT EXISTS content_keys (path TEXT PRIMARY KEY, size INTEGER NOT NULL, "
           "mtime INTEGER NOT NULL, schema_version INTEGER NOT NULL, whole INTEGER NOT NULL, audio INTEGER NOT NULL, "
           "duration_is_guess INTEGER NOT NULL DEFAULT 0) WITHOUT ROWID"_s;
}

QString addGuessStatement()
{
    return u"ALTER TABLE content_keys ADD COLUMN duration_is_guess INTEGER NOT NULL DEFAULT 0"_s;
}

QString replaceKeysStatement()
{
    return u"INSERT OR REPLACE INTO content_keys (path,size,mtime,schema_version,whole,audio,duration_is_guess) "
           "VALUES (?,?,?,?,?,?,?)"_s;
}

void bindKeys(QSqlQuery &replace, const TrackInfo &track)
{
    replace.addBindValue(track.path);
    replace.addBindValue(track.size);
    replace.addBindValue(track.mtime.toSecsSinceEpoch());
    replace.addBindValue(layoutVersion);
    replace.addBindValue(static_cast<qint64>(track.keys.whole));
    replace.addBindValue(static_cast<qint64>(track.keys.audio));
    replace.addBindValue(track.stream.durationIsGuess ? 1 : 0);
}

QString selectKeysStatement(qsizetype paths)
{
    return "SELECT path, size, mtime, schema_version, whole, audio, duration_is_guess FROM content_keys "
           "WHERE path IN (%1)"_L1.arg(placeholders(paths));
}

QString pathOfKeys(const QSqlQuery &row)
{
    return row.value(KeyPath).toString();
}

void readKeys(const QSqlQuery &row, TrackInfo &track)
{
    const auto number = [&row](KeysColumn column) { return row.value(column).toLongLong(); };
    if ((track.flags & TrackFromCache) == 0 || number(KeySize) != track.size
        || number(KeyMtime) != track.mtime.toSecsSinceEpoch() || number(KeySchemaVersion) != layoutVersion)
        return;
    track.keys = { static_cast<quint64>(number(WholeKey)), static_cast<quint64>(number(AudioKey)) };
    track.stream.durationIsGuess = number(DurationIsGuess) != 0;
    if (track.keys.isKnown())
        track.flags |= TrackKeysFromCache;
}

} // namespace epr::cachetable
