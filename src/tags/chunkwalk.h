// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSysInfo>

#include <functional>

class QIODevice;

namespace epr {

struct Chunk {
    QByteArray id; ///< four bytes
    quint32 size = 0; ///< as declared, of the body
    qint64 body = 0; ///< offset of the body in the file
    bool overruns = false; ///< the body would end past the file
};

/// Visits the chunks of a RIFF (little-endian) or FORM (big-endian) file. One that overruns is visited and ends the
/// walk; a single byte of overrun is the missing pad byte of the last chunk and does not count.
void walkChunks(QIODevice &device, QSysInfo::Endian endian, const std::function<void(const Chunk &chunk)> &visit);

} // namespace epr
