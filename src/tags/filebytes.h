// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <limits>

/// Bytes of a file and the numbers in them, none of which can be believed: every size may be hostile.
namespace epr {

/// Blocks (chunks, pages, atoms, metadata blocks) that one file is walked for. A day of one-second fragments stays
/// below it; a file of nothing but empty blocks must not hold a scan up.
inline constexpr int maxBlocks = 200'000;

/// The bytes at [offset, offset + count) as far as the device has them. The buffer is sized by what is there, so a
/// length field may be passed as it stands in the file.
inline QByteArray readAt(QIODevice &device, qint64 offset, qint64 count)
{
    const qint64 size = device.size();
    if (offset < 0 || offset >= size || count <= 0 || !device.seek(offset))
        return {};
    return device.read(std::min(count, size - offset));
}

/// Walks bytes in memory without ever reading past them. Asking for more than is left yields zero or an empty view,
/// exhausts the cursor and leaves ok() false from then on.
class ByteCursor final {
public:
    explicit ByteCursor(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }

    bool ok() const { return m_ok; }
    qsizetype remaining() const { return m_bytes.size() - m_position; }

    /// Moves to an absolute position; returns the cursor so that a field reads as cursor.at(12).u32be().
    ByteCursor &at(qint64 position)
    {
        if (!m_ok || position < 0 || position > m_bytes.size())
            exhaust();
        else
            m_position = static_cast<qsizetype>(position);
        return *this;
    }

    QByteArrayView take(qint64 count)
    {
        if (count < 0 || count > remaining()) {
            exhaust();
            return {};
        }
        const QByteArrayView taken = m_bytes.sliced(m_position, static_cast<qsizetype>(count));
        m_position += taken.size();
        return taken;
    }

    void skip(qint64 count) { take(count); }

    quint8 u8() { return big<quint8>(); }
    quint16 u16be() { return big<quint16>(); }
    quint32 u32be() { return big<quint32>(); }
    quint64 u64be() { return big<quint64>(); }
    quint16 u16le() { return little<quint16>(); }
    quint32 u32le() { return little<quint32>(); }
    quint64 u64le() { return little<quint64>(); }
    quint32 u24be()
    {
        const QByteArrayView bytes = take(3);
        return bytes.isEmpty() ? 0
                               : quint32(quint8(bytes[0])) << 16 | quint32(quint8(bytes[1])) << 8 | quint8(bytes[2]);
    }

private:
    template <typename T> T big()
    {
        const QByteArrayView bytes = take(sizeof(T));
        return bytes.isEmpty() ? T(0) : qFromBigEndian<T>(bytes.data());
    }

    template <typename T> T little()
    {
        const QByteArrayView bytes = take(sizeof(T));
        return bytes.isEmpty() ? T(0) : qFromLittleEndian<T>(bytes.data());
    }

    void exhaust()
    {
        m_ok = false;
        m_position = m_bytes.size();
    }

    QByteArrayView m_bytes;
    qsizetype m_position = 0;
    bool m_ok = true;
};

/// value * factor / divisor, truncated; 0 (unknown) when the divisor is 0 or the product leaves signed 64 bits, as it
/// does for a granule position or a duration of all ones.
constexpr qint64 mulDiv(quint64 value, quint64 factor, quint64 divisor)
{
    constexpr quint64 limit = static_cast<quint64>(std::numeric_limits<qint64>::max());
    if (divisor == 0 || (factor != 0 && value > limit / factor))
        return 0;
    return static_cast<qint64>(value * factor / divisor);
}

/// The value, or 0 (unknown) when it does not fit a non-negative 32-bit integer.
constexpr qint32 int32OrZero(quint64 value)
{
    return value > static_cast<quint64>(std::numeric_limits<qint32>::max()) ? 0 : static_cast<qint32>(value);
}

/// Average bit rate in kbit/s of so many bytes over so many milliseconds; 0 when unknown.
constexpr qint32 averageKbps(qint64 bytes, qint64 durationMs)
{
    if (bytes <= 0 || durationMs <= 0)
        return 0;
    const qint64 kbps = mulDiv(static_cast<quint64>(bytes), 8, static_cast<quint64>(durationMs));
    return int32OrZero(static_cast<quint64>(kbps));
}

} // namespace epr
