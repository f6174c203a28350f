// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;

namespace epr {

/// Whether the file is text, a playlist or a manifest by what it begins with, or what stands behind its ID3v2 tags,
/// whatever its name says. Decoders follow such a file to the one that it points to, and play that in its place. At
/// most 4 KiB and the headers of the tags are read. False for an empty file and for one that cannot be read.
bool looksLikeText(const QString &path);

} // namespace epr
