// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wavereader.h"

#include "bytecursor.h"
#include "checkedmath.h"
#include "chunkwalk.h"
#include "readat.h"
#include "tagtext.h"

#include <QIODevice>

#include <algorithm>
#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr quint32 formatSize = 16;
constexpr quint32 minListSize = 5;
constexpr quint32 maxListSize = 1048575;

struct InfoField {
    QByteArrayView id;
    QString Tags::*field;
};

constexpr std::array<InfoField, 5> textFields { {
    { "INAM", &Tags::title },
    { "IART", &Tags::artist },
    { "IPRD", &Tags::album },
    { "IGNR", &Tags::genre },
    { "ICMT", &Tags::comment },
} };

/// Returns the byte rate, 0 when it cannot be read.
quint32 readFormat(QIODevice &device, const Chunk &chunk, ProbeResult &result)
{
    const QByteArray body = readAt(device, chunk.body, formatSize);
    if (body.size() < qsizetype(formatSize))
        return 0;
    ByteCursor cursor(body);
    result.stream.channels = cursor.at(2).u16le();
    result.stream.sampleRate = int32OrZero(cursor.u32le());
    return cursor.u32le();
}

/// A size beyond the file is what a recorder leaves that was stopped hard, and what a writer into a pipe puts down:
/// the audio that is there counts.
void readData(const Chunk &chunk, qint64 fileSize, quint32 byteRate, ProbeResult &result)
{
    result.audioOffset = chunk.body;
    result.audioLength = std::min<qint64>(chunk.size, fileSize - chunk.body);
    result.audioRangeValid = result.audioLength > 0;
    if (byteRate != 0)
        result.stream.durationMs = mulDiv(static_cast<quint64>(result.audioLength), 1000, byteRate);
}

void applyInfo(QByteArrayView id, const QString &value, ProbeResult &result)
{
    if (value.isEmpty())
        return;
    if (id == "ICRD")
        result.tags.year = yearOfDate(value);
    else if (id == "ITRK")
        result.tags.trackNo = numberOrZero(value);
    else if (const auto entry = std::find_if(textFields.begin(), textFields.end(),
                                             [&](const InfoField &field) { return field.id == id; });
             entry != textFields.end())
        result.tags.*entry->field = value;
}

void readList(QIODevice &device, const Chunk &chunk, ProbeResult &result)
{
    const QByteArray body = readAt(device, chunk.body, chunk.size);
    if (body.size() < 12 || !body.startsWith("INFO"))
        return;
    ByteCursor cursor(body);
    cursor.skip(4);
    while (cursor.remaining() >= 8) {
        const QByteArrayView id = cursor.take(4);
        const quint32 size = cursor.u32le();
        const QByteArrayView value = cursor.take(size);
        if (!cursor.ok())
            return;
        applyInfo(id, cleanTagText(QString::fromLatin1(value)), result);
        cursor.skip(size & 1);
    }
}

} // namespace

bool readWave(QIODevice &device, ProbeResult &result)
{
    result.format = u"WAVE"_s;
    const QByteArray header = readAt(device, 0, 12);
    if (header.size() < 12 || !header.startsWith("RIFF") || !header.endsWith("WAVE"))
        return false;
    quint32 byteRate = 0;
    walkChunks(device, QSysInfo::LittleEndian, [&](const Chunk &chunk) {
        if (chunk.id == "data")
            readData(chunk, device.size(), byteRate, result);
        else if (chunk.overruns)
            return;
        else if (chunk.id == "fmt " && chunk.size >= formatSize)
            byteRate = readFormat(device, chunk, result);
        else if (chunk.id == "LIST" && chunk.size >= minListSize && chunk.size <= maxListSize)
            readList(device, chunk, result);
    });
    result.stream.bitrateKbps = int32OrZero(static_cast<quint64>(byteRate) * 8 / 1000);
    return result.audioRangeValid;
}

} // namespace epr
