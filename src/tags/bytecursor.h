// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QtEndian>

namespace epr {

/// Walks bytes in memory without ever reading past them. Asking for more than is left yields zero or an empty view,
/// exhausts the cursor and leaves ok() false from then on.
class ByteCursor final {
public:
    explicit ByteCursor(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }

    [[nodiscard]] bool ok() const { return m_ok; }
    [[nodiscard]] qsizetype remaining() const { return m_bytes.size() - m_position; }

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

} // namespace epr
