// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "localmedia.h"

#include <QString>
#include <QVersionNumber>

#include <algorithm>

namespace epr {

// The ffmpeg back-end of Qt 6.4 turns letters outside ASCII into question marks.
bool mediaBackendMisreadsName(const QString &path)
{
    const bool ascii = std::all_of(path.begin(), path.end(), [](QChar letter) { return letter.unicode() < 128; });
    return !ascii && QVersionNumber::fromString(QLatin1StringView(qVersion())) < QVersionNumber(6, 5)
        && qgetenv("QT_MEDIA_BACKEND") == "ffmpeg";
}

} // namespace epr
