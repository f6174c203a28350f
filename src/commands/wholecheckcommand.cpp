// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wholecheckcommand.h"

#include "analysiscache.h"
#include "backgroundwork.h"
#include "displaytext.h"
#include "groupcheck.h"
#include "review.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

bool isUnchecked(const Review &review, int group)
{
    const MatchGroup &record = review.groups().at(group);
    return review.state(group) != GroupState::NotDuplicates && isWorthChecking(record) && !isChecked(record);
}

qint64 uncheckedTicksIn(const Review &review, int group, const OnlyTracks &only = {})
{
    const MatchGroup &record = review.groups().at(group);
    qint64 count = 0;
    for (int member = 0; member < record.members.size() && isWorthChecking(record); ++member)
        count += review.isTicked(group, member) && !review.isKeeper(group, member)
            && isAmong(only, record.members.at(member))
            && checkState(record, record.members.at(member)) == CheckState::Unchecked;
    return count;
}

CheckItem itemOf(const Review &review, int group, qint32 number)
{
    const MatchGroup &record = review.groups().at(group);
    CheckItem item { number, record.keep, record.members, {} };
    for (const qint32 member : record.members)
        item.tracks << review.tracks().value(member);
    return item;
}

} // namespace

qint64 uncheckedTicks(const Review &review, const OnlyTracks &only)
{
    qint64 count = 0;
    for (int group = 0; group < review.groups().size(); ++group)
        count += uncheckedTicksIn(review, group, only);
    return count;
}

WholeCheckCommand::WholeCheckCommand(Review &review, QWidget *window)
    : Command(window)
    , m_review(review)
    , m_checker(AnalysisCache::defaultFilePath())
{
    connect(&m_checker, &WholeChecker::checked, this, &WholeCheckCommand::take);
    connect(&m_checker, &WholeChecker::progressChanged, this, &WholeCheckCommand::showProgress);
    connect(&m_checker, &WholeChecker::finished, this, &WholeCheckCommand::finish);
    connect(&m_checker, &WholeChecker::logMessage, this, &Command::logMessage);
    connect(&review, &Review::reset, this, &WholeCheckCommand::refreshOffer);
    // A command may change the copy to keep of thousands of groups, each with a signal of its own.
    QTimer *soon = createSoonTimer(this, [this] { refreshOffer(); });
    connect(&review, &Review::keeperChanged, soon, qOverload<>(&QTimer::start));
    connect(&review, &Review::statesChanged, soon, qOverload<>(&QTimer::start));
}

void WholeCheckCommand::follow(const ScanOptions &options)
{
    m_seconds = tr("%1 s").arg(countText(options.fingerprintSeconds));
    refreshOffer();
    if (options.checkWhole)
        checkAll();
}

void WholeCheckCommand::checkAll()
{
    QList<int> groups;
    for (int group = 0; group < m_review.groups().size(); ++group) {
        if (isUnchecked(m_review, group))
            groups << group;
    }
    check(groups);
}

void WholeCheckCommand::checkTicked()
{
    QList<int> groups;
    for (int group = 0; group < m_review.groups().size(); ++group) {
        if (uncheckedTicksIn(m_review, group) > 0)
            groups << group;
    }
    m_isForRemoval = !groups.isEmpty();
    check(groups);
}

void WholeCheckCommand::checkGroup(int group)
{
    if (group >= 0)
        check({ group });
}

void WholeCheckCommand::togglePause()
{
    m_isPaused = !m_isPaused;
    m_checker.setPaused(m_isPaused);
    m_estimate.restart();
    showProgress(m_progress);
}

void WholeCheckCommand::stop()
{
    m_firstNumber = m_endNumber;
    m_checker.stop();
}

// A pause alone closes the files too, but only release() waits for that.
void WholeCheckCommand::hold(const QStringList &paths)
{
    m_checker.setPaused(true);
    if (!m_checker.release(paths))
        Q_EMIT logMessage(tr("The check over the whole length does not let go of a file."));
}

void WholeCheckCommand::resume()
{
    m_checker.setPaused(m_isPaused);
}

