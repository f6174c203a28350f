// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reviewsketch.h"

#include <QRandomGenerator>

namespace epr::test {

/// An operator who decides the same for the same seed.
class ReviewScript final {
public:
    explicit ReviewScript(quint32 seed)
        : m_random(seed)
    {
    }

    static void begin(Review &review)
    {
        QStringList groups;
        for (int group = 0; group < 60; ++group)
            groups << QStringLiteral("%1a* %1b %1c").arg(group);
        fill(review, groups.join(QStringLiteral(" / ")));
    }

    void step(Review &review)
    {
        const auto size = static_cast<int>(review.groups().size());
        const int group = m_random.bounded(size);
        const QList<qint32> members = review.groups().at(group).members;
        const int member = m_random.bounded(static_cast<int>(members.size()));
        const int what = m_random.bounded(1000);
        if (what < 600)
            review.setTicked(group, member, !review.isTicked(group, member));
        else if (what < 750)
            review.setKeeper(group, members.at(member));
        else if (what < 900)
            review.setState({ group }, static_cast<GroupState>(m_random.bounded(3)));
        else if (what < 960)
            review.undo();
        else if (what < 980)
            review.invertTicks();
        else if (what < 996)
            review.tickDuplicates();
        else if (size > 10)
            review.removeMembers({ members.at(member) });
    }

private:
    QRandomGenerator m_random;
};

} // namespace epr::test
