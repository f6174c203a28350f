// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filterdesk.h"

#include "displaytext.h"
#include "filterbar.h"
#include "memberactions.h"
#include "resultspanel.h"
#include "reviewfilter.h"

#include <QMessageBox>
#include <QPushButton>

namespace epr {

FilterDesk::FilterDesk(const Parts &parts, QWidget *window)
    : QObject(window)
    , showFolder(new QAction(tr("Show Only This Folder"), this))
    , m_parts(parts)
    , m_window(window)
{
    showFolder->setStatusTip(tr("Filter the groups by the folder of this copy."));
    parts.member->addToMenus({ showFolder });
    connect(showFolder, &QAction::triggered, this, [this] {
        m_parts.results->filterBar()->setOnly({ FilterTerm::Kind::Folder, 0, m_folder });
    });
    connect(parts.results, &ResultsPanel::currentChanged, this, &FilterDesk::setMember);
    setMember(-1, -1);
}

void FilterDesk::tick(Review::BulkTick what)
{
    const ReviewFilter &shown = m_parts.results->shown();
    const QList<Review::Place> places = shown.shownPlaces();
    const ReviewTotals &totals = m_parts.review->totals();
    const qint64 hidden = totals.groups + totals.redundantCopies - places.size();
    const Answer answer = shown.isActive() && hidden > 0
        ? ask(places.size(), tr("%Ln copy(s) are hidden.", nullptr, static_cast<int>(hidden)))
        : Answer::All;
    if (answer == Answer::Shown)
        m_parts.review->tickMany(what, places);
    else if (answer == Answer::All)
        m_parts.review->tickMany(what);
}

// Where nothing that is shown would go there is no question: the dialog to come says that all of it is hidden.
void FilterDesk::remove(CleanupCommand *cleanup, CleanupCommand::Places places)
{
    places.hiddenTicks = m_parts.results->shown().hiddenTicks();
    const qint64 shownTicks = m_parts.review->totals().tickedFiles - places.hiddenTicks;
    const Answer answer = places.hiddenTicks > 0 && shownTicks > 0
        ? ask(shownTicks, tr("%Ln ticked copy(s) are hidden.", nullptr, static_cast<int>(places.hiddenTicks)))
        : Answer::All;
    if (answer == Answer::None)
        return;
    if (answer == Answer::Shown) {
        places.hiddenTicks = 0;
        places.only.emplace();
        for (const auto &[group, member] : m_parts.results->shown().shownPlaces())
            places.only->insert(m_parts.review->groups().at(group).members.at(member));
    }
    cleanup->removeSelected(places);
}

FilterDesk::Answer FilterDesk::ask(qint64 copies, const QString &leftOut)
{
    const QString groups = countText(m_parts.results->shown().groupCount());
    const QString all = countText(m_parts.review->totals().groups);
    QMessageBox box(QMessageBox::Question, tr("A filter is on"),
                    tr("%1 of %2 groups are shown.").arg(groups, all) + u' ' + leftOut,
                    QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::Cancel, m_window);
    box.button(QMessageBox::Yes)
        ->setText(tr("Only the %Ln Group(s) Shown (%1 Copies)", nullptr, m_parts.results->shown().groupCount())
                      .arg(countText(copies)));
    box.button(QMessageBox::YesToAll)->setText(tr("All %1 Groups").arg(all));
    box.setDefaultButton(QMessageBox::Yes);
    const int answer = box.exec();
    return answer == QMessageBox::Yes ? Answer::Shown : answer == QMessageBox::YesToAll ? Answer::All : Answer::None;
}

void FilterDesk::setMember(int group, int member)
{
    const TrackInfo *track = m_parts.review->track(group, member);
    m_folder = track ? folderOf(*track) : QString();
    showFolder->setEnabled(track != nullptr);
}

} // namespace epr
