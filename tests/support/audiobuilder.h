// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QtEndian>

/// Builds audio files byte by byte. Every function returns the bytes of one structure; files are their concatenation.
namespace epr::test {

template <typename T> QByteArray big(T value)
{
    QByteArray bytes(sizeof(T), '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

template <typename T> QByteArray little(T value)
{
    QByteArray bytes(sizeof(T), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

/// Four bytes of seven bits.
QByteArray syncsafe(quint32 value);

/// version is 2, 3 or 4 and decides the form of the header.
QByteArray id3v2Frame(const QByteArray &identifier, const QByteArray &body, int version = 3);
/// A text frame in Latin-1.
QByteArray id3v2Text(const QByteArray &identifier, const QByteArray &text, int version = 3);
QByteArray id3v2Tag(const QByteArray &body, int version = 3, int flags = 0);
/// 128 bytes; title and artist are padded with zeros, the album with spaces.
QByteArray id3v1Tag(const QByteArray &title, const QByteArray &artist, quint8 track, quint8 genre);
/// An APE tag with a header and 100 bytes of items. The flags stand at flagsAt in header and footer.
QByteArray apeTag(int flagsAt);

inline constexpr int mpegFrameSize = 417; ///< of the frames below
/// MPEG 1 Layer III, 128 kbit/s, 44100 Hz, stereo: whole frames and the beginning of one more.
QByteArray mpegAudio(qsizetype bytes);
/// One such frame with a VBR header at the given distance from its start.
QByteArray mpegVbrFrame(qsizetype distance, const QByteArray &header);

QByteArray flacBlock(quint8 type, const QByteArray &body, bool last = false);
QByteArray flacStreamInfo(quint64 sampleRate, quint64 channels, quint64 totalSamples);
/// A Vorbis comment structure of "KEY=value" texts.
QByteArray vorbisComment(const QByteArrayList &comments);

QByteArray vorbisIdentification(quint8 channels, quint32 sampleRate);
QByteArray opusIdentification(quint8 channels, quint32 inputRate);
/// Pages that hold the packets one after the other, each of at most maxSegments lacing values; without packets one
/// page that has no segments.
QByteArray oggPages(const QByteArrayList &packets, quint64 granule, quint32 serial = 1, int maxSegments = 255);

/// A chunk with its pad byte.
QByteArray riffChunk(const QByteArray &id, const QByteArray &body);
QByteArray waveFormat(quint16 channels, quint32 sampleRate, quint32 byteRate);
QByteArray waveFile(const QByteArray &chunks);
QByteArray formChunk(const QByteArray &id, const QByteArray &body);
QByteArray aiffCommon(quint16 channels, quint32 frames, quint16 bits, quint16 exponent, quint64 mantissa);
QByteArray aiffFile(const QByteArray &chunks);

QByteArray atom(const QByteArray &type, const QByteArray &body);
/// The same with a 64-bit size.
QByteArray wideAtom(const QByteArray &type, const QByteArray &body);
QByteArray movieHeader(quint32 timescale, quint32 duration);
/// An "ilst" item with its "data" atom.
QByteArray listItem(const QByteArray &type, const QByteArray &value);
/// A movie atom with a header and, under "udta" and "meta", the items.
QByteArray movie(const QByteArray &header, const QByteArray &items);

} // namespace epr::test
