// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "setaside.h"

#include "displaytext.h"
#include "review.h"

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString keyOf(const TrackInfo &track)
{
    return track.audioHash.isEmpty() ? u"file:%1:"_s.arg(track.size) + track.path : "audio:"_L1 + track.audioHash;
}

QString nameOf(const TrackInfo &track)
{
    return track.tags.title.isEmpty() ? track.fileName
                                      : u"%1 - %2 (%3)"_s.arg(displayArtist(track), track.tags.title, track.fileName);
}

/// Those of a group. In one of very many files a pair counts only beside the copy to keep.
void addPairs(Decisions::Pairs &pairs, const SetAside &setAside, const MatchGroup &group,
              const QList<TrackInfo> &tracks)
{
    constexpr qsizetype many = 200;
    QList<qint32> members = group.members;
    members.removeIf([&](qint32 member) { return !setAside.mentions(keyOf(tracks.value(member))); });
    if (members.size() < 2)
        return;
    QHash<QString, SetAsideContent> contents;
    for (const SetAsideContent &content : contentsOf(group, tracks))
        contents.insert(content.key, content);
    for (const qint32 one : members) {
        const SetAsideContent content = contents.value(keyOf(tracks.value(one)));
        for (const qint32 other : members) {
            const bool isAsked = one < other && (members.size() <= many || one == group.keep || other == group.keep);
            if (isAsked && setAside.areApart(content, contents.value(keyOf(tracks.value(other)))))
                pairs.insert({ one, other });
        }
    }
}

} // namespace

void SetAside::add(const SetAsideGroup &group)
{
    SetAsideGroup &own = *m_groups.insert(group.id, group);
    std::ranges::sort(own.contents, {}, &SetAsideContent::key);
    for (const SetAsideContent &content : group.contents)
        m_byKey[content.key].insert(group.id, content.copies);
}

void SetAside::remove(qint64 id)
{
    const SetAsideGroup group = m_groups.take(id);
    for (const SetAsideContent &content : group.contents) {
        CopiesById &copies = m_byKey[content.key];
        copies.remove(id);
        if (copies.isEmpty())
            m_byKey.remove(content.key);
    }
}

bool SetAside::areApart(const SetAsideContent &one, const SetAsideContent &other) const
{
    const CopiesById ofOne = m_byKey.value(one.key);
    const CopiesById ofOther = m_byKey.value(other.key);
    return std::ranges::any_of(ofOne.keyBegin(), ofOne.keyEnd(), [&](qint64 id) {
        return one.key == other.key ? ofOne.value(id) >= one.copies : ofOther.contains(id);
    });
}

// Pair by pair only while that is quick; larger groups are known as a whole or not at all.
bool SetAside::areAllApart(const QList<SetAsideContent> &contents) const
{
    constexpr qsizetype largest = 200;
    if (isAnyOfAll(contents))
        return true;
    if (contents.isEmpty() || contents.size() > largest)
        return false;
    for (auto one = contents.cbegin(); one != contents.cend(); ++one) {
        if (one->copies > 1 && !areApart(*one, *one))
            return false;
        if (!std::all_of(one + 1, contents.cend(), [&](const SetAsideContent &other) { return areApart(*one, other); }))
            return false;
    }
    return contents.size() > 1 || contents.first().copies > 1;
}

QList<qint64> SetAside::of(const QList<SetAsideContent> &contents) const
{
    const auto isSame = [](const SetAsideContent &one, const SetAsideContent &other) {
        return one.key == other.key && one.copies == other.copies;
    };
    QList<qint64> found;
    const CopiesById candidates = contents.isEmpty() ? CopiesById() : m_byKey.value(contents.first().key);
    for (const auto &[id, copies] : candidates.asKeyValueRange()) {
        if (std::ranges::equal(m_groups[id].contents, contents, isSame))
            found << id;
    }
    return found;
}

QList<qint64> SetAside::overlapping(const QList<SetAsideContent> &contents) const
{
    QHash<qint64, qint32> shared;
    for (const SetAsideContent &content : contents) {
        const CopiesById copies = m_byKey.value(content.key);
        for (const auto &[id, count] : copies.asKeyValueRange())
            shared[id] += std::min(content.copies, count);
    }
    shared.removeIf([](const auto &entry) { return entry.value() < 2; });
    return shared.keys();
}

bool SetAside::isAnyOfAll(const QList<SetAsideContent> &contents) const
{
    const CopiesById candidates = contents.isEmpty() ? CopiesById() : m_byKey.value(contents.first().key);
    return std::ranges::any_of(candidates.keyBegin(), candidates.keyEnd(), [&](qint64 id) {
        return std::ranges::all_of(contents, [&](const SetAsideContent &content) {
            const auto copies = m_byKey.constFind(content.key);
            return copies != m_byKey.cend() && copies->value(id) >= content.copies;
        });
    });
}

QList<SetAsideContent> contentsOf(const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    QMap<QString, SetAsideContent> contents;
    for (const qint32 member : group.members) {
        const TrackInfo track = tracks.value(member);
        const QString key = keyOf(track);
        if (const auto known = contents.find(key); known != contents.end()) {
            ++known->copies;
            continue;
        }
        contents.insert(key, { key, 1, nameOf(track) });
    }
    return contents.values();
}

QHash<int, GroupDecision> setAsideDecisions(const SetAside &setAside, const Review &review)
{
    QHash<int, GroupDecision> found;
    for (int group = 0; group < review.groups().size() && !setAside.isEmpty(); ++group) {
        if (!setAside.areAllApart(contentsOf(review.groups().at(group), review.tracks())))
            continue;
        GroupDecision decision = review.decision(group);
        decision.state = GroupState::NotDuplicates;
        found.insert(group, decision);
    }
    return found;
}

Decisions::Pairs pairsApart(const SetAside &setAside, const Review &review)
{
    Decisions::Pairs pairs;
    for (int group = 0; group < review.groups().size() && !setAside.isEmpty(); ++group) {
        if (review.state(group) != GroupState::NotDuplicates)
            addPairs(pairs, setAside, review.groups().at(group), review.tracks());
    }
    return pairs;
}

} // namespace epr
