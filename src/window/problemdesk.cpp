// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "problemdesk.h"

#include "backgroundwork.h"
#include "checkdesk.h"
#include "checktext.h"
#include "cleanupcommand.h"
#include "displaytext.h"
#include "groupproblem.h"
#include "look.h"
#include "problemsdock.h"
#include "problemsmodel.h"
#include "resultspanel.h"
#include "review.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QTimer>
#include <QToolButton>
#include <QUrl>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

bool isOfScan(const FileProblem &problem)
{
    return problem.attempt == Attempt::Scan;
}

void addDamage(QList<FileProblem> &problems, const Review &review, const MatchGroup &group)
{
    for (const qint32 member : group.members) {
        if (const QString damage = damageText(group, member); !damage.isEmpty())
            problems.append({ review.tracks().at(member).path, Attempt::Check, damage });
    }
}

QString againText(Attempt attempt)
{
    switch (attempt) {
    case Attempt::ReadFolder:
    case Attempt::Scan:
        return ProblemDesk::tr("Try Again: Scan");
    case Attempt::Check:
        return ProblemDesk::tr("Try Again: Check Its Group");
    case Attempt::Remove:
        return ProblemDesk::tr("Try Again: Go to Its Row to Remove It");
    case Attempt::Restore:
        return ProblemDesk::tr("Try Again: Undo...");
    }
    return {};
}

} // namespace

ProblemDesk::ProblemDesk(const Parts &parts, QWidget *window)
    : Command(window)
    , nextProblem(new QAction(tr("Next Problem"), this))
    , m_parts(parts)
    , m_model(parts.dock->model())
    , m_dock(parts.dock)
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
    QTimer *soon = createSoonTimer(this, [this] { refreshNote(); }); // all groups are looked at; a tick must be quick
    connect(parts.review, &Review::totalsChanged, soon, qOverload<>(&QTimer::start));
    connectList();
    refreshNote();
}

void ProblemDesk::beginScan()
{
    m_stayed.clear();
    m_gone.clear();
    m_model->renew([](const FileProblem &each) { return each.attempt == Attempt::ReadFolder; }, {});
}

void ProblemDesk::addFolders(const QList<FileProblem> &folders)
{
    m_model->renew([](const FileProblem &) { return false; }, folders);
}

void ProblemDesk::connectList()
{
    connect(m_parts.review, &Review::reset, this, &ProblemDesk::followReview);
    connect(m_parts.review, &Review::checkChanged, this, &ProblemDesk::followCheck);
    connect(m_parts.cleanup, &CleanupCommand::removalEnded, this, &ProblemDesk::followRemoval);
    connect(m_parts.cleanup, &CleanupCommand::undoEnded, this, [this](const QList<FileProblem> &problems) {
        m_model->renew([](const FileProblem &each) { return each.attempt == Attempt::Restore; }, problems);
    });
    connect(m_dock, &ProblemsDock::currentChanged, this, &ProblemDesk::refreshList);
    connect(m_parts.scan, &QAction::enabledChanged, this, &ProblemDesk::refreshList);
    connect(m_dock->goToRow, &QAction::triggered, this, &ProblemDesk::goToRow);
    connect(m_dock->tryAgain, &QAction::triggered, this, &ProblemDesk::tryAgain);
    connect(m_dock->openFolder, &QAction::triggered, this, &ProblemDesk::openFolder);
    connect(m_dock->copy, &QAction::triggered, this, &ProblemDesk::copy);
    connect(m_dock->exportAll, &QAction::triggered, this,
            [this] { m_parts.exports->exportProblems(m_model->problems()); });
    refreshList();
}

// The results of a scan, those of an earlier one, what a clean-up has left of them, or none.
void ProblemDesk::followReview()
{
    QList<FileProblem> problems;
    for (const TrackInfo &track : m_parts.review->tracks()) {
        if (!track.error.isEmpty() && !m_gone.contains(track.path))
            problems.append({ track.path, Attempt::Scan, track.error });
    }
    for (const MatchGroup &group : m_parts.review->groups())
        addDamage(problems, *m_parts.review, group);
    m_model->renew([](const FileProblem &each) { return isOfScan(each) || each.attempt == Attempt::Check; }, problems);
}

void ProblemDesk::followCheck(int group)
{
    const MatchGroup &record = m_parts.review->groups().at(group);
    QSet<QString> paths;
    for (const qint32 member : record.members)
        paths.insert(m_parts.review->tracks().at(member).path);
    QList<FileProblem> problems;
    addDamage(problems, *m_parts.review, record);
    m_model->renew(
        [&paths](const FileProblem &each) { return each.attempt == Attempt::Check && paths.contains(each.path); },
        problems);
}

