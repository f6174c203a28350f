// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe.h"

#include "fileproblems.h"
#include "readers.h"
#include "result.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

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

/// A file that gives nothing more once the scan is stopped: a tag of a hundred megabytes on a slow share must not hold
/// Stop up until it is read. To a reader it looks like a file that is cut off there.
class StoppableFile final : public QFile {
public:
    StoppableFile(const QString &path, const std::atomic<qint32> *stop)
        : QFile(path)
        , m_stop(stop)
    {
    }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        constexpr qint64 slice = 1 << 20; // bytes between two looks
        qint64 count = 0;
        while (count < maxSize) {
            if (m_stop && m_stop->load(std::memory_order_relaxed) != 0)
                return -1;
            const qint64 read = QFile::readData(data + count, std::min(maxSize - count, slice));
            if (read <= 0)
                return count > 0 ? count : read;
            count += read;
        }
        return count;
    }

private:
    const std::atomic<qint32> *m_stop;
};

Result<> openRegular(QFile &file)
{
    if (isSpecialFile(file.fileName()))
        return failure(QCoreApplication::translate("epr::ProbeResult", "Not a regular file"));
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    return {};
}

Result<> probe(const QString &path, ProbeResult &result, const std::atomic<qint32> *stop)
{
    StoppableFile file(path, stop);
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

bool probeFile(const QString &path, ProbeResult &result, QString *error, const std::atomic<qint32> *stop)
{
    const Result<> outcome = probe(path, result, stop);
    if (!outcome && error && error->isEmpty())
        *error = outcome.error();
    return outcome.has_value();
}

} // namespace epr
