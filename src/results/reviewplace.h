// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QModelIndex>

#include <functional>

namespace epr {

struct MatchGroup;
class ResultsModel;
class ResultsView;
class Review;

/// Where the operator is in the results. A filter and a removal lay the rows out afresh, and the view then knows no
/// current row any more; this remembers the copy and goes back to it, or to the next group when its own is gone.
class ReviewPlace final : public QObject {
    Q_OBJECT

public:
    /// The view must have been given the model.
    ReviewPlace(const Review &review, const ResultsModel &model, ResultsView *view);

    /// -1 or +1: to the first copy of the visible group before or after this place; the first group to begin with.
    void goToGroup(int step);

    using Wanted = std::function<bool(int group)>;

    /// To the first copy of the next visible group of this kind behind a position in the review, from the first one on
    /// after the last; false if there is none but perhaps this.
    bool goToNext(int group, const Wanted &isWanted);

Q_SIGNALS:
    /// Positions in the review. The member is -1 on a group's own row, both are while the place is not in sight.
    void changed(int group, int member);

private:
    void remember(const QModelIndex &current);
    void restore();
    QModelIndex rowIn(const MatchGroup &place) const;
    void enter();
    void showGroup(int row);
    qint32 idOfRow(int row) const;
    int firstRowFrom(qint32 id) const;

    const Review &m_review;
    const ResultsModel &m_model;
    ResultsView *m_view;
    qint32 m_group = 0; ///< number of the group, 0 = nowhere yet; ascending from 1 in the results
    int m_row = 0; ///< that the group had
    qint32 m_track = -1; ///< -1 = on the group's own row
};

} // namespace epr
