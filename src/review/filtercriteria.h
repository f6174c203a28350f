// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <vector>

namespace epr {

class Review;

/// One thing that the operator asks of what is shown.
struct FilterTerm {
    enum class Kind { Match, State, Ticks, Format, Folder, AtLeast, Problem, Identical };
    enum class Problem { WhollyTicked, KeptIsWorse, Differs, NotAsScanned, Unreadable, Protected };

    Kind kind = Kind::Match;
    qint64 number = 0; ///< a MatchType, GroupState or Problem; 1 = with ticks, 0 = without; reclaimable bytes
    QString text = {}; ///< suffix in lower case; absolute path of a folder, with all below it

    bool operator==(const FilterTerm &) const = default;
};

/// All that is asked. Terms of one kind are alternatives, and one copy has to meet every kind: groups that have such a
/// copy are shown.
struct FilterCriteria {
    QList<FilterTerm> terms;
    bool copiesOnly = false; ///< of each group the copies that meet them, and the kept one to compare them with

    bool operator==(const FilterCriteria &) const = default;
};

/// Translated, as in "Without a ticked copy".
QString termText(const FilterTerm &term);

/// Which copies of one group meet the terms. What they ask of the group is looked at once.
class GroupMatch final {
public:
    GroupMatch(const Review &review, int group, const QList<FilterTerm> &termsByKind); ///< both must outlive it

    bool meets(int member) const;

private:
    const Review &m_review;
    const QList<FilterTerm> &m_terms;
    int m_group;
    std::vector<bool> m_groupMeets; ///< per term; of those that ask for something of a copy false
};

/// What copies of the review have, in alphabetical order.
QStringList formatsAtHand(const Review &review);
QStringList foldersAtHand(const Review &review); ///< and those above them, as far as more than one folder is below

} // namespace epr
