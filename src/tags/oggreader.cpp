// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filebytes.h"
#include "readers.h"

#include <QHash>

#include <optional>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 pageHeaderSize = 27;
constexpr qint64 tailSize = 131072; ///< two pages of the largest size end within it
constexpr qint64 maxHeaderSize = qint64(16) * 1024 * 1024; ///< of the file; bounds what is joined as well
constexpr qint32 opusGranuleRate = 48000; ///< Hz, whatever rate the encoder was fed

struct Page {
    bool continued = false; ///< the first packet began on an earlier page
    quint32 serial = 0; ///< of the logical stream
    QByteArray lacing;
    QByteArray body;
    qint64 next = 0; ///< where the next page starts
};

std::optional<Page> readPage(QIODevice &device, qint64 position)
{
    const QByteArray header = readAt(device, position, pageHeaderSize);
    if (header.size() < pageHeaderSize || !header.startsWith("OggS"))
        return std::nullopt;
    ByteCursor cursor(header);
    Page page;
    page.continued = cursor.at(5).u8() & 1;
    page.serial = cursor.at(14).u32le();
    const quint8 segments = cursor.at(26).u8();
    page.lacing = readAt(device, position + pageHeaderSize, segments);
    if (page.lacing.size() < segments)
        return std::nullopt;
    qint64 bodySize = 0;
    for (const char value : page.lacing)
        bodySize += quint8(value);
    const qint64 body = position + pageHeaderSize + segments;
    page.body = readAt(device, body, bodySize);
    page.next = body + bodySize;
    return page;
}

/// Cuts pages into packets and joins those that continue on a later page of their stream, as a comment packet with
/// cover art does.
class PacketJoiner final {
public:
    /// The packets that end on this page.
    QList<QByteArray> add(const Page &page);

    /// The packets begun and not ended.
    [[nodiscard]] QList<QByteArray> unfinished() const { return m_open.values(); }

private:
    QHash<quint32, QByteArray> m_open; ///< by stream
};

QList<QByteArray> PacketJoiner::add(const Page &page)
{
    QByteArray packet = m_open.take(page.serial);
    // The end of a packet whose beginning was never seen is no packet, nor is a beginning without its end.
    bool headless = page.continued && packet.isEmpty();
    if (!page.continued)
        packet.clear();

    QList<QByteArray> packets;
    bool open = !packet.isEmpty(); // and stays so over a page that holds no segment at all
    ByteCursor body(page.body);
    for (const char value : page.lacing) {
        const quint8 size = quint8(value);
        packet.append(body.take(size));
        if (!body.ok())
            return packets; // the file ends here
        open = size == 255;
        if (open)
            continue;
        if (!headless)
            packets.append(packet);
        headless = false;
        packet.clear();
    }
    if (open && !headless)
        m_open.insert(page.serial, packet);
    return packets;
}

/// Applies a header packet. granuleRate becomes the rate that the stream counts granules in.
void applyPacket(const QByteArray &packet, ProbeResult &result, qint32 &granuleRate)
{
    constexpr qsizetype identificationSize = 16;
    ByteCursor cursor(packet);
    if (packet.startsWith("\x01vorbis") && packet.size() >= identificationSize) {
        result.stream.channels = cursor.at(11).u8();
        result.stream.sampleRate = int32OrZero(cursor.at(12).u32le());
        result.format = u"Ogg Vorbis"_s;
        granuleRate = result.stream.sampleRate;
    } else if (packet.startsWith("OpusHead") && packet.size() >= identificationSize) {
        result.stream.channels = cursor.at(9).u8();
        result.stream.sampleRate = int32OrZero(cursor.at(12).u32le());
        result.format = u"Opus"_s;
        granuleRate = opusGranuleRate;
    } else if (packet.startsWith("\x03vorbis")) {
        readVorbisComment(QByteArrayView(packet).sliced(7), result.tags);
    } else if (packet.startsWith("OpusTags")) {
        readVorbisComment(QByteArrayView(packet).sliced(8), result.tags);
    }
}

/// Reads the header packets, which are the first two or three. Returns the granule rate in Hz, 0 when unknown.
qint32 readHeaderPackets(QIODevice &device, ProbeResult &result)
{
    qint32 granuleRate = 0;
    qsizetype seen = 0;
    PacketJoiner joiner;
    std::optional<Page> page = readPage(device, 0);
    while (page && seen <= 2) {
        QList<QByteArray> packets = joiner.add(*page);
        // The text comments stand in front of cover art that is too large to be joined to its end.
        const bool atLimit = page->next >= maxHeaderSize;
        if (atLimit)
            packets += joiner.unfinished();
        for (const QByteArray &packet : std::as_const(packets))
            applyPacket(packet, result, granuleRate);
        seen += packets.size();
        page = atLimit ? std::nullopt : readPage(device, page->next);
    }
    return granuleRate;
}

/// Granule position of the last page; 0 when there is none.
quint64 lastGranule(QIODevice &device)
{
    const qint64 size = device.size();
    const qint64 start = std::max<qint64>(size - tailSize, 0);
    const QByteArray tail = readAt(device, start, tailSize);
    if (tail.size() < pageHeaderSize)
        return 0;
    const qsizetype page = tail.lastIndexOf("OggS", tail.size() - pageHeaderSize);
    return page < 0 ? 0 : ByteCursor(tail).at(page + 6).u64le();
}

} // namespace

bool readOgg(QIODevice &device, ProbeResult &result)
{
    if (readAt(device, 0, 4) != "OggS")
        return false;
    const qint32 granuleRate = readHeaderPackets(device, result);
    // The samples that an Opus decoder drops at the start are counted: they are a fraction of a second.
    result.stream.durationMs = mulDiv(lastGranule(device), 1000, static_cast<quint64>(granuleRate));
    result.stream.bitrateKbps = averageKbps(device.size(), result.stream.durationMs);
    result.audioRangeValid = false;
    return true;
}

} // namespace epr
