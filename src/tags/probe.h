// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

namespace epr {

class AudioFile;

/// What a reader learned about one audio file.
struct ProbeResult {
    Tags tags;
    StreamFacts stream;
    QString format; ///< container or codec name for the operator
    qint64 audioOffset = 0; ///< first byte of the audio payload
    qint64 audioLength = 0; ///< bytes
    bool audioRangeValid = false; ///< audioOffset and audioLength delimit a payload that is not empty

    /// The payload from begin up to end; none when that is not behind begin.
    void setPayload(qint64 begin, qint64 end)
    {
        audioOffset = begin;
        audioLength = end > begin ? end - begin : 0;
        audioRangeValid = audioLength > 0;
    }

    bool operator==(const ProbeResult &) const = default;
};

/// Reads tags, technical properties and the payload range of the file at path into result, which the caller passes
/// in its default state. The reader is chosen by the extension alone; a file with an extension that has no reader
/// succeeds with nothing but a format name. On false a message is written to error, unless one stands there already,
/// and result holds what was read before the failure. Re-entrant.
[[nodiscard]] bool probeFile(const QString &path, ProbeResult &result, QString *error = nullptr);

/// The same for a file that is not open yet; it stays open for more, unless it cannot be opened. After a stop the
/// result says nothing about the file.
[[nodiscard]] bool probeFile(AudioFile &file, ProbeResult &result, QString *error = nullptr);

/// True for an extension that has a reader. Case-sensitive: pass the suffix in lower case, without the dot.
bool isReadableExtension(const QString &suffix);

} // namespace epr
