// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"

#include <QHash>
#include <QSet>

#include <mutex>

namespace epr {

/// Tells which files must be read whole: those that share a content key of a wanted method. Any thread may add files; a
/// record that has been added must stay where it is, and is written only by the one who gets it from add().
class PossibleCopies final {
public:
    explicit PossibleCopies(const ScanOptions &options)
        : m_options(options)
    {
    }

    /// From now on every file that is added must be read. Not while others add.
    void requireAll() { m_requiresAll = true; }

    /// Takes a file with its keys. Returns which files must be read now, this one or earlier ones: each is returned
    /// once, and none that has its digests.
    QList<TrackInfo *> add(TrackInfo *track);

private:
    const ScanOptions &m_options;
    bool m_requiresAll = false;
    std::mutex m_mutex;
    QHash<quint64, TrackInfo *> m_firstWithWhole;
    QHash<quint64, TrackInfo *> m_firstWithAudio;
    QSet<const TrackInfo *> m_returned; ///< which others may be writing to
};

} // namespace epr
