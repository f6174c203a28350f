// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cacherow.h"

#include <QSqlQuery>
#include <QtEndian>

namespace epr {

namespace {

// Rows of any other layout are not read. The table's own default stays 1, the layout of files that did not yet write
// the number, so that their rows never pass for current ones.
constexpr qint32 layoutVersion = 4;

// Words are kept least significant byte first, whatever the processor. An empty list is an empty blob and not a NULL.
QByteArray toBlob(const QList<quint32> &words)
{
    QByteArray blob(words.size() * 4, Qt::Uninitialized);
    if (!words.isEmpty())
        qToLittleEndian<quint32>(words.constData(), words.size(), blob.data());
    return blob;
}

QList<quint32> fromBlob(const QByteArray &blob)
{
    QList<quint32> words(blob.size() / 4);
    if (!words.isEmpty()) // which has no address that may be copied to
        qFromLittleEndian<quint32>(blob.constData(), words.size(), words.data());
    return words;
}

} // namespace

bool isCurrentCacheRow(const QSqlQuery &row, const TrackInfo &track, qint32 engine)
{
    return row.value(CacheSizeColumn).toLongLong() == track.size
        && row.value(CacheMtimeColumn).toLongLong() == track.mtime.toSecsSinceEpoch()
        && row.value(CacheSchemaVersionColumn).toInt() == layoutVersion
        && row.value(CacheEngineColumn).toInt() == engine;
}

void readCacheRow(const QSqlQuery &row, TrackInfo &track)
{
    track.fullHash = row.value(CacheFullHashColumn).toString();
    track.audioHash = row.value(CacheAudioHashColumn).toString();
    track.title = row.value(CacheTitleColumn).toString();
    track.artist = row.value(CacheArtistColumn).toString();
    track.album = row.value(CacheAlbumColumn).toString();
    track.albumArtist = row.value(CacheAlbumArtistColumn).toString();
    track.genre = row.value(CacheGenreColumn).toString();
    track.year = row.value(CacheYearColumn).toString();
    track.comment = row.value(CacheCommentColumn).toString();
    track.trackNo = row.value(CacheTrackNoColumn).toInt();
    track.durationMs = row.value(CacheDurationColumn).toLongLong();
    track.bitrateKbps = row.value(CacheBitrateColumn).toInt();
    track.sampleRate = row.value(CacheSampleRateColumn).toInt();
    track.channels = row.value(CacheChannelsColumn).toInt();
    track.fingerprint = fromBlob(row.value(CacheFingerprintColumn).toByteArray());
    track.fingerprintMask = fromBlob(row.value(CacheFingerprintMaskColumn).toByteArray());
    track.fingerprintAlt = fromBlob(row.value(CacheFingerprintAltColumn).toByteArray());
    track.fingerprintAltMask = fromBlob(row.value(CacheFingerprintAltMaskColumn).toByteArray());
    track.analysed = true;
    track.flags |= TrackFromCache;
}

QVariantList cacheRowOf(const TrackInfo &track, qint32 engine)
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

} // namespace epr
