// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <limits>

namespace epr {

/// value * factor / divisor, truncated; 0 (unknown) when the divisor is 0 or the product leaves signed 64 bits, as it
/// does for a granule position or a duration of all ones.
[[nodiscard]] constexpr qint64 mulDiv(quint64 value, quint64 factor, quint64 divisor)
{
    constexpr quint64 limit = static_cast<quint64>(std::numeric_limits<qint64>::max());
    if (divisor == 0 || (factor != 0 && value > limit / factor))
        return 0;
    return static_cast<qint64>(value * factor / divisor);
}

/// The value, or 0 (unknown) when it does not fit a non-negative 32-bit integer.
[[nodiscard]] constexpr qint32 int32OrZero(quint64 value)
{
    return value > static_cast<quint64>(std::numeric_limits<qint32>::max()) ? 0 : static_cast<qint32>(value);
}

/// Average bit rate in kbit/s of so many bytes over so many milliseconds; 0 when unknown.
[[nodiscard]] constexpr qint32 averageKbps(qint64 bytes, qint64 durationMs)
{
    if (bytes <= 0 || durationMs <= 0)
        return 0;
    const qint64 kbps = mulDiv(static_cast<quint64>(bytes), 8, static_cast<quint64>(durationMs));
    return int32OrZero(static_cast<quint64>(kbps));
}

} // namespace epr
