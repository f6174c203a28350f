// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"
#include "setasidestore.h"

#include <QSet>

namespace epr {

/// Remembers which groups of a review are no duplicates, over all scans: stores each as the operator sets it aside,
/// forgets it when that is taken back, and sets it aside again when a scan finds it again.
class SetAsideCommand final : public Command {
    Q_OBJECT

public:
    SetAsideCommand(Review &review, QWidget *window);

    void takeResults(); ///< once those of a scan are in the review
    void showAll(); ///< lets the operator restore some

private:
    void open();
    void follow(const QList<int> &groups);
    void noteGroups();
    void notePairs();
    void store(int group);
    void forget(int group);
    void restore(const QList<qint64> &ids);
    void check(const Result<> &stored);

    Review &m_review;
    SetAsideStore m_store;
    QSet<qint32> m_setAside; ///< numbers of groups, to know which of them were
    QString m_lastError; ///< of opening, said once
};

} // namespace epr
