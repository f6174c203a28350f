// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "grouporder.h"

#include "checktext.h"
#include "displaytext.h"
#include "review.h"

#include <QCollator>

#include <algorithm>
#include <numeric>

namespace epr {

namespace {

const TrackInfo &keptOf(const Review &review, int group)
{
    static const TrackInfo none;
    const qint32 kept = review.groups().at(group).keep;
    return kept >= 0 && kept < review.tracks().size() ? review.tracks().at(kept) : none;
}

double numberOf(const Review &review, int group, GroupKey key)
{
    const MatchGroup &record = review.groups().at(group);
    const TrackInfo &kept = keptOf(review, group);
    constexpr double aboveSampleRates = 1e7;
    constexpr double msPerDay = 86400e3;
    switch (key) {
    case GroupKey::Reclaimable:
        return static_cast<double>(record.reclaimableBytes);
    case GroupKey::Copies:
        return static_cast<double>(record.members.size());
    case GroupKey::Match:
        return static_cast<double>(record.matchType);
    case GroupKey::Duration:
        return static_cast<double>(kept.stream.durationMs);
    case GroupKey::Quality:
        return kept.stream.bitrateKbps * aboveSampleRates + kept.stream.sampleRate;
    case GroupKey::Modified: // as it is shown; to ask for its time zone would take longer than all the sorting
        return static_cast<double>(kept.mtime.date().toJulianDay()) * msPerDay
            + kept.mtime.time().msecsSinceStartOfDay();
    case GroupKey::Loudness:
        return record.check.measures.value(record.keep).loudness;
    case GroupKey::TruePeak:
        return record.check.measures.value(record.keep).truePeak;
    case GroupKey::Bandwidth:
        return record.check.measures.value(record.keep).bandwidthHz;
    default:
        return group;
    }
}

QString textOf(const Review &review, int group, GroupKey key)
{
    const TrackInfo &kept = keptOf(review, group);
    switch (key) {
    case GroupKey::File:
        return kept.fileName;
    case GroupKey::Artist:
        return displayArtist(kept);
    case GroupKey::Title:
        return displayTitle(kept);
    case GroupKey::Format:
        return kept.suffix;
    case GroupKey::Check:
        return groupCheckText(review.groups().at(group));
    case GroupKey::Kept:
        return review.keepText(group);
    default:
        return folderOf(kept);
    }
}

bool isText(GroupKey key)
{
    switch (key) {
    case GroupKey::File:
    case GroupKey::Artist:
    case GroupKey::Title:
    case GroupKey::Format:
    case GroupKey::Check:
    case GroupKey::Kept:
    case GroupKey::Folder:
        return true;
    default:
        return false;
    }
}

template <typename Key> std::vector<int> sortedBy(const std::vector<Key> &keys, bool descending)
{
    std::vector<int> groups(keys.size());
    std::iota(groups.begin(), groups.end(), 0);
    const auto keyOf = [&keys](int group) -> const Key & { return keys[static_cast<std::size_t>(group)]; };
    std::stable_sort(groups.begin(), groups.end(),
                     [&](int a, int b) { return descending ? keyOf(b) < keyOf(a) : keyOf(a) < keyOf(b); });
    return groups;
}

// A text is made comparable once and not at each of the many comparisons.
std::vector<int> sortedByTexts(const Review &review, const GroupOrder &order)
{
    QCollator collator;
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<QCollatorSortKey> keys;
    keys.reserve(static_cast<std::size_t>(review.groups().size()));
    for (int group = 0; group < review.groups().size(); ++group)
        keys.push_back(collator.sortKey(textOf(review, group, order.key)));
    return sortedBy(keys, order.descending);
}

} // namespace

std::vector<int> sortedGroups(const Review &review, const GroupOrder &order)
{
    if (isText(order.key))
        return sortedByTexts(review, order);
    std::vector<double> keys;
    keys.reserve(static_cast<std::size_t>(review.groups().size()));
    for (int group = 0; group < review.groups().size(); ++group)
        keys.push_back(numberOf(review, group, order.key));
    return sortedBy(keys, order.descending);
}

} // namespace epr
