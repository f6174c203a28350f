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

bool isCurrentCacheRow(const QSqlQuery &row, const TrackInfo &track, FingerprintEngine engine)
{
    return row.value(CacheSizeColumn).toLongLong() == track.size
        && row.value(CacheMtimeColumn).toLongLong() == track.mtime.toSecsSinceEpoch()
        && row.value(CacheSchemaVersionColumn).toInt() == layoutVersion
        && row.value(CacheEngineColumn).toInt() == qToUnderlying(engine);
}

void readCacheRow(const QSqlQuery &row, TrackInfo &track)
{
    track.fullHash = row.value(CacheFullHashColumn).toString();
    track.audioHash = row.value(CacheAudioHashColumn).toString();
    track.tags.title = row.value(CacheTitleColumn).toString();
    track.tags.artist = row.value(CacheArtistColumn).toString();
    track.tags.album = row.value(CacheAlbumColumn).toString();
    track.tags.albumArtist = row.value(CacheAlbumArtistColumn).toString();
    track.tags.genre = row.value(CacheGenreColumn).toString();
    track.tags.year = row.value(CacheYearColumn).toString();
    track.tags.comment = row.value(CacheCommentColumn).toString();
    track.tags.trackNo = row.value(CacheTrackNoColumn).toInt();
    track.stream.durationMs = row.value(CacheDurationColumn).toLongLong();
    track.stream.bitrateKbps = row.value(CacheBitrateColumn).toInt();
    track.stream.sampleRate = row.value(CacheSampleRateColumn).toInt();
    track.stream.channels = row.value(CacheChannelsColumn).toInt();
    track.fingerprint.words = fromBlob(row.value(CacheFingerprintColumn).toByteArray());
    track.fingerprint.mask = fromBlob(row.value(CacheFingerprintMaskColumn).toByteArray());
    track.fingerprint.alternative = fromBlob(row.value(CacheFingerprintAltColumn).toByteArray());
    track.fingerprint.alternativeMask = fromBlob(row.value(CacheFingerprintAltMaskColumn).toByteArray());
    track.analysed = true;
    track.flags |= TrackFromCache;
}

QVariantList cacheRowOf(const TrackInfo &track, FingerprintEngine engine)
{
    return { track.path,
             track.size,
             track.mtime.toSecsSinceEpoch(),
             track.fullHash,
             track.audioHash,
             track.tags.title,
             track.tags.artist,
             track.tags.album,
             track.tags.albumArtist,
             track.tags.genre,
             track.tags.year,
             track.tags.comment,
             track.tags.trackNo,
             track.stream.durationMs,
             track.stream.bitrateKbps,
             track.stream.sampleRate,
             track.stream.channels,
             toBlob(track.fingerprint.words),
             toBlob(track.fingerprint.mask),
             toBlob(track.fingerprint.alternative),
             toBlob(track.fingerprint.alternativeMask),
             qToUnderlying(engine),
             layoutVersion,
             QDateTime::currentSecsSinceEpoch() };
}

} // namespace epr
