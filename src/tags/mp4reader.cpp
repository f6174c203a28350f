// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mp4reader.h"

#include "bytecursor.h"
#include "checkedmath.h"
#include "id3genres.h"
#include "readat.h"
#include "tagtext.h"

#include <QIODevice>
#include <QList>

#include <algorithm>
#include <array>
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

struct ItemField {
    QByteArrayView type;
    QString Tags::*field;
};

/// The copyright sign is the one byte 0xA9.
constexpr std::array<ItemField, 6> textFields { {
    { "\251nam", &Tags::title },
    { "\251ART", &Tags::artist },
    { "\251alb", &Tags::album },
    { "aART", &Tags::albumArtist },
    { "\251gen", &Tags::genre },
    { "\251cmt", &Tags::comment },
} };

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

void setPayload(const Atom &atom, ProbeResult &result)
{
    result.audioOffset = atom.payload;
    result.audioLength = std::max<qint64>(atom.end - atom.payload, 0);
    result.audioRangeValid = result.audioLength > 0;
}

void readLeaf(QIODevice &device, const Atom &atom, ProbeResult &result)
{
    if (atom.type == "ilst")
        readItemList(device, atom.payload, atom.end, result);
    else if (atom.type == "mvhd")
        readMovieHeader(device, atom, result);
    else if (atom.type == "mdat")
        setPayload(atom, result);
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

void applyItem(QByteArrayView type, QByteArrayView value, ProbeResult &result)
{
    ByteCursor cursor(value);
    if (type == "gnre") {
        const QString genre = id3Genre(cursor.u16be() - 1); // counted from 1
        if (!genre.isEmpty())
            result.tags.genre = genre;
    } else if (type == "trkn") {
        if (value.size() >= 4)
            result.tags.trackNo = cursor.at(2).u16be();
    } else if (type == "\251day") {
        result.tags.year = yearOfDate(cleanTagText(QString::fromUtf8(value)));
    } else if (const auto entry = std::find_if(textFields.begin(), textFields.end(),
                                               [&](const ItemField &field) { return field.type == type; });
               entry != textFields.end()) {
        result.tags.*entry->field = cleanTagText(QString::fromUtf8(value));
    }
}

} // namespace

void readItemList(QIODevice &device, qint64 start, qint64 end, ProbeResult &result)
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
            applyItem(type, *value, result);
        position += size;
    }
}

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

bool readMp4(QIODevice &device, ProbeResult &result)
{
    result.format = u"MPEG-4 Audio"_s;
    walkAtoms(device, 0, device.size(), result);
    // Coded channel layouts are not looked into; nearly all of a music library is stereo.
    if (result.stream.channels == 0)
        result.stream.channels = 2;
    result.stream.bitrateKbps = averageKbps(device.size(), result.stream.durationMs);
    return result.stream.durationMs >= 1 || result.audioRangeValid;
}

} // namespace epr