void WholeCheckCommand::check(const QList<int> &groups)
{
    if (!m_checker.isRunning()) {
        m_summary = {};
        m_isPaused = false;
        m_checker.setPaused(false);
        m_estimate.restart();
        m_clock.start();
    }
    QList<CheckItem> items;
    for (const int group : groups) {
        items << itemOf(m_review, group, m_firstNumber + m_review.groups().at(group).id);
        m_endNumber = std::max(m_endNumber, items.last().group + 1);
    }
    if (!items.isEmpty())
        m_checker.check(items);
}

void WholeCheckCommand::take(int number, const GroupCheck &check)
{
    const auto found = std::ranges::lower_bound(m_review.groups(), number - m_firstNumber, {}, &MatchGroup::id);
    if (!check.isDone() || found == m_review.groups().cend() || found->id != number - m_firstNumber)
        return;
    const auto group = static_cast<int>(found - m_review.groups().cbegin());
    m_summary.unticked += m_review.setCheck(group, check);
    const MatchGroup &record = m_review.groups().at(group);
    const auto isAny = [&record](CheckState state) {
        return std::ranges::any_of(record.members, [&](qint32 member) { return checkState(record, member) == state; });
    };
    if (isAny(CheckState::Differs))
        ++m_summary.differing;
    else if (isAny(CheckState::Failed))
        ++m_summary.failed;
    else
        ++m_summary.alike;
}

void WholeCheckCommand::showProgress(const CheckProgress &progress)
{
    m_progress = progress;
    if (!m_checker.isRunning())
        return;
    const auto done = static_cast<int>(progress.filesDone);
    const auto total = static_cast<int>(progress.files);
    QString text =
        (m_isPaused ? tr("Paused: checked %1 of %2 files, %3 of %4 groups")
                    : tr("Checking whole files: %1 of %2, %3 of %4 groups"))
            .arg(countText(done), countText(total), countText(progress.groupsDone), countText(progress.groups));
    if (!m_isPaused) {
        m_estimate.add(done, total, m_clock.elapsed());
        if (const QString rest = m_estimate.text(); !rest.isEmpty())
            text = tr("%1 - %2", "how far a check has come and its speed").arg(text, rest);
    }
    Q_EMIT progressed(text, done, total, m_isPaused);
}

void WholeCheckCommand::finish(bool stopped)
{
    QStringList parts { tr("%Ln group(s) alike to the end", nullptr, m_summary.alike) };
    if (m_summary.differing > 0)
        parts << tr("%Ln with copies that differ", nullptr, m_summary.differing);
    if (m_summary.failed > 0)
        parts << tr("%Ln with copies that could not be checked", nullptr, m_summary.failed);
    if (m_summary.unticked > 0)
        parts << tr("%Ln copy(s) unticked", nullptr, m_summary.unticked);
    const bool wasForRemoval = std::exchange(m_isForRemoval, false);
    if (stopped)
        Q_EMIT logMessage(tr("Check over the whole length stopped: %1.").arg(parts.join(", "_L1)));
    else
        report(tr("Checked over the whole length: %1.").arg(parts.join(", "_L1)));
    if (wasForRemoval && !stopped)
        Q_EMIT statusMessage(tr("The ticked copies are checked. Press Remove Selected again to go on."));
    refreshOffer();
}

void WholeCheckCommand::refreshOffer()
{
    if (!m_checker.isRunning())
        Q_EMIT offered(offerText());
}

QString WholeCheckCommand::offerText() const
{
    int bySound = 0;
    int byTags = 0;
    for (int group = 0; group < m_review.groups().size(); ++group) {
        if (isUnchecked(m_review, group))
            ++(m_review.groups().at(group).matchType == MatchType::SameSong ? byTags : bySound);
    }
    QStringList texts;
    if (bySound > 0)
        texts << tr("%Ln group(s) were compared over their first %1.", nullptr, bySound).arg(m_seconds);
    if (byTags > 0)
        texts << tr("%Ln group(s) were found by their tags alone.", nullptr, byTags);
    return texts.join(u' ');
}

} // namespace epr
