// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "readat.h"

#include <QIODevice>

#include <algorithm>

namespace epr {

QByteArray readAt(QIODevice &device, qint64 offset, qint64 count)
{
    const qint64 size = device.size();
    if (offset < 0 || offset >= size || count <= 0 || !device.seek(offset))
        return {};
    return device.read(std::min(count, size - offset));
}

} // namespace epr