void ProblemDesk::followRemoval(const QStringList &gone, const QList<FileProblem> &problems)
{
    m_gone.unite({ gone.cbegin(), gone.cend() });
    m_model->renew([this](const FileProblem &each) { return m_gone.contains(each.path); }, problems);
    m_stayed.subtract(m_gone);
    for (const FileProblem &problem : problems)
        m_stayed.insert(problem.path);
}

bool ProblemDesk::hasProblem(int group) const
{
    return !problemOf(group).isEmpty();
}

QString ProblemDesk::problemOf(int group) const
{
    const Review &review = *m_parts.review;
    const QString text = groupProblemText(groupProblem(review, group));
    const auto hasStayed = [&](qint32 member) { return m_stayed.contains(review.tracks().at(member).path); };
    if (text.isEmpty() && !m_stayed.isEmpty() && review.state(group) == GroupState::Undecided
        && std::ranges::any_of(review.groups().at(group).members, hasStayed))
        return tr("a copy could not be removed");
    return text;
}

void ProblemDesk::goOn()
{
    const int before = m_group;
    const bool isThere = m_parts.results->goToNext(m_group, [this](int group) { return hasProblem(group); });
    if (isThere || (before >= 0 && hasProblem(before)))
        Q_EMIT statusMessage(tr("Group %1: %2.").arg(m_parts.review->groups().at(m_group).id).arg(problemOf(m_group)));
    else
        Q_EMIT statusMessage(m_count > 0 ? tr("The filter hides the groups with problems.")
                                         : tr("No group has a problem."));
}

void ProblemDesk::refreshNote()
{
    m_count = 0;
    for (int group = 0; group < m_parts.review->groups().size(); ++group)
        m_count += hasProblem(group) ? 1 : 0;
    nextProblem->setEnabled(!m_parts.review->groups().isEmpty());
    m_note->setVisible(m_count > 0);
    m_note->setText(tr("%Ln group(s) to look at", nullptr, m_count));
    m_note->setIcon(signIcon(paintWarning, *m_note, warningColour(m_note->palette())));
}

void ProblemDesk::refreshList()
{
    const FileProblem *problem = m_dock->current();
    m_dock->openFolder->setEnabled(problem != nullptr);
    m_dock->copy->setEnabled(problem != nullptr);
    const bool hasRow = problem != nullptr && placeOf(problem->path).first >= 0;
    m_dock->goToRow->setEnabled(hasRow);
    const bool needsRow =
        problem != nullptr && (problem->attempt == Attempt::Check || problem->attempt == Attempt::Remove);
    m_dock->tryAgain->setEnabled(problem != nullptr && m_parts.scan->isEnabled() && (hasRow || !needsRow));
    m_dock->tryAgain->setText(problem != nullptr ? againText(problem->attempt) : tr("Try Again"));
}

std::pair<int, int> ProblemDesk::placeOf(const QString &path) const
{
    const Review &review = *m_parts.review;
    for (int group = 0; group < review.groups().size(); ++group) {
        const QList<qint32> &members = review.groups().at(group).members;
        const auto member =
            std::ranges::find_if(members, [&](qint32 each) { return review.tracks().at(each).path == path; });
        if (member != members.cend() && review.state(group) != GroupState::NotDuplicates)
            return { group, static_cast<int>(member - members.cbegin()) };
    }
    return { -1, -1 };
}

void ProblemDesk::goToRow()
{
    const FileProblem *problem = m_dock->current();
    const auto [group, member] = problem != nullptr ? placeOf(problem->path) : std::pair(-1, -1);
    if (group < 0)
        return;
    m_parts.results->showMember(group, member);
    m_parts.results->focusResults();
}

void ProblemDesk::tryAgain()
{
    const FileProblem *problem = m_dock->current();
    if (problem == nullptr)
        return;
    switch (problem->attempt) {
    case Attempt::ReadFolder:
    case Attempt::Scan: // what failed is not in the cache: the next scan reads it afresh, and little else
        return m_parts.scan->trigger();
    case Attempt::Check:
        return m_parts.checks->check(placeOf(problem->path).first);
    case Attempt::Remove:
        goToRow();
        Q_EMIT statusMessage(tr("Tick it if it is not, and press Remove Selected."));
        return;
    case Attempt::Restore:
        return m_parts.undo->trigger();
    }
}

void ProblemDesk::openFolder()
{
    const FileProblem *problem = m_dock->current();
    if (problem == nullptr)
        return;
    const QString folder = problem->attempt == Attempt::ReadFolder ? problem->path : problem->path.section(u'/', 0, -2);
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        Q_EMIT statusMessage(tr("Could not open %1.").arg(nativePath(folder)));
}

void ProblemDesk::copy()
{
    QStringList lines;
    for (const FileProblem &problem : m_dock->selected())
        lines.append(
            QStringList { nativePath(problem.path), attemptText(problem.attempt), problem.reason }.join(u'\t'));
    QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

} // namespace epr
