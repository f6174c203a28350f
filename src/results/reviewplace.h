// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QModelIndex>
#include <QObject>

namespace epr {

struct MatchGroup;
class ResultsFilter;
class ResultsModel;
class ResultsView;

/// Where the operator is in the results. A filter and a removal lay the rows out afresh, and the view then knows no
/// current row any more; this remembers the copy and goes back to it, or to the next group when its own is gone.
class ReviewPlace final : public QObject {
    Q_OBJECT

public:
    /// The view must have been given the filter as its model.
    ReviewPlace(const ResultsModel *results, const ResultsFilter *filter, ResultsView *view);

    /// -1 or +1: to the first copy of the visible group before or after this place; the first group to begin with.
    void goToGroup(int step);

Q_SIGNALS:
    void changed(const QModelIndex &current); ///< of the results model; invalid while the place is not in sight

private:
    void remember(const QModelIndex &current);
    void restore();
    [[nodiscard]] QModelIndex rowIn(const MatchGroup &place) const; ///< of the results model
    void enter();
    void showGroup(int row);
    [[nodiscard]] qint32 idOfRow(int row) const;
    [[nodiscard]] int firstRowFrom(qint32 id) const;

    const ResultsModel *m_results;
    const ResultsFilter *m_filter;
    ResultsView *m_view;
    qint32 m_group = 0; ///< number of the group, 0 = nowhere yet; ascending from 1 in the results
    qint32 m_track = -1; ///< -1 = on the group's own row
};

} // namespace epr
