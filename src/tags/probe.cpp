// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"

#include "aiffreader.h"
#include "flacreader.h"
#include "mp4reader.h"
#include "mpegreader.h"
#include "oggreader.h"
#include "wavereader.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

using Reader = bool (*)(QIODevice &device, ProbeResult &result);

struct ReaderEntry {
    QLatin1StringView suffix;
    Reader read;
};

constexpr std::array<ReaderEntry, 15> readers { {
    { "mp3"_L1, readMpeg },
    { "mp2"_L1, readMpeg },
    { "flac"_L1, readFlac },
    { "wav"_L1, readWave },
    { "wave"_L1, readWave },
    { "m4a"_L1, readMp4 },
    { "m4b"_L1, readMp4 },
    { "mp4"_L1, readMp4 },
    { "aac"_L1, readMp4 },
    { "ogg"_L1, readOgg },
    { "oga"_L1, readOgg },
    { "opus"_L1, readOgg },
    { "aiff"_L1, readAiff },
    { "aif"_L1, readAiff },
    { "aifc"_L1, readAiff },
} };

Reader readerFor(const QString &suffix)
{
    const auto entry = std::find_if(readers.begin(), readers.end(),
                                    [&](const ReaderEntry &candidate) { return candidate.suffix == suffix; });
    return entry == readers.end() ? nullptr : entry->read;
}

bool fail(QString *error, const QString &message)
{
    if (error && error->isEmpty())
        *error = message;
    return false;
}

/// Opening a named pipe would wait for a writer for ever, so anything but a regular file (or a link to one) is
/// refused unopened. What does not exist is left to the device, which words the reason.
bool openRegular(QFile &file, QString &reason)
{
    const QFileInfo info(file.fileName());
    if (info.exists() && !info.isFile()) {
        reason = QCoreApplication::translate("epr::ProbeResult", "Not a regular file");
        return false;
    }
    if (file.open(QIODevice::ReadOnly))
        return true;
    reason = file.errorString();
    return false;
}

} // namespace

bool isReadableExtension(const QString &suffix)
{
    return readerFor(suffix) != nullptr;
}

bool probeFile(const QString &path, ProbeResult &result, QString *error)
{
    QFile file(path);
    QString reason;
    if (!openRegular(file, reason))
        return fail(error, QCoreApplication::translate("epr::ProbeResult", "Cannot open file: %1").arg(reason));

    const QString suffix = QFileInfo(path).suffix().toLower();
    const Reader read = readerFor(suffix);
    if (!read) {
        result.format = suffix.toUpper();
        result.audioRangeValid = false;
        return true;
    }
    if (read(file, result))
        return true;
    return fail(
        error,
        QCoreApplication::translate("epr::ProbeResult", "Unrecognised or damaged %1 container").arg(suffix.toUpper()));
}

} // namespace epr
