// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "setasidecommand.h"

#include "backgroundwork.h"
#include "review.h"
#include "setasidedialog.h"

#include <QTimer>

#include <algorithm>
#include <utility>

namespace epr {

SetAsideCommand::SetAsideCommand(Review &review, QWidget *window)
    : Command(window)
    , m_review(review)
    , m_store(SetAsideStore::defaultFilePath())
{
    connect(&review, &Review::statesChanged, this, &SetAsideCommand::follow);
    connect(&review, &Review::reset, this, &SetAsideCommand::noteGroups);
    // Once everybody knows of the other groups, since it may take ticks away.
    connect(&review, &Review::reset, createSoonTimer(this, [this] { notePairs(); }), qOverload<>(&QTimer::start));
}

void SetAsideCommand::takeResults()
{
    open();
    m_review.takeDecisions(setAsideDecisions(m_store.all(), m_review));
    notePairs();
    if (const QString text = setAsideText(m_review.totals().setAside); !text.isEmpty())
        Q_EMIT logMessage(tr("%1 Tools > Not Duplicates lists them.").arg(text));
}

// Groups that were set aside while the file could not be used are restored here as well.
void SetAsideCommand::showAll()
{
    m_lastError.clear();
    open();
    for (int group = 0; group < m_review.groups().size(); ++group) {
        if (m_review.state(group) == GroupState::NotDuplicates)
            store(group);
    }
    SetAsideDialog dialog(m_store.all().groups(), window());
    connect(&dialog, &SetAsideDialog::restoreRequested, this, &SetAsideCommand::restore);
    dialog.exec();
}

// Where it could not be opened it is tried again: whoever had it locked may be gone.
void SetAsideCommand::open()
{
    if (m_store.isOpen())
        return;
    const Result<> opened = m_store.open();
    const QString error = opened ? QString() : opened.error();
    if (error != std::exchange(m_lastError, error) && !error.isEmpty())
        report(error);
}

void SetAsideCommand::follow(const QList<int> &groups)
{
    const auto isConcerned = [this](int group) {
        return m_review.state(group) == GroupState::NotDuplicates
            || m_setAside.contains(m_review.groups().at(group).id);
    };
    if (std::ranges::any_of(groups, isConcerned))
        open();
    for (const int group : groups) {
        const qint32 id = m_review.groups().at(group).id;
        const bool wasSetAside = m_setAside.contains(id);
        if (m_review.state(group) == GroupState::NotDuplicates) {
            m_setAside << id;
            store(group);
        } else if (wasSetAside) {
            m_setAside.remove(id);
            forget(group);
        }
    }
}

void SetAsideCommand::noteGroups()
{
    m_setAside.clear();
    for (int group = 0; group < m_review.groups().size(); ++group) {
        if (m_review.state(group) == GroupState::NotDuplicates)
            m_setAside << m_review.groups().at(group).id;
    }
}

void SetAsideCommand::notePairs()
{
    if (!m_review.groups().isEmpty())
        open();
    m_review.setApart(pairsApart(m_store.all(), m_review));
}

void SetAsideCommand::store(int group)
{
    const QList<SetAsideContent> contents = contentsOf(m_review.groups().at(group), m_review.tracks());
    if (!m_store.all().areAllApart(contents))
        check(m_store.add(contents));
}

// What was said of other groups stays, unless this one would be set aside by it again.
void SetAsideCommand::forget(int group)
{
    const QList<SetAsideContent> contents = contentsOf(m_review.groups().at(group), m_review.tracks());
    if (const QList<qint64> own = m_store.all().of(contents); !own.isEmpty())
        check(m_store.remove(own));
    if (m_store.all().areAllApart(contents))
        check(m_store.remove(m_store.all().overlapping(contents)));
}

void SetAsideCommand::restore(const QList<qint64> &ids)
{
    check(m_store.remove(ids));
    QList<int> back;
    for (int group = 0; group < m_review.groups().size(); ++group) {
        if (m_review.state(group) == GroupState::NotDuplicates
            && !m_store.all().areAllApart(contentsOf(m_review.groups().at(group), m_review.tracks())))
            back << group;
    }
    m_review.setState(back, GroupState::Undecided);
    notePairs();
    report(
        tr("%Ln group(s) restored; those of the results are back in the list.", nullptr, static_cast<int>(ids.size())));
}

void SetAsideCommand::check(const Result<> &stored)
{
    if (!stored)
        report(tr("What is no duplicate could not be stored for the next scan: %1").arg(stored.error()));
}

} // namespace epr
