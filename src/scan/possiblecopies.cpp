// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "possiblecopies.h"

#include "libraryfiles.h"

namespace epr {

// Both digests come from one reading, so it does not matter which key was shared.
QList<TrackInfo *> PossibleCopies::add(TrackInfo *track)
{
    const std::lock_guard lock(m_mutex);
    QList<TrackInfo *> toRead;
    const auto require = [&](TrackInfo *file) {
        if (m_returned.contains(file) || hasWantedDigests(*file, m_options))
            return;
        m_returned.insert(file);
        toRead.append(file);
    };
    const auto compare = [&](QHash<quint64, TrackInfo *> &firstWith, quint64 key) {
        TrackInfo *&first = firstWith[key];
        if (first) {
            require(track);
            require(first);
        } else {
            first = track;
        }
    };
    if (m_requiresAll)
        require(track);
    if (m_options.detectIdentical)
        compare(m_firstWithWhole, track->keys.whole);
    if (m_options.detectSameAudio)
        compare(m_firstWithAudio, track->keys.audio);
    return toRead;
}

} // namespace epr
