// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanoptions.h"
#include "trackinfo.h"

#include <QVariant>

QT_BEGIN_NAMESPACE
class QSqlQuery;
QT_END_NAMESPACE

namespace epr {

/// Positions in the result of a query that readCacheRow() can read.
enum CacheColumn {
    CacheSizeColumn,
    CacheMtimeColumn,
    CacheFullHashColumn,
    CacheAudioHashColumn,
    CacheTitleColumn,
    CacheArtistColumn,
    CacheAlbumColumn,
    CacheAlbumArtistColumn,
    CacheGenreColumn,
    CacheYearColumn,
    CacheCommentColumn,
    CacheTrackNoColumn,
    CacheDurationColumn,
    CacheBitrateColumn,
    CacheSampleRateColumn,
    CacheChannelsColumn,
    CacheFingerprintColumn,
    CacheFingerprintMaskColumn,
    CacheFingerprintAltColumn,
    CacheFingerprintAltMaskColumn,
    CacheSchemaVersionColumn,
    CacheEngineColumn,
    CachePathColumn, ///< only where many paths are asked for at once
};

/// Whether the row tells about the measured file as it is now, in this layout and of this engine.
[[nodiscard]] bool isCurrentCacheRow(const QSqlQuery &row, const TrackInfo &track, FingerprintEngine engine);

/// Completes a measured record.
void readCacheRow(const QSqlQuery &row, TrackInfo &track);

/// The values of a whole row, in the table's order.
[[nodiscard]] QVariantList cacheRowOf(const TrackInfo &track, FingerprintEngine engine);

} // namespace epr
