// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "result.h"

#include <QFile>

#include <atomic>

namespace epr {

/// A file that is opened once for its tags and its digests: on a network share every opening and every question costs a
/// round trip. Once *stop is not 0 it gives nothing more: a tag of a hundred megabytes on a slow share must not hold
/// Stop up until it is read. To a reader it then looks like a file that is cut off there.
class AudioFile final : public QFile {
public:
    explicit AudioFile(const QString &path, const std::atomic<qint32> *stop = nullptr)
        : QFile(path)
        , m_stop(stop)
    {
    }

    /// For reading; refuses what is no regular file, and links to such. The reason is the system's.
    [[nodiscard]] Result<> openRegular();

    /// Bytes when it was opened. Readers ask before every few bytes.
    qint64 size() const override { return m_size; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;

private:
    const std::atomic<qint32> *m_stop;
    qint64 m_size = 0;
};

} // namespace epr
