// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"

#include "audiofile.h"
#include "readers.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace epr {

namespace {

/// Nothing (null) when the extension has no reader.
const Format *formatOf(const QString &suffix)
{
    for (const Format &format : formats) {
        for (const QLatin1StringView extension : format.extensions.tokenize(u' ')) {
            if (extension == suffix)
                return &format;
        }
    }
    return nullptr;
}

Result<> probe(AudioFile &file, ProbeResult &result)
{
    if (const Result<> opened = file.openRegular(); !opened)
        return failure(QCoreApplication::translate("epr::ProbeResult", "Cannot open file: %1").arg(opened.error()));

    const QString suffix = QFileInfo(file.fileName()).suffix().toLower();
    const Format *const format = formatOf(suffix);
    result.format = format ? QString(format->name) : suffix.toUpper();
    if (format && !format->read(file, result))
        return failure(QCoreApplication::translate("epr::ProbeResult", "Unrecognised or damaged %1 container")
                           .arg(suffix.toUpper()));
    return {};
}

} // namespace

bool isReadableExtension(const QString &suffix)
{
    return formatOf(suffix) != nullptr;
}

bool probeFile(AudioFile &file, ProbeResult &result, QString *error)
{
    const Result<> outcome = probe(file, result);
    if (!outcome && error && error->isEmpty())
        *error = outcome.error();
    return outcome.has_value();
}

bool probeFile(const QString &path, ProbeResult &result, QString *error)
{
    AudioFile file(path);
    return probeFile(file, result, error);
}

} // namespace epr
