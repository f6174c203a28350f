// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiofile.h"

#include "fileproblems.h"

#include <QCoreApplication>

#include <algorithm>

namespace epr {

Result<> AudioFile::openRegular()
{
    if (isSpecialFile(fileName()))
        return failure(QCoreApplication::translate("epr::ProbeResult", "Not a regular file"));
    if (!open(QIODevice::ReadOnly))
        return failure(errorString());
    m_size = QFile::size();
    return {};
}

qint64 AudioFile::readData(char *data, qint64 maxSize)
{
    constexpr qint64 slice = 1 << 20; // bytes between two looks
    qint64 count = 0;
    while (count < maxSize) {
        if (m_stop && m_stop->load(std::memory_order_relaxed) != 0)
            return -1;
        const qint64 wanted = std::min(maxSize - count, slice);
        const qint64 read = QFile::readData(data + count, wanted);
        if (read < 0)
            return count > 0 ? count : read;
        count += read;
        if (read < wanted)
            break; // whoever wants more asks again
    }
    return count;
}

} // namespace epr
