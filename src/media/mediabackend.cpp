// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mediabackend.h"

#include <QString>
#include <QVersionNumber>

#include <algorithm>

namespace epr {

namespace {

constexpr QByteArrayView ffmpegBackend = "ffmpeg";

bool usesQtBefore(int major, int minor)
{
    return QVersionNumber::fromString(QLatin1StringView(qVersion())) < QVersionNumber(major, minor);
}

// The one whose faults are worked around below.
bool usesEarlyFfmpegBackend()
{
    return usesQtBefore(6, 5) && qgetenv("QT_MEDIA_BACKEND") == ffmpegBackend;
}

} // namespace

void preferFfmpegMediaBackend()
{
#ifdef Q_OS_LINUX
    if (usesQtBefore(6, 5) && qEnvironmentVariableIsEmpty("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", ffmpegBackend.toByteArray());
#endif
}

// The ffmpeg back-end of Qt 6.4 turns letters outside ASCII into question marks.
bool mediaBackendMisreadsName(const QString &path)
{
    const bool ascii = std::all_of(path.begin(), path.end(), [](QChar letter) { return letter.unicode() < 128; });
    return !ascii && usesEarlyFfmpegBackend();
}

// MPEG layer II is decoded to 16 bits and then read as floating point numbers.
bool mediaBackendGarbles(const QString &path)
{
    return path.endsWith(QLatin1StringView(".mp2"), Qt::CaseInsensitive) && usesEarlyFfmpegBackend();
}

} // namespace epr
