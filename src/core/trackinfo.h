// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

namespace epr {

/// Bits of TrackInfo::flags.
enum TrackFlag : quint64 {
    TrackFromCache = 1, ///< the analysis came from the cache, not from this scan
};

/// Everything a scan knows about one audio file.
struct TrackInfo {
    quint64 flags = 0; ///< TrackFlag bits
    QString path; ///< absolute, as discovery returned it; the key of the analysis cache
    QString fileName; ///< with extension
    QString suffix; ///< lower case, without the dot
    qint64 size = 0; ///< bytes
    QDateTime mtime;
    QString title;
    QString artist;
    QString album;
    QString albumArtist;
    QString genre;
    QString year; ///< kept as text
    QString comment;
    qint32 trackNo = 0; ///< 0 = unknown
    qint64 durationMs = 0; ///< 0 = unknown
    qint32 bitrateKbps = 0; ///< 0 = unknown
    qint32 sampleRate = 0; ///< Hz, 0 = unknown
    qint32 channels = 0; ///< 0 = unknown
    QString fullHash; ///< SHA-256 of the whole file, 64 lower-case hexadecimal digits, empty = none
    QString audioHash; ///< SHA-256 of the audio payload, same form
    QList<quint32> fingerprint;
    QList<quint32> fingerprintMask;
    QList<quint32> fingerprintAlt;
    QList<quint32> fingerprintAltMask;
    bool analysed = false; ///< tags, digests and fingerprint are complete for this scan; only such a record is cached
    QString error; ///< why the file could not be analysed; empty = it could

    bool operator==(const TrackInfo &) const = default;
};

} // namespace epr

Q_DECLARE_METATYPE(epr::TrackInfo)
