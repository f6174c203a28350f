// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;

namespace epr {

/// Call first in main(), before the application object exists. Where the toolkit's default media back-end is known to
/// fail on common files, picks the better one, unless the operator has chosen in QT_MEDIA_BACKEND.
void preferFfmpegMediaBackend();

/// Whether the media back-end in use cannot open a file of this name. It is then given the opened file; other files it
/// gets by name, because some back-ends go by the suffix.
[[nodiscard]] bool mediaBackendMisreadsName(const QString &path);

/// Whether the media back-end in use takes such a file's audio for something else and makes loud noise of it. It must
/// not be given the file at all.
[[nodiscard]] bool mediaBackendGarbles(const QString &path);

} // namespace epr
