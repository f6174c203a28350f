// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "commands.h"
#include "records.h"

namespace epr {

class Review;

/// Where the two decks show a difference that a check found.
struct DifferencePlace {
    TrackInfo kept; ///< for deck A
    TrackInfo other;
    qint64 keptMs = 0; ///< of the kept copy's own time, two seconds before
    qint64 otherLaterMs = 0; ///< how much later the other one has that moment
};

/// Leads from one difference to the next: through those of a copy, the copies of a group, the groups.
class DifferenceTour final : public Command {
    Q_OBJECT

public:
    DifferenceTour(const Review &review, QWidget *window);

    /// Where the operator is in the results. A copy that the tour has not led to is begun with its first difference; on
    /// a group's own row, -1, the group is.
    void setMember(int group, int member);
    void goOn(bool isChecking); ///< whether more differences may be found yet

Q_SIGNALS:
    void reached(int group, int member);
    void placeWanted(const epr::DifferencePlace &place);

private:
    bool goTo(int group, int member, qsizetype difference);

    const Review &m_review;
    int m_group = -1;
    int m_member = -1;
    qsizetype m_next = 0; ///< of the copy's differences
};

} // namespace epr
