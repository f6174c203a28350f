// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "probe.h"

#include <span>

class QIODevice;

namespace epr {

// A reader takes the open file and fills in what it finds. It returns false for a file that is not of its format or is
// too damaged to be of use.

/// MPEG audio (Layers I to III) with ID3v2 and ID3v1 tags. An APE tag at the end is stepped over. False when there is
/// no payload or no frame in its first 256 KiB.
[[nodiscard]] bool readMpeg(QIODevice &device, ProbeResult &result);

/// FLAC: stream properties, Vorbis comments and the payload after the last metadata block. False without the
/// signature at the very start or when the list of metadata blocks is cut off.
[[nodiscard]] bool readFlac(QIODevice &device, ProbeResult &result);

/// Ogg Vorbis and Opus: the header packets and the duration from the last page. False only when the file is no Ogg
/// file. There is no payload range: the header packets share pages with audio.
[[nodiscard]] bool readOgg(QIODevice &device, ProbeResult &result);

/// RIFF WAVE: the format, the INFO list and the "data" chunk, which is the payload. False when there is no such chunk
/// with anything in it.
[[nodiscard]] bool readWave(QIODevice &device, ProbeResult &result);

/// AIFF and AIFF-C: the common chunk, name, author and the "SSND" chunk, which holds the payload. False when the
/// duration stays unknown.
[[nodiscard]] bool readAiff(QIODevice &device, ProbeResult &result);

/// MPEG-4 audio: duration, tags and the media data as payload; sampleRate stays unknown and channels becomes 2. False
/// when there is neither a duration nor a payload.
[[nodiscard]] bool readMp4(QIODevice &device, ProbeResult &result);

/// The most bytes of a tag's text that are read, in the file's encoding. A text is cut there, at a whole character:
/// what is longer is no name of anything, and a hostile one would fill the memory of every thread that reads.
inline constexpr qsizetype maxTextBytes = 1 << 20;

/// Text from UTF-8, cut at maxTextBytes.
QString utf8Text(QByteArrayView bytes);

/// Applies a Vorbis comment, the tags of FLAC and Ogg, from the length of its vendor text on. Keys are
/// case-insensitive, a later comment of a kind overwrites an earlier one, and reading ends where the bytes do.
void readVorbisComment(QByteArrayView bytes, Tags &tags);

/// Reads an ID3v2 tag at the start of the device. Returns where the tag ends (header, body and footer), 0 when there
/// is no tag; a tag too large to be read still counts. Unsynchronisation, compression and encryption are not undone:
/// such frames give garbled text or none.
[[nodiscard]] qint64 readId3v2(QIODevice &device, ProbeResult &result);

/// Fills the fields that are still empty from an ID3v1 tag at the end of the device. Returns the bytes that the tag
/// takes, 0 when there is none or nothing else. Its comment is not read.
[[nodiscard]] qint64 readId3v1(QIODevice &device, ProbeResult &result);

/// Name of an ID3v1 genre number; empty when the number is not from 0 to 83.
QString id3Genre(int number);

/// What a format calls a tag, and how the tag's text is put into the record. A reader has a table of these.
struct TagField {
    QLatin1StringView identifier; ///< compared as it stands
    void (*store)(Tags &tags, const QString &text);
};

template <QString Tags::*field> void storeText(Tags &tags, const QString &text)
{
    tags.*field = text;
}

/// The year of a date that starts with it ("2004-05-01"): its first four characters.
void storeYear(Tags &tags, const QString &text);

/// The track number in "3"; 0 when the text is no decimal integer or it is negative.
void storeTrack(Tags &tags, const QString &text);

/// The track number in "3" or "3/12"; 0 when there is none.
void storeTrackOfTotal(Tags &tags, const QString &text);

/// Stores the text where the format's table says; an identifier that is not in it changes nothing. A later text
/// overwrites an earlier one.
void storeTag(std::span<const TagField> fields, QStringView identifier, const QString &text, Tags &tags);

/// The text up to its first NUL character, without white space at either end. Every tag value passes through here.
QString cleanTagText(const QString &text);

struct Format {
    QLatin1StringView extensions; ///< lower case, parted by single spaces
    QLatin1StringView name; ///< for the operator; a reader that learns more may say so
    bool (*read)(QIODevice &device, ProbeResult &result);
};

/// Every format that can be read.
inline constexpr Format formats[] {
    { QLatin1StringView("mp3 mp2"), QLatin1StringView("MPEG Audio"), readMpeg },
    { QLatin1StringView("flac"), QLatin1StringView("FLAC"), readFlac },
    { QLatin1StringView("ogg oga opus"), QLatin1StringView("Ogg"), readOgg },
    { QLatin1StringView("wav wave"), QLatin1StringView("WAVE"), readWave },
    { QLatin1StringView("aiff aif aifc"), QLatin1StringView("AIFF"), readAiff },
    { QLatin1StringView("m4a m4b mp4 aac"), QLatin1StringView("MPEG-4 Audio"), readMp4 },
};

} // namespace epr
