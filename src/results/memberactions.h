// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QPersistentModelIndex>

class QMenu;
class QWidget;

namespace epr {

class ResultsModel;
struct TrackInfo;

/// What can be done with one copy, the current one of the results, or with its group. The context menu of the member
/// rows holds all of it; the main window puts the commands into its menus as well, which makes their keys work
/// everywhere.
class MemberActions final : public QObject {
    Q_OBJECT

public:
    MemberActions(ResultsModel *results, QWidget *parent);

    void setMember(const QModelIndex &member); ///< any index of the results model
    void popup(const QPoint &globalPos);

    QAction *const loadIntoDeckA;
    QAction *const loadIntoDeckB;
    QAction *const compareGroup;
    QAction *const play;
    QAction *const openFolder;
    QAction *const copyPath;
    QAction *const keep;
    QAction *const showDetails;

Q_SIGNALS:
    void loadRequested(int deck, const epr::TrackInfo &track); ///< 0 = A, 1 = B
    void compareRequested(const epr::TrackInfo &kept, const epr::TrackInfo &other);
    void statusMessage(const QString &message);

private:
    template <typename Handler> QAction *make(const QString &text, const QKeySequence &key, Handler handler);
    void refresh();
    void compareMember();
    void keepMember();
    void openMember(const QString &path);

    ResultsModel *m_results;
    QWidget *m_window;
    QMenu *m_menu;
    QMenu *m_groupMenu; ///< on a group's own row
    QPersistentModelIndex m_member; ///< a scan may end and reset the model while the menu is open
};

} // namespace epr
