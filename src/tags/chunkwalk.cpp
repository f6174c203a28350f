// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "chunkwalk.h"

#include "bytecursor.h"
#include "readat.h"

#include <QIODevice>

namespace epr {

void walkChunks(QIODevice &device, QSysInfo::Endian endian, const std::function<void(const Chunk &chunk)> &visit)
{
    constexpr qint64 headerSize = 8;
    const qint64 fileSize = device.size();
    qint64 position = 12; // past the container's own header
    for (int count = 0; count < maxBlocks && position + headerSize <= fileSize; ++count) {
        const QByteArray header = readAt(device, position, headerSize);
        if (header.size() < headerSize)
            return;
        ByteCursor cursor(header);
        Chunk chunk;
        chunk.id = cursor.take(4).toByteArray();
        chunk.size = endian == QSysInfo::BigEndian ? cursor.u32be() : cursor.u32le();
        chunk.body = position + headerSize;
        chunk.overruns = chunk.body + chunk.size > fileSize + 1;
        visit(chunk);
        if (chunk.overruns)
            return;
        position = chunk.body + chunk.size + (chunk.size & 1);
    }
}

} // namespace epr
