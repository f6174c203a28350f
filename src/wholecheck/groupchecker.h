// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checkcache.h"
#include "records.h"
#include "soundprofile.h"

#include <atomic>
#include <functional>

namespace epr {

/// A group to check over its whole length.
struct CheckItem {
    qint32 group = 0; ///< the caller's own number
    qint32 keep = -1;
    QList<qint32> members; ///< track indexes
    QList<TrackInfo> tracks; ///< of the members, in their order
};

/// Decodes, measures and compares the members of one group, on one thread.
class GroupChecker final {
public:
    /// The item and the flag must outlive it. fileBegun is told each path before it is opened, on the same thread.
    GroupChecker(const CheckItem &item, const std::atomic<bool> &stop,
                 std::function<void(const QString &path)> fileBegun = {});

    /// With what the cache knows; the rest goes there. Empty once stop has become true.
    [[nodiscard]] GroupCheck run(CheckCache &cache);

private:
    struct Member {
        const TrackInfo *track = nullptr;
        std::optional<SoundProfile> profile = {};
        std::optional<SoundMeasures> measures = {};
    };

    bool isCompared(std::size_t first, std::size_t second) const;
    bool isNeededLater(std::size_t member, std::size_t current) const;
    void lookUp(CheckCache &cache);
    void decode(Member &member);
    void compareWithEarlier(std::size_t member);
    GroupCheck result(CheckCache &cache) const;

    const CheckItem &m_item;
    const std::atomic<bool> &m_stop;
    std::function<void(const QString &path)> m_fileBegun;
    std::vector<Member> m_members; ///< the copy to keep first
    std::vector<qint32> m_indexes; ///< of their tracks
    QHash<std::pair<std::size_t, std::size_t>, PairCheck> m_known; ///< by positions in m_members, the lower one first
    QList<std::pair<std::size_t, std::size_t>> m_new;
};

/// The same on the calling thread, with the cache in that file; an empty path = none.
[[nodiscard]] GroupCheck checkGroup(const CheckItem &item, const QString &cachePath, const std::atomic<bool> &stop);

} // namespace epr

Q_DECLARE_METATYPE(epr::CheckItem)
