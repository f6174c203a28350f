// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "probe.h"

class QIODevice;

namespace epr {

/// Reads an ID3v2 tag at the start of the device. Returns where the tag ends (header, body and footer), 0 when there
/// is no tag; a tag too large to be read still counts. Unsynchronisation, compression and encryption are not undone:
/// such frames give garbled text or none.
[[nodiscard]] qint64 readId3v2(QIODevice &device, ProbeResult &result);

/// Fills the fields that are still empty from an ID3v1 tag at the end of the device. Returns the bytes that the tag
/// takes, 0 when there is none or nothing else. Its comment is not read.
[[nodiscard]] qint64 readId3v1(QIODevice &device, ProbeResult &result);

/// Name of an ID3v1 genre number; empty when the number is not from 0 to 83.
QString id3Genre(int number);

} // namespace epr
