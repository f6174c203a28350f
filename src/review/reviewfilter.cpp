// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewfilter.h"

#include "displaytext.h"
#include "review.h"

#include <algorithm>
#include <utility>

namespace epr {

namespace {

// The texts as the results show them, one to a line so that no find reaches from one into the next.
QString foldedSearchText(const TrackInfo &track)
{
    const QChar newline = u'\n';
    const QString text =
        displayArtist(track) + newline + displayTitle(track) + newline + track.fileName + newline + folderOf(track);
    return text.toCaseFolded();
}

// What is looked for in such texts. The second form, with forward slashes, lets a folder be typed as Windows writes it.
QStringList searchNeedles(const QString &typed)
{
    const QString folded = typed.trimmed().toCaseFolded();
    if (folded.isEmpty())
        return {};
    QString slashed = folded;
    slashed.replace(u'\\', u'/');
    return slashed == folded ? QStringList { folded } : QStringList { folded, slashed };
}

// Whether whatever is found now was found before, as it is while a text is being typed.
bool isNarrower(const QStringList &now, const QStringList &before)
{
    return !now.isEmpty() && std::all_of(now.cbegin(), now.cend(), [&before](const QString &needle) {
        return std::any_of(before.cbegin(), before.cend(),
                           [&needle](const QString &shorter) { return needle.contains(shorter); });
    });
}

} // namespace

ReviewFilter::ReviewFilter(const Review &review)
    : m_review(review)
{
    layOutRows();
}

bool ReviewFilter::setText(const QString &text)
{
    const QStringList needles = searchNeedles(text);
    const bool isOther = needles != m_needles;
    m_narrows = isOther && isNarrower(needles, m_needles);
    m_needles = needles;
    return isOther;
}

void ReviewFilter::setCriteria(const FilterCriteria &criteria)
{
    m_criteria = criteria;
    std::ranges::stable_sort(m_criteria.terms, {}, &FilterTerm::kind);
    m_narrows = false;
}

void ReviewFilter::layOutRows()
{
    const std::vector<GroupRow> shownGroups = std::exchange(m_groups, {});
    const std::vector<int> shownMembers = std::exchange(m_members, {});
    m_rows.assign(static_cast<std::size_t>(m_review.groups().size()), -1);
    const QStringList searchTexts = m_needles.isEmpty() ? QStringList() : m_review.searchTexts();
    if (std::exchange(m_narrows, false) && m_criteria.terms.isEmpty()) { // others may meet them since
        const auto members = [&shownMembers](const GroupRow &row) {
            return std::span(shownMembers)
                .subspan(static_cast<std::size_t>(row.firstMember), static_cast<std::size_t>(row.memberCount));
        };
        for (const GroupRow &row : shownGroups)
            appendGroup(row.group, members(row), searchTexts);
        return;
    }
    std::vector<int> all; // positions in the largest group so far
    for (int group = 0; group < m_review.groups().size(); ++group) {
        const auto count = static_cast<std::size_t>(m_review.groups().at(group).members.size());
        while (all.size() < count)
            all.push_back(static_cast<int>(all.size()));
        appendGroup(group, std::span(all).first(count), searchTexts);
    }
}

int ReviewFilter::memberAt(int groupRow, int memberRow) const
{
    return m_members[static_cast<std::size_t>(rowAt(groupRow).firstMember) + static_cast<std::size_t>(memberRow)];
}

int ReviewFilter::rowOf(int group, int member) const
{
    if (rowOf(group) < 0)
        return -1;
    const GroupRow &row = rowAt(rowOf(group));
    const auto first = m_members.begin() + row.firstMember;
    const auto last = first + row.memberCount;
    const auto found = std::lower_bound(first, last, member);
    return found == last || *found != member ? -1 : static_cast<int>(found - first);
}

qint64 ReviewFilter::hiddenTicks() const
{
    if (!isActive())
        return 0;
    qint64 shown = 0;
    for (int row = 0; row < groupCount(); ++row) {
        for (int i = 0; i < memberCount(row); ++i)
            shown += m_review.isTicked(groupAt(row), memberAt(row, i));
    }
    return m_review.totals().tickedFiles - shown;
}

QList<std::pair<int, int>> ReviewFilter::shownPlaces() const
{
    QList<std::pair<int, int>> places;
    for (int row = 0; row < groupCount(); ++row) {
        for (int i = 0; i < memberCount(row); ++i)
            places.append({ groupAt(row), memberAt(row, i) });
    }
    return places;
}

void ReviewFilter::appendGroup(int group, std::span<const int> candidates, const QStringList &searchTexts)
{
    const auto first = static_cast<int>(m_members.size());
    const int count = appendMembers(group, candidates, searchTexts);
    if (count == 0)
        return;
    m_rows[static_cast<std::size_t>(group)] = groupCount();
    m_groups.push_back({ group, first, count });
}

// How many they are.
int ReviewFilter::appendMembers(int group, std::span<const int> candidates, const QStringList &searchTexts)
{
    if (m_review.state(group) == GroupState::NotDuplicates)
        return 0;
    const QList<qint32> &members = m_review.groups().at(group).members;
    const GroupMatch match(m_review, group, m_criteria.terms);
    const std::size_t first = m_members.size();
    bool isFound = false;
    for (const int member : candidates) {
        const qint32 track = members.at(member);
        const bool hasText = track >= 0 && track < searchTexts.size();
        if (hasText && !matches(searchTexts.at(track)))
            continue;
        const bool meets = match.meets(member);
        isFound = isFound || meets;
        if (meets || !m_criteria.copiesOnly || m_review.isKeeper(group, member))
            m_members.push_back(member);
    }
    if (!isFound)
        m_members.resize(first);
    return static_cast<int>(m_members.size() - first);
}

bool ReviewFilter::matches(const QString &searchText) const
{
    return std::any_of(m_needles.cbegin(), m_needles.cend(),
                       [&searchText](const QString &needle) { return searchText.contains(needle); });
}

QStringList foldedSearchTexts(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    QStringList texts;
    texts.resize(tracks.size());
    for (const MatchGroup &group : groups) {
        for (const qint32 member : group.members) {
            if (member >= 0 && member < tracks.size())
                texts[member] = foldedSearchText(tracks.at(member));
        }
    }
    return texts;
}

} // namespace epr
