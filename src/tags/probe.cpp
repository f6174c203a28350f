// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"

#include "readers.h"
#include "result.h"

#include <QCoreApplication>
#include <QFile>
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

/// Opening a named pipe would wait for a writer for ever, so anything but a regular file (or a link to one) is
/// refused unopened. What does not exist is left to the device, which words the reason.
Result<> openRegular(QFile &file)
{
    const QFileInfo info(file.fileName());
    if (info.exists() && !info.isFile())
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
