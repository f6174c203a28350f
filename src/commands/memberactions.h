// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"
#include "deck.h"
#include "review.h"

#include <QAction>

#include <functional>

class QMenu;

namespace epr {

struct TrackInfo;

/// What can be done with one copy, the current one of the results, or with its group. The context menu of the member
/// rows holds all of it; the main window puts the commands into its menus as well, which makes their keys work
/// everywhere.
class MemberActions final : public Command {
    Q_OBJECT

public:
    MemberActions(Review &review, QWidget *window);

    using PlacesAtHand = std::function<QList<Review::Place>()>;

    void setPlaces(const PlacesAtHand &places)
    {
        m_places = places;
    } ///< the current member and what is selected with it
    void setSeveral(bool several); ///< whether there are more than the current one
    void setMember(int group, int member); ///< positions in the review; -1 = a group's own row, or nowhere
    void popup(const QPoint &globalPos);
    void addToMenus(const QList<QAction *> &commands); ///< of the member and of the group

    QAction *const loadIntoDeckA;
    QAction *const loadIntoDeckB;
    QAction *const compareGroup;
    QAction *const play;
    QAction *const openFolder;
    QAction *const copyPath;
    QAction *const keep;
    QAction *const showDetails;

Q_SIGNALS:
    void loadRequested(epr::Deck deck, const epr::TrackInfo &track);
    void compareRequested(const epr::TrackInfo &kept, const epr::TrackInfo &other);

private:
    template <typename Handler>
    QAction *make(const QString &text, const QKeySequence &key, const QString &tip, Handler handler);
    const TrackInfo *track() const;
    void refresh();
    void compareMember();
    void keepMembers();
    void copyPaths();
    void showDetailsOf(const TrackInfo &track);
    void openMember(const QString &path);

    Review &m_review;
    QMenu *m_menu;
    QMenu *m_groupMenu; ///< on a group's own row
    int m_group = -1;
    int m_member = -1;
    bool m_hasSeveral = false;
    PlacesAtHand m_places = [this] { return QList<Review::Place> { { m_group, m_member } }; };
};

/// Everything the operator may want to know of a file, as a rich-text table: with what a check over the whole length
/// measured and what it has to remark, and how it belongs to the kept copy.
QString fileDetailsHtml(const TrackInfo &track, const SoundMeasures &measures = {}, const QStringList &remarks = {},
                        const QString &relation = {});

} // namespace epr
