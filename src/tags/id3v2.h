// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "proberesult.h"

#include <QByteArrayView>

class QIODevice;

namespace epr {

/// Reads an ID3v2 tag at the start of the device. Returns where the tag ends (header, body and footer), 0 when there
/// is no tag; a tag too large to be read still counts.
[[nodiscard]] qint64 readId3v2(QIODevice &device, ProbeResult &result);

/// Walks the frames of a tag body; version and flags are those of the tag header. Unsynchronisation, compression and
/// encryption are not undone: such frames give garbled text or none.
void walkId3v2Frames(QByteArrayView body, quint8 version, quint8 flags, ProbeResult &result);

/// Stores the text of a frame (three- or four-letter identifier, any case) in the field it belongs to. Later frames
/// overwrite; an empty text and an unknown identifier change nothing.
void applyId3Frame(ProbeResult &result, const QString &identifier, const QString &text);

} // namespace epr
