// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewblobs.h"

#include "checkstream.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QIODevice>

#include <concepts>
#include <tuple>

namespace epr {

template <typename Record, typename Wanted>
concept Is = std::same_as<std::remove_const_t<Record>, Wanted>;

// The members that are stored of each record, for both ways alike.

template <Is<Tags> Record> static auto membersOf(Record &r)
{
    return std::tie(r.title, r.artist, r.album, r.albumArtist, r.genre, r.year, r.comment, r.trackNo);
}

template <Is<StreamFacts> Record> static auto membersOf(Record &r)
{
    return std::tie(r.durationMs, r.bitrateKbps, r.sampleRate, r.channels, r.durationIsGuess);
}

template <Is<TrackInfo> Record> static auto membersOf(Record &r)
{
    return std::tie(r.flags, r.path, r.fileName, r.suffix, r.size, r.mtime, r.tags, r.stream, r.fullHash, r.audioHash,
                    r.analysed, r.error, r.keys.whole, r.keys.audio);
}

template <Is<MemberSpan> Record> static auto membersOf(Record &r)
{
    return std::tie(r.startMs, r.soundMs, r.endMs, r.isPlaced, r.isEndGuess);
}

template <Is<MatchLink> Record> static auto membersOf(Record &r)
{
    return std::tie(r.first, r.second, r.type, r.errorRate);
}

template <Is<MatchGroup> Record> static auto membersOf(Record &r)
{
    return std::tie(r.id, r.matchType, r.members, r.keep, r.confidence, r.reclaimableBytes, r.spans, r.edits, r.links);
}

template <Is<ScanOptions> Record> static auto membersOf(Record &r)
{
    return std::tie(r.roots, r.extensions, r.excludes, r.followSymlinks, r.includeHidden, r.minBytes, r.minDurationMs,
                    r.detectIdentical, r.detectSameAudio, r.detectAcoustic, r.detectMetadata, r.checkWhole,
                    r.compareThoroughly, r.fingerprintEngine, r.fingerprintSeconds, r.threshold, r.chromaprintThreshold,
                    r.durationTolerance, r.decoderThreads, r.metadataTolerance, r.useCache, r.onlyPossibleCopies,
                    r.keeperPolicy, r.keeperRules, r.protectedFolders, r.formatPreference);
}

template <Is<GroupDecision> Record> static auto membersOf(Record &r)
{
    return std::tie(r.state, r.keep, r.keeperByHand, r.ticked, r.byHand);
}

template <Is<ReviewHead> Record> static auto membersOf(Record &r)
{
    return std::tie(r.options, r.scanned, r.unreadableFolders, r.files, r.trackCount, r.storedTracks, r.groupCount);
}

template <Is<StoredTracks> Record> static auto membersOf(Record &r)
{
    return std::tie(r.indexes, r.tracks);
}

template <Is<StoredGroups> Record> static auto membersOf(Record &r)
{
    return std::tie(r.groups);
}

template <Is<StoredDecision> Record> static auto membersOf(Record &r)
{
    return std::tie(r.group, r.decision, r.check);
}

template <Is<ReviewPlaceRecord> Record> static auto membersOf(Record &r)
{
    return std::tie(r.group, r.track);
}

template <typename Record>
concept Stored = requires(Record &record)
{
    membersOf(record);
};

// Not in an unnamed namespace: Qt's operators for lists look for these in that of the records.

static QDataStream &operator<<(QDataStream &stream, const GroupCheck &check)
{
    stream << check.measures.size() << check.pairs.size();
    for (auto file = check.measures.cbegin(); file != check.measures.cend(); ++file)
        stream << file.key() << *file << file->error;
    for (const PairCheck &pair : check.pairs)
        stream << pair.first << pair.second << pair;
    return stream;
}

static QDataStream &operator>>(QDataStream &stream, GroupCheck &check)
{
    qsizetype files = 0;
    qsizetype pairs = 0;
    stream >> files >> pairs;
    for (; files > 0 && stream.status() == QDataStream::Ok; --files) {
        qint32 track = -1;
        stream >> track;
        SoundMeasures &measures = check.measures[track];
        stream >> measures >> measures.error;
    }
    for (; pairs > 0 && stream.status() == QDataStream::Ok; --pairs) {
        PairCheck &pair = check.pairs.emplaceBack();
        stream >> pair.first >> pair.second >> pair;
    }
    return stream;
}

template <Stored Record> static QDataStream &operator<<(QDataStream &stream, const Record &record)
{
    std::apply([&stream](const auto &...members) { (stream << ... << members); }, membersOf(record));
    return stream;
}

template <Stored Record> static QDataStream &operator>>(QDataStream &stream, Record &record)
{
    std::apply([&stream](auto &...members) { (stream >> ... >> members); }, membersOf(record));
    return stream;
}

namespace {

constexpr qsizetype checksumBytes = 8;

QByteArray checksum(ReviewKey key, QByteArrayView content)
{
    QCryptographicHash hash(QCryptographicHash::Md5); // against faults of a disk, not of people
    QByteArray place;
    QDataStream(&place, QIODevice::WriteOnly) << qint32 { reviewLayout } << key.part << key.number;
    hash.addData(place);
    hash.addData(content);
    return hash.result().first(checksumBytes);
}

// A local time would be another one after a change of the clock or of the zone.
template <typename Record> void setTimesTo(Record &record, Qt::TimeSpec spec)
{
    if constexpr (std::same_as<Record, StoredTracks>) {
        for (TrackInfo &track : record.tracks)
            track.mtime = track.mtime.toTimeSpec(spec);
    } else if constexpr (std::same_as<Record, ReviewHead>) {
        record.scanned = record.scanned.toTimeSpec(spec);
    }
}

} // namespace

template <typename Record> QByteArray toBlob(ReviewKey key, const Record &record)
{
    Record stored = record;
    setTimesTo(stored, Qt::UTC);
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_4);
    stream << stored;
    return checksum(key, content) + content;
}

template <typename Record> std::optional<Record> fromBlob(ReviewKey key, const QByteArray &blob)
{
    const QByteArray content = blob.sliced(std::min(checksumBytes, blob.size()));
    if (checksum(key, content) != blob.first(blob.size() - content.size()))
        return std::nullopt;
    QDataStream stream(content);
    stream.setVersion(QDataStream::Qt_6_4);
    Record record;
    stream >> record;
    if (stream.status() != QDataStream::Ok || !stream.atEnd())
        return std::nullopt;
    setTimesTo(record, Qt::LocalTime);
    return record;
}

template QByteArray toBlob(ReviewKey, const ReviewHead &);
template QByteArray toBlob(ReviewKey, const StoredTracks &);
template QByteArray toBlob(ReviewKey, const StoredGroups &);
template QByteArray toBlob(ReviewKey, const StoredDecision &);
template QByteArray toBlob(ReviewKey, const ReviewPlaceRecord &);
template std::optional<ReviewHead> fromBlob(ReviewKey, const QByteArray &);
template std::optional<StoredTracks> fromBlob(ReviewKey, const QByteArray &);
template std::optional<StoredGroups> fromBlob(ReviewKey, const QByteArray &);
template std::optional<StoredDecision> fromBlob(ReviewKey, const QByteArray &);
template std::optional<ReviewPlaceRecord> fromBlob(ReviewKey, const QByteArray &);

} // namespace epr
