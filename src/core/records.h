// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "soundcheck.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QMetaType>
#include <QStringList>

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
    bool durationIsGuess = false; ///< the file does not say how long it is, or nobody listened to its end

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
    bool durationIsGuess = false;

    bool operator==(const FingerprintResult &) const = default;
};

/// Bits of TrackInfo::flags.
enum TrackFlag : quint64 {
    TrackFromCache = 1, ///< the analysis came from the cache, not from this scan, and is as the cache has it
    TrackKeysFromCache = 2, ///< the same of the content keys
    TrackDigestsAreNew = 4, ///< read beside what came from the cache
};

/// What tells nearly all files apart that have not been read whole: numbers made of length and ends, of the file and of
/// its audio. Files with equal digests have equal keys. 0 = not known.
struct ContentKeys {
    quint64 whole = 0;
    quint64 audio = 0;

    bool isKnown() const { return whole != 0 && audio != 0; }

    bool operator==(const ContentKeys &) const = default;
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
    ContentKeys keys; ///< known without digests: no other file can equal this one

    bool operator==(const TrackInfo &) const = default;
};

/// How the copies of a group were found to be duplicates. The number is also the order of certainty.
enum class MatchType : qint32 {
    IdenticalFile = 0,
    SameAudio = 1,
    SameRecording = 2,
    SameSong = 3,
    Unmatched = 4,
};

/// Where a copy lies on the time line of its group, in milliseconds.
struct MemberSpan {
    qint64 startMs = 0; ///< of the file
    qint64 soundMs = 0; ///< of what is not digital silence
    qint64 endMs = 0; ///< of the file
    bool isPlaced = false; ///< false: nothing is known of the start, and it counts as that of the time line
    bool isEndGuess = false;

    bool operator==(const MemberSpan &) const = default;
};

/// Why two members of a group belong together, as the pass that linked them found it.
struct MatchLink {
    qint32 first = -1; ///< track index, as second
    qint32 second = -1;
    MatchType type = MatchType::Unmatched;
    double errorRate = 0; ///< of SameRecording: the share of unlike bits of the fingerprints where they lie best

    bool operator==(const MatchLink &) const = default;
};

/// One set of duplicates. Members are indexes into the scan's track list, so the two lists travel together.
struct MatchGroup {
    qint32 id = 0; ///< 1-based, in presentation order
    MatchType matchType = MatchType::Unmatched;
    QList<qint32> members;
    qint32 keep = -1; ///< track index (not a position in members) of the copy to keep
    double confidence = 0; ///< 0 to 1
    qint64 reclaimableBytes = 0; ///< freed by removing every member but keep
    QHash<qint32, MemberSpan>
        spans = {}; ///< by track index; only of members of known duration whose lengths may differ
    QHash<qint32, qint32>
        edits = {}; ///< by track index of a member: a track outside that may be an edit of it, or it of that
    QList<MatchLink> links = {}; ///< between members; each of them is in at least one
    GroupCheck check = {}; ///< over the whole length, once that was done

    bool operator==(const MatchGroup &) const = default;
};

/// What made a fingerprint. Those of different engines cannot be compared with each other. The cache stores the
/// numbers.
enum class FingerprintEngine : qint32 { BuiltIn = 0, Fpcalc = 1 };

/// What to scan and how to compare. The defaults are the defaults of the settings store.
struct ScanOptions {
    QStringList roots;
    QStringList extensions = defaultExtensions();
    QStringList excludes = defaultExcludes();
    bool followSymlinks = false;
    bool includeHidden = false;
    qint64 minBytes = 32768;
    qint64 minDurationMs = 5000;
    bool detectIdentical = true;
    bool detectSameAudio = true;
    bool detectAcoustic = true;
    bool detectMetadata = false;
    bool checkWhole = false; ///< afterwards, the groups that were found by sound or tags over their whole length
    bool compareThoroughly = false; ///< with detectAcoustic, also copies that start or end elsewhere
    FingerprintEngine fingerprintEngine = FingerprintEngine::Fpcalc; ///< any value but this is the built-in analysis
    qint32 fingerprintSeconds = 60;
    double threshold = 0.25; ///< highest bit error rate that matches, built-in fingerprints
    double chromaprintThreshold = 0.12; ///< the same for fpcalc fingerprints
    qint32 durationTolerance = 5; ///< percent, acoustic matching
    qint32 decoderThreads = 4;
    qint32 metadataTolerance = 3000; ///< milliseconds, metadata matching
    bool useCache = true;
    bool onlyPossibleCopies = true; ///< digests only of files that share their content keys, and of those in groups
    qint32 keeperPolicy = 0; ///< a KeeperPolicy value; any other keeps the first member
    QStringList keeperRules; ///< words of KeeperRules, for the policy of own rules; empty = the standard ones
    QStringList protectedFolders; ///< absolute paths, for those rules
    QStringList formatPreference = defaultFormatPreference();

    bool anyDetection() const { return detectIdentical || detectSameAudio || detectAcoustic || detectMetadata; }

    static QStringList defaultExtensions();
    static QStringList defaultExcludes();
    static QStringList defaultFormatPreference();

    bool operator==(const ScanOptions &) const = default;
};

/// Coarse peak envelope of a file for drawing: one value from 0 to 1 per bucket in each list, all lists equally long.
/// They may cover only the beginning of a long file.
struct Envelope {
    static constexpr qint64 bucketMs = 40;

    QList<float> left;
    QList<float> right; ///< a copy of left for mono files
    QList<float> peak; ///< the larger of left and right
    qint64 durationMs = 0; ///< 0 = unknown
    float raisedBy = 1; ///< the values are those of the sound, times this
    double loudness = noLevel; ///< LUFS (EBU R 128) of what they cover

    bool operator==(const Envelope &) const = default;
};

/// Registers the records and their lists, so that they may travel in queued signals. Call once, before the first
/// object that emits them exists.
void registerMetaTypes();

} // namespace epr

Q_DECLARE_METATYPE(epr::TrackInfo)
Q_DECLARE_METATYPE(epr::FingerprintResult)
Q_DECLARE_METATYPE(epr::MatchGroup)
Q_DECLARE_METATYPE(epr::ScanOptions)
Q_DECLARE_METATYPE(epr::Envelope)
