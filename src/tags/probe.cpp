// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"

#include "fileproblems.h"
#include "readers.h"
#include "result.h"

#include <QCoreApplication>
#include <QFile>

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

Result<> openRegular(QFile &file)
{
    if (isSpecialFile(file.fileName()))
        return failure(QCoreApplication::translate("epr::ProbeResult", "Not a regular file"));
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    return {};
}

Result<> probe(const QString &path, ProbeResult &result)
{
    QFile file(path);
    if (const Result<> opened = openRegular(file); !opened)
        return failure(QCoreApplication::translate("epr::ProbeResult", "Cannot open file: %1").arg(opened.error()));

    const QString suffix = QFileInfo(path).suffix().toLower();
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

bool probeFile(const QString &path, ProbeResult &result, QString *error)
{
    const Result<> outcome = probe(path, result);
    if (!outcome && error && error->isEmpty())
        *error = outcome.error();
    return outcome.has_value();
}

} // namespace epr
