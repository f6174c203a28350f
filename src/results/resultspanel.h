// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "deck.h"

#include <QWidget>

#include <functional>

class QHBoxLayout;
class QLabel;
class QLineEdit;

namespace epr {

class CheckBar;
class FilterBar;
class ResultsModel;
class ResultsView;
class Review;
class ReviewFilter;
class ReviewPlace;
class ReviewProgress;
struct TrackInfo;

/// The results of a scan with all that belongs to them: filter row, tree and summary line.
class ResultsPanel final : public QWidget {
    Q_OBJECT

public:
    /// What an empty tree means, and so what it says.
    enum class State { NotScanned, Scanning, Finished, Cancelled };

    explicit ResultsPanel(Review &review, QWidget *parent = nullptr);

    void setState(State state); ///< after the results have been set
    void setHasFolders(bool hasFolders); ///< whether there is anything to scan
    void setKeepsAnalyses(bool keeps); ///< whether a scan that is cancelled leaves what it has analysed to the next one
    void setUnreadableFolders(int count); ///< of the scan that is under way
    void addRestored(int files); ///< put back by an undo; the results do not show them before the next scan
    void goToGroup(int step); ///< -1 or +1
    bool goToUndecided(int group); ///< to the next one behind it that is not decided; false if there is none
    bool goToNext(int group, const std::function<bool(int group)> &isWanted); ///< the same for other groups
    void goToShownGroup(int group); ///< unless the filter hides it
    void setLoaded(const PerDeck<QString> &paths); ///< marks the rows of what is in the decks
    void focusFilter();
    void focusResults();
    QList<std::pair<int, int>> placesAtHand() const; ///< groups and members that a command for copies is about
    QList<int> groupsAtHand() const; ///< the same for one for groups
    const ReviewFilter &shown() const; ///< what the filters leave
    void addToSummary(QWidget *note); ///< behind the line
    void addTreeAction(QAction *action); ///< its key then works in the tree
    ResultsView *view() const { return m_view; }
    CheckBar *checkBar() const { return m_checkBar; }
    FilterBar *filterBar() const { return m_filterBar; }
    void showGroup(int group); ///< makes it the current row, whatever the filters say
    void showMember(int group, int member); ///< the same

Q_SIGNALS:
    /// Positions in the review. The member is -1 on a group's own row, both are while nothing is current.
    void currentChanged(int group, int member);
    void atHandChanged(bool several); ///< whether more than the current row is selected
    void memberMenuRequested(const QPoint &globalPos); ///< for the current member or group
    void memberActivated(const epr::TrackInfo &track);

private:
    void createFilterRow();
    void createTree();
    void layOutWidgets();
    void clearFilters();
    void followFilter();
    void onFilterChanged(const QString &text);
    void onTreeDoubleClicked();
    void refreshSummary();
    void refreshHint();
    QString hintText() const;
    QString outcomeText() const;
    QString withGaps(const QString &outcome) const;

    Review &m_review;
    ResultsModel *m_model;
    State m_state = State::NotScanned;
    bool m_foundGroups = false; ///< by the last scan, whether or not they are there still
    bool m_hasFolders = false;
    bool m_keepsAnalyses = false;
    int m_unreadableFolders = 0;
    int m_restored = 0; ///< files that came back since the last scan
    QLineEdit *m_filterEdit = nullptr;
    FilterBar *m_filterBar = nullptr;
    CheckBar *m_checkBar = nullptr;
    ResultsView *m_view = nullptr;
    ReviewPlace *m_place = nullptr;
    QLabel *m_summary = nullptr;
    QHBoxLayout *m_summaryRow = nullptr;
    ReviewProgress *m_progress = nullptr;
};

} // namespace epr
