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
        const MatchGroup &record = review.groups().at(group);
        const QList<SetAsideContent> contents = contentsOf(record, review.tracks());
        GroupDecision decision = review.decision(group);
        if (setAside.areAllApart(contents)) {
            decision.state = GroupState::NotDuplicates;
            found.insert(group, decision);
            continue;
        }
        const auto contentOf = [&](qint32 track) {
            const QString key = keyOf(review.tracks().value(track));
            return *std::ranges::find(contents, key, &SetAsideContent::key);
        };
        for (qsizetype i = 0; i < record.members.size() && record.members.contains(record.keep); ++i) {
            if (decision.ticked.at(i) && !decision.byHand.at(i)
                && setAside.areApart(contentOf(record.members.at(i)), contentOf(record.keep)))
                decision.ticked[i] = false;
        }
        if (decision != review.decision(group))
            found.insert(group, decision);
    }
    return found;
}

} // namespace epr
