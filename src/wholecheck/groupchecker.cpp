// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "groupchecker.h"

#include "comparison.h"
#include "wholefile.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace epr {

namespace {

// Profiles take up to some ten megabytes each, and pairs go with the square.
constexpr std::size_t mostForAllPairs = 30;

/// Why the file is not the one that was scanned; empty if it is.
QString changeOf(const TrackInfo &track)
{
    const QFileInfo file(track.path);
    if (!file.exists())
        return QCoreApplication::translate("epr::WholeChecker", "The file is gone.");
    if (file.size() != track.size || file.lastModified().toSecsSinceEpoch() != track.mtime.toSecsSinceEpoch())
        return QCoreApplication::translate("epr::WholeChecker", "The file has changed since the scan.");
    return {};
}

} // namespace

GroupChecker::GroupChecker(const CheckItem &item, const std::atomic<bool> &stop,
                           std::function<void(const QString &path)> fileBegun)
    : m_item(item)
    , m_stop(stop)
    , m_fileBegun(std::move(fileBegun))
{
    for (qsizetype i = 0; i < std::min(item.members.size(), item.tracks.size()); ++i) {
        m_members.push_back({ .track = &item.tracks.at(i) });
        m_indexes.push_back(item.members.at(i));
        if (item.members.at(i) == item.keep) {
            std::swap(m_members.front(), m_members.back());
            std::swap(m_indexes.front(), m_indexes.back());
        }
    }
}

GroupCheck GroupChecker::run(CheckCache &cache)
{
    lookUp(cache);
    for (std::size_t i = 0; i < m_members.size(); ++i) {
        if (m_stop)
            return {};
        if (isNeededLater(i, i))
            decode(m_members[i]);
        compareWithEarlier(i);
        for (std::size_t earlier = 0; earlier <= i; ++earlier)
            if (!isNeededLater(earlier, i + 1))
                m_members[earlier].profile.reset();
    }
    return m_stop ? GroupCheck() : result(cache);
}

bool GroupChecker::isCompared(std::size_t first, std::size_t second) const
{
    return first != second && (m_members.size() <= mostForAllPairs || first == 0 || second == 0);
}

/// Whether anything that is not known is to be made of the member when the loop is at current.
bool GroupChecker::isNeededLater(std::size_t member, std::size_t current) const
{
    const Member &asked = m_members[member];
    if (asked.measures && !asked.measures->error.isEmpty())
        return false;
    if (member == current && !asked.measures)
        return true;
    for (std::size_t other = member < current ? current : 0; other < m_members.size(); ++other) {
        const SoundMeasures known = m_members[other].measures.value_or(SoundMeasures());
        if (isCompared(member, other) && known.error.isEmpty() && !m_known.contains(std::minmax(member, other)))
            return true;
    }
    return false;
}

void GroupChecker::lookUp(CheckCache &cache)
{
    for (Member &member : m_members) {
        if (const QString change = changeOf(*member.track); !change.isEmpty())
            member.measures = SoundMeasures { .error = change };
        else
            member.measures = cache.measures(*member.track);
    }
    for (std::size_t first = 0; first < m_members.size(); ++first)
        for (std::size_t second = first + 1; second < m_members.size(); ++second)
            if (isCompared(first, second))
                if (auto pair = cache.pair(*m_members[first].track, *m_members[second].track))
                    m_known.insert({ first, second }, *pair);
}

// What was decoded of a file that changed meanwhile belongs to neither of its contents.
void GroupChecker::decode(Member &member)
{
    if (m_fileBegun)
        m_fileBegun(member.track->path);
    Result<SoundProfile> profile = profileOfFile(member.track->path, m_stop);
    const QString change = changeOf(*member.track);
    if (!profile || !change.isEmpty()) {
        member.measures = SoundMeasures { .error = change.isEmpty() ? profile.error() : change };
        return;
    }
    member.measures = profile->measures;
    member.profile = std::move(*profile);
}

void GroupChecker::compareWithEarlier(std::size_t member)
{
    for (std::size_t earlier = 0; earlier < member && m_members[member].profile && !m_stop; ++earlier) {
        const auto key = std::pair(earlier, member);
        if (!m_members[earlier].profile || !isCompared(earlier, member) || m_known.contains(key))
            continue;
        m_known.insert(key, compareWhole(*m_members[earlier].profile, *m_members[member].profile));
        m_new.append(key);
    }
}

GroupCheck GroupChecker::result(CheckCache &cache) const
{
    GroupCheck check;
    cache.begin();
    for (std::size_t first = 0; first < m_members.size(); ++first) {
        const SoundMeasures measures = m_members[first].measures.value_or(SoundMeasures());
        check.measures.insert(m_indexes[first], measures);
        if (measures.error.isEmpty())
            cache.store(*m_members[first].track, measures);
        for (std::size_t second = first + 1; second < m_members.size(); ++second) {
            const auto found = m_known.constFind({ first, second });
            if (found == m_known.cend())
                continue;
            PairCheck pair = *found;
            pair.first = m_indexes[first];
            pair.second = m_indexes[second];
            check.pairs.append(pair);
            if (m_new.contains({ first, second }))
                cache.store(*m_members[first].track, *m_members[second].track, pair);
        }
    }
    cache.commit();
    return check;
}

GroupCheck checkGroup(const CheckItem &item, const QString &cachePath, const std::atomic<bool> &stop)
{
    CheckCache cache(cachePath);
    return GroupChecker(item, stop).run(cache);
}

} // namespace epr
