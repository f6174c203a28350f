// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QString>

namespace epr {

/// The text up to its first NUL character, without white space at either end. Every tag value passes through here.
[[nodiscard]] QString cleanTagText(const QString &text);

/// Clean text from the bytes of an ID3v2 text field. encoding: 0 Latin-1, 1 UTF-16 with byte-order mark, 2 UTF-16
/// big-endian, anything else UTF-8.
[[nodiscard]] QString decodeId3Text(quint8 encoding, QByteArrayView bytes);

/// The year of a date that starts with it ("2004-05-01"): its first four characters.
[[nodiscard]] QString yearOfDate(const QString &date);

/// A decimal integer, or 0 when the text is not one or it is negative.
[[nodiscard]] qint32 numberOrZero(const QString &text);

/// The track number in "3" or "3/12"; 0 when there is none.
[[nodiscard]] qint32 trackNumber(const QString &text);

} // namespace epr
