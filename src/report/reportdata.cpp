// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reportdata.h"

namespace epr {

qint64 redundantFiles(const QList<MatchGroup> &groups)
{
    qint64 files = 0;
    for (const MatchGroup &group : groups)
        files += group.members.size() - 1;
    return files;
}

qint64 reclaimableBytes(const QList<MatchGroup> &groups)
{
    qint64 bytes = 0;
    for (const MatchGroup &group : groups)
        bytes += group.reclaimableBytes;
    return bytes;
}

} // namespace epr
