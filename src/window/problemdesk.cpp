// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "problemdesk.h"

#include "backgroundwork.h"
#include "groupproblem.h"
#include "look.h"
#include "resultspanel.h"
#include "review.h"

#include <QTimer>
#include <QToolButton>

namespace epr {

using namespace Qt::StringLiterals;

ProblemDesk::ProblemDesk(const Parts &parts, QWidget *window)
    : Command(window)
    , nextProblem(new QAction(tr("Next Problem"), this))
    , m_parts(parts)
    , m_note(new QToolButton(parts.results))
{
    nextProblem->setShortcut(Qt::Key_P);
    nextProblem->setStatusTip(tr("Go to the next group that had better be looked at: every copy is ticked, say, or the "
                                 "kept one is gone."));
    nextProblem->setToolTip(nextProblem->statusTip());
    connect(nextProblem, &QAction::triggered, this, &ProblemDesk::goOn);
    m_note->setObjectName(u"problemNote"_s);
    m_note->setAutoRaise(true);
    m_note->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_note->setFocusPolicy(Qt::TabFocus);
    m_note->setMaximumHeight(m_note->fontMetrics().height() + 4); // no higher than the line that it stands in
    m_note->setToolTip(tr("Go to the next of them (P)"));
    connect(m_note, &QToolButton::clicked, this, &ProblemDesk::goOn);
    parts.results->addToSummary(m_note);

    connect(parts.results, &ResultsPanel::currentChanged, this, [this](int group) { m_group = group; });
    connect(parts.review, &Review::aboutToBeReset, this, [this] { m_group = -1; });
    QTimer *soon = createSoonTimer(this, [this] { refresh(); }); // all groups are looked at, and a tick must be quick
    connect(parts.review, &Review::totalsChanged, soon, qOverload<>(&QTimer::start));
    refresh();
}

bool ProblemDesk::hasProblem(int group) const
{
    return groupProblem(*m_parts.review, group) != GroupProblem::None;
}

void ProblemDesk::goOn()
{
    const int before = m_group;
    const bool isThere = m_parts.results->goToNext(m_group, [this](int group) { return hasProblem(group); });
    if (isThere || (before >= 0 && hasProblem(before)))
        Q_EMIT statusMessage(tr("Group %1: %2.")
                                 .arg(m_parts.review->groups().at(m_group).id)
                                 .arg(groupProblemText(groupProblem(*m_parts.review, m_group))));
    else
        Q_EMIT statusMessage(m_count > 0 ? tr("The filter hides the groups with problems.")
                                         : tr("No group has a problem."));
}

void ProblemDesk::refresh()
{
    m_count = 0;
    for (int group = 0; group < m_parts.review->groups().size(); ++group)
        m_count += hasProblem(group) ? 1 : 0;
    nextProblem->setEnabled(!m_parts.review->groups().isEmpty());
    m_note->setVisible(m_count > 0);
    m_note->setText(tr("%Ln group(s) to look at", nullptr, m_count));
    m_note->setIcon(signIcon(paintWarning, *m_note, warningColour(m_note->palette())));
}

} // namespace epr
