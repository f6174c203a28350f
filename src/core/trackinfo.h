// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>

namespace epr {

/// What a file says of the music in it. Empty text and 0 mean unknown.
struct Tags {
    QString title;
    QString artist;
    QString album;
    QString albumArtist;
    QString genre;
    QString year; ///< kept as text
    QString comment;
    qint32 trackNo = 0;

    bool operator==(const Tags &) const = default;
};

/// What is known of the encoded sound. 0 means unknown; never negative.
struct StreamFacts {
    qint64 durationMs = 0;
    qint32 bitrateKbps = 0; ///< average
    qint32 sampleRate = 0; ///< Hz
    qint32 channels = 0;

    bool operator==(const StreamFacts &) const = default;
};

/// An acoustic fingerprint: one word for each frame. The engine fpcalc makes words alone; the built-in analysis also
/// makes masks, and an alternative of the same signal on frames that are shifted by half a hop.
struct Fingerprint {
    QList<quint32> words;
    QList<quint32> mask; ///< bits of each word that can be trusted; as long as words, or empty
    QList<quint32> alternative;
    QList<quint32> alternativeMask;

    bool operator==(const Fingerprint &) const = default;
};

/// Outcome of fingerprinting one file.
struct FingerprintResult {
    Fingerprint fingerprint;
    qint64 durationMs = 0; ///< measured while decoding, 0 = unknown
    QString error; ///< empty on success

    bool operator==(const FingerprintResult &) const = default;
};

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
    Tags tags;
    StreamFacts stream;
    QString fullHash; ///< SHA-256 of the whole file, 64 lower-case hexadecimal digits, empty = none
    QString audioHash; ///< SHA-256 of the audio payload, same form
    Fingerprint fingerprint;
    bool analysed = false; ///< tags, digests and fingerprint are complete for this scan; only such a record is cached
    QString error; ///< why the file could not be analysed; empty = it could

    bool operator==(const TrackInfo &) const = default;
};

} // namespace epr

Q_DECLARE_METATYPE(epr::TrackInfo)
Q_DECLARE_METATYPE(epr::FingerprintResult)
