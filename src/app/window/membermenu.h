// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPersistentModelIndex>

class QAction;
class QMenu;
class QWidget;

namespace epr {

class ResultsModel;
struct TrackInfo;

/// What can be done with one copy: the context menu of the member rows.
class MemberMenu final : public QObject {
    Q_OBJECT

public:
    MemberMenu(ResultsModel *results, QWidget *parent);

    void popup(const QModelIndex &member, const QPoint &globalPos); ///< an index of the results model

Q_SIGNALS:
    void statusMessage(const QString &message);

private:
    using Handler = void (MemberMenu::*)(const TrackInfo &track);

    QAction *addAction(const QString &name, const QString &text, Handler handler);
    void play(const TrackInfo &track);
    void openFolder(const TrackInfo &track);
    void copyPath(const TrackInfo &track);
    void keep(const TrackInfo &track);
    void showDetails(const TrackInfo &track);
    void open(const QString &path);

    ResultsModel *m_results;
    QWidget *m_window;
    QMenu *m_menu;
    QAction *m_keepAction = nullptr;
    QPersistentModelIndex m_member; ///< what the open menu is about; a scan may end and reset the model meanwhile
};

} // namespace epr
