// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filebytes.h"
#include "readers.h"

#include <optional>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 atomHeaderSize = 8;
constexpr qint64 itemReadSize = 4096; ///< titles are short; cover art is not wanted
constexpr qint64 movieHeaderSize = 32; ///< up to and with the duration of version 1
constexpr qint64 metaHeaderSize = 4; ///< version and flags before a "meta" atom's children

struct Atom {
    QByteArray type; ///< four bytes
    qint64 payload = 0; ///< where it starts; may lie past end when the size is hostile
    qint64 end = 0;
};

struct Span {
    qint64 position = 0;
    qint64 end = 0;
};

/// The copyright sign is the one byte 0xA9.
constexpr TagField itemFields[] {
    { "\251nam"_L1, storeText<&Tags::title> },
    { "\251ART"_L1, storeText<&Tags::artist> },
    { "\251alb"_L1, storeText<&Tags::album> },
    { "aART"_L1, storeText<&Tags::albumArtist> },
    { "\251gen"_L1, storeText<&Tags::genre> },
    { "gnre"_L1, storeText<&Tags::genre> },
    { "\251day"_L1, storeYear },
    { "\251cmt"_L1, storeText<&Tags::comment> },
    { "trkn"_L1, storeTrack },
};

/// The atom at position, which must end within end. Nothing when it does not or when its header is cut off.
std::optional<Atom> readAtom(QIODevice &device, qint64 position, qint64 end)
{
    const QByteArray header = readAt(device, position, 2 * atomHeaderSize);
    ByteCursor cursor(header);
    quint64 size = cursor.u32be();
    Atom atom;
    atom.type = cursor.take(4).toByteArray();
    if (!cursor.ok())
        return std::nullopt;
    atom.payload = position + atomHeaderSize;
    const auto left = static_cast<quint64>(end - position);
    if (size == 0) {
        size = left;
    } else if (size == 1) {
        size = cursor.u64be();
        atom.payload += atomHeaderSize;
    }
    if (size < quint64(atomHeaderSize) || size > left)
        return std::nullopt;
    atom.end = position + static_cast<qint64>(size);
    return atom;
}

/// Where the children of a container atom start; nothing for any other atom.
std::optional<qint64> childrenOf(const Atom &atom)
{
    if (atom.type == "moov" || atom.type == "trak" || atom.type == "mdia" || atom.type == "udta")
        return atom.payload;
    if (atom.type == "meta")
        return atom.payload + metaHeaderSize;
    return std::nullopt;
}

void readMovieHeader(QIODevice &device, const Atom &atom, ProbeResult &result)
{
    const QByteArray body = readAt(device, atom.payload, movieHeaderSize);
    if (body.size() < movieHeaderSize)
        return;
    ByteCursor cursor(body);
    const bool wide = cursor.u8() == 1;
    const quint32 timescale = cursor.at(wide ? 20 : 12).u32be();
    const quint64 duration = wide ? cursor.u64be() : cursor.u32be();
    if (timescale != 0)
        result.stream.durationMs = mulDiv(duration, 1000, timescale);
}

/// The value in an item's body, which is a "data" atom; nothing when there is none.
std::optional<QByteArrayView> itemValue(QByteArrayView body)
{
    constexpr qsizetype valueStart = 16; // past the data atom's header, type indicator and locale
    if (body.size() < valueStart || body.sliced(4, 4) != "data")
        return std::nullopt;
    const qint64 declared = qint64(ByteCursor(body).u32be()) - valueStart;
    const QByteArrayView present = body.sliced(valueStart);
    return present.first(static_cast<qsizetype>(std::clamp<qint64>(declared, 0, present.size())));
}

/// What an item says, as text; nothing when it says nothing that counts.
std::optional<QString> itemText(QByteArrayView type, QByteArrayView value)
{
    ByteCursor cursor(value);
    if (type == "gnre") {
        const QString genre = id3Genre(cursor.u16be() - 1); // counted from 1
        return genre.isEmpty() ? std::nullopt : std::optional(genre);
    }
    if (type == "trkn")
        return value.size() < 4 ? std::nullopt : std::optional(QString::number(cursor.at(2).u16be()));
    return cleanTagText(QString::fromUtf8(value));
}

void applyItem(QByteArrayView type, QByteArrayView value, Tags &tags)
{
    if (const std::optional<QString> text = itemText(type, value))
        storeTag(itemFields, QString::fromLatin1(type), *text, tags);
}

/// Reads the items of an "ilst" atom, whose children lie in [start, end).
void readItemList(QIODevice &device, qint64 start, qint64 end, Tags &tags)
{
    qint64 position = start;
    for (int count = 0; count < maxBlocks && end - position >= atomHeaderSize; ++count) {
        const QByteArray header = readAt(device, position, atomHeaderSize);
        ByteCursor cursor(header);
        const qint64 size = cursor.u32be();
        const QByteArrayView type = cursor.take(4);
        if (!cursor.ok() || size < atomHeaderSize || size > end - position)
            return;
        const QByteArray body =
            readAt(device, position + atomHeaderSize, std::min(size - atomHeaderSize, itemReadSize));
        if (const std::optional<QByteArrayView> value = itemValue(body))
            applyItem(type, *value, tags);
        position += size;
    }
}

void readLeaf(QIODevice &device, const Atom &atom, ProbeResult &result)
{
    if (atom.type == "ilst")
        readItemList(device, atom.payload, atom.end, result.tags);
    else if (atom.type == "mvhd")
        readMovieHeader(device, atom, result);
    else if (atom.type == "mdat")
        result.setPayload(atom.payload, atom.end);
}

/// Reads the atoms in [start, end) and in the containers among them.
void walkAtoms(QIODevice &device, qint64 start, qint64 end, ProbeResult &result)
{
    // A list of what is still to be walked, and no recursion: the file decides how deep its containers are nested.
    QList<Span> pending { { start, end } };
    for (int count = 0; count < maxBlocks && !pending.isEmpty(); ++count) {
        Span &span = pending.last();
        std::optional<Atom> atom;
        if (span.end - span.position >= atomHeaderSize)
            atom = readAtom(device, span.position, span.end);
        if (!atom) {
            pending.removeLast();
            continue;
        }
        span.position = atom->end;
        if (const std::optional<qint64> children = childrenOf(*atom))
            pending.append({ *children, atom->end });
        else
            readLeaf(device, *atom, result);
    }
}

} // namespace

bool readMp4(QIODevice &device, ProbeResult &result)
{
    walkAtoms(device, 0, device.size(), result);
    // Coded channel layouts are not looked into; nearly all of a music library is stereo.
    if (result.stream.channels == 0)
        result.stream.channels = 2;
    result.stream.bitrateKbps = averageKbps(device.size(), result.stream.durationMs);
    return result.stream.durationMs >= 1 || result.audioRangeValid;
}

} // namespace epr
