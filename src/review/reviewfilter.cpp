// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reviewfilter.h"

#include "displaytext.h"
#include "review.h"

#include <algorithm>
#include <numeric>
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

std::vector<int> positionsIn(const MatchGroup &group)
{
    std::vector<int> positions(static_cast<std::size_t>(group.members.size()));
    std::iota(positions.begin(), positions.end(), 0);
    return positions;
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

void ReviewFilter::setOrder(const GroupOrder &order)
{
    m_order = order;
    sortGroups();
    const std::vector<GroupRow> before = std::exchange(m_groups, {});
    m_groups.reserve(before.size());
    for (int place = 0; place < m_review.groups().size(); ++place) {
        if (const int row = rowOf(groupAtPlace(place)); row >= 0)
            m_groups.push_back(before[static_cast<std::size_t>(row)]);
    }
    numberRows(0);
}

void ReviewFilter::sortGroups()
{
    m_sorted = m_order.key == GroupKey::Scan ? std::vector<int>() : sortedGroups(m_review, m_order);
    m_places.resize(m_sorted.size());
    for (std::size_t place = 0; place < m_sorted.size(); ++place)
        m_places[static_cast<std::size_t>(m_sorted[place])] = static_cast<int>(place);
}

void ReviewFilter::layOutRows()
{
    const std::vector<GroupRow> shownGroups = std::exchange(m_groups, {});
    const std::vector<int> shownMembers = std::exchange(m_members, {});
    m_rows.assign(static_cast<std::size_t>(m_review.groups().size()), -1);
    const QStringList texts = searchTexts();
    if (std::exchange(m_narrows, false) && m_criteria.terms.isEmpty()) { // others may meet them since
        const auto members = [&shownMembers](const GroupRow &row) {
            return std::span(shownMembers)
                .subspan(static_cast<std::size_t>(row.firstMember), static_cast<std::size_t>(row.memberCount));
        };
        for (const GroupRow &row : shownGroups)
            appendGroup(row.group, members(row), texts);
        return;
    }
    std::vector<int> all; // positions in the largest group so far
    for (int place = 0; place < m_review.groups().size(); ++place) {
        const int group = groupAtPlace(place);
        const auto count = static_cast<std::size_t>(m_review.groups().at(group).members.size());
        while (all.size() < count)
            all.push_back(static_cast<int>(all.size()));
        appendGroup(group, std::span(all).first(count), texts);
    }
}

bool ReviewFilter::finds(int group) const
{
    std::vector<int> found;
    findMembers(group, positionsIn(m_review.groups().at(group)), searchTexts(), &found);
    return !found.empty();
}

void ReviewFilter::insertGroup(int group)
{
    const int row = firstRowFrom(group);
    const std::size_t before = m_groups.size();
    appendGroup(group, positionsIn(m_review.groups().at(group)), searchTexts());
    if (m_groups.size() == before)
        return;
    std::rotate(m_groups.begin() + row, m_groups.end() - 1, m_groups.end());
    numberRows(row);
}

// Its members stay where they are until the rows are laid out again.
void ReviewFilter::removeRow(int groupRow)
{
    m_rows[static_cast<std::size_t>(groupAt(groupRow))] = -1;
    m_groups.erase(m_groups.begin() + groupRow);
    numberRows(groupRow);
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

int ReviewFilter::firstRowFrom(int group) const
{
    const auto isBefore = [this](const GroupRow &row, int place) { return placeOf(row.group) < place; };
    return static_cast<int>(std::lower_bound(m_groups.begin(), m_groups.end(), placeOf(group), isBefore)
                            - m_groups.begin());
}

void ReviewFilter::appendGroup(int group, std::span<const int> candidates, const QStringList &searchTexts)
{
    const auto first = static_cast<int>(m_members.size());
    findMembers(group, candidates, searchTexts, &m_members);
    const int count = static_cast<int>(m_members.size()) - first;
    if (count == 0)
        return;
    m_rows[static_cast<std::size_t>(group)] = groupCount();
    m_groups.push_back({ group, first, count });
}

void ReviewFilter::findMembers(int group, std::span<const int> candidates, const QStringList &searchTexts,
                               std::vector<int> *found) const
{
    if (m_review.state(group) == GroupState::NotDuplicates)
        return;
    const QList<qint32> &members = m_review.groups().at(group).members;
    const GroupMatch match(m_review, group, m_criteria.terms);
    const std::size_t first = found->size();
    bool isFound = false;
    for (const int member : candidates) {
        const qint32 track = members.at(member);
        const bool hasText = track >= 0 && track < searchTexts.size();
        if (hasText && !matches(searchTexts.at(track)))
            continue;
        const bool meets = match.meets(member);
        isFound = isFound || meets;
        if (meets || !m_criteria.copiesOnly || m_review.isKeeper(group, member))
            found->push_back(member);
    }
    if (!isFound)
        found->resize(first);
}

QStringList ReviewFilter::searchTexts() const
{
    return m_needles.isEmpty() ? QStringList() : m_review.searchTexts();
}

int ReviewFilter::groupAtPlace(int place) const
{
    return m_sorted.empty() ? place : m_sorted[static_cast<std::size_t>(place)];
}

int ReviewFilter::placeOf(int group) const
{
    return m_places.empty() ? group : m_places[static_cast<std::size_t>(group)];
}

void ReviewFilter::numberRows(int first)
{
    for (int row = first; row < groupCount(); ++row)
        m_rows[static_cast<std::size_t>(groupAt(row))] = row;
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
