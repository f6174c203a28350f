// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filtercriteria.h"
#include "grouporder.h"
#include "records.h"

#include <span>
#include <utility>
#include <vector>

namespace epr {

class Review;

/// The members of a review that match a text, and the groups with at least one such member, as rows from 0 on: members
/// whose artist, title, file name or folder contain it in whatever letter case. Without a text those are all. Criteria
/// leave the groups of which such a member meets them, whole unless they say otherwise.
///
/// What is decided changes no rows, lest they go from below the operator's hands; only setting a group aside does.
///
/// A change of the text may add and remove rows in thousands of places, so the rows are laid out afresh in flat arrays.
/// A text that only gets longer is looked for in the rows that are shown, not in the whole review.
class ReviewFilter final {
public:
    explicit ReviewFilter(const Review &review);

    bool isActive() const { return !m_needles.isEmpty() || !m_criteria.terms.isEmpty(); }
    bool setText(const QString &text); ///< as typed; false if that finds what is shown already
    void setCriteria(const FilterCriteria &criteria);
    void setOrder(const GroupOrder &order); ///< the same rows in other places
    const GroupOrder &order() const { return m_order; }
    void sortGroups(); ///< when the review was reset, before its rows are laid out
    void layOutRows(); ///< after each new text or criteria, and whenever the review was reset

    bool finds(int group) const; ///< whether it would have a row
    void insertGroup(int group); ///< if it finds it, at firstRowFrom(); the rows behind move on
    void removeRow(int groupRow);

    int groupCount() const { return static_cast<int>(m_groups.size()); }
    int memberCount(int groupRow) const { return rowAt(groupRow).memberCount; }
    int groupAt(int groupRow) const { return rowAt(groupRow).group; } ///< position in the review
    int memberAt(int groupRow, int memberRow) const; ///< position in its group
    int rowOf(int group) const { return m_rows[static_cast<std::size_t>(group)]; } ///< -1 = not shown
    int rowOf(int group, int member) const; ///< within the group's row; -1 = not shown
    int firstRowFrom(int group) const; ///< of this group or the next one in the order that is shown; else groupCount()
    qint64 hiddenTicks() const; ///< ticked members that are not shown
    QList<std::pair<int, int>> shownPlaces() const; ///< groups and members, in the order of the rows

private:
    struct GroupRow {
        int group = 0;
        int firstMember = 0; ///< into m_members
        int memberCount = 0;
    };

    void appendGroup(int group, std::span<const int> candidates, const QStringList &searchTexts);
    void findMembers(int group, std::span<const int> candidates, const QStringList &searchTexts,
                     std::vector<int> *found) const;
    QStringList searchTexts() const;
    int placeOf(int group) const;
    int groupAtPlace(int place) const;
    void numberRows(int first);
    bool matches(const QString &searchText) const;
    const GroupRow &rowAt(int groupRow) const { return m_groups[static_cast<std::size_t>(groupRow)]; }

    const Review &m_review;
    QStringList m_needles; ///< any of them may be found; empty = everything matches
    FilterCriteria m_criteria; ///< with terms of one kind side by side
    GroupOrder m_order;
    std::vector<int> m_sorted; ///< all groups in that order; empty in that of the scan
    std::vector<int> m_places; ///< per group, its place there
    bool m_narrows = false; ///< what is shown holds all that the new text finds
    std::vector<GroupRow> m_groups;
    std::vector<int> m_members; ///< positions within their groups, group after group, ascending within each
    std::vector<int> m_rows; ///< per group of the review, its row here or -1
};

/// For all tracks that are in a group what the filter looks through, by track index; the others stay empty. Safe on any
/// thread.
QStringList foldedSearchTexts(const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups);

} // namespace epr
