// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanupcommand.h"
#include "review.h"

#include <QAction>

#include <functional>

namespace epr {

class MemberActions;
class ResultsPanel;

/// The commands that concern many copies, in the main window: while filters hide some, the operator says whether those
/// are meant as well.
class FilterDesk final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        Review *review;
        ResultsPanel *results;
        MemberActions *member;
    };

    FilterDesk(const Parts &parts, QWidget *window);

    void tick(Review::BulkTick what);
    void remove(CleanupCommand *cleanup, CleanupCommand::Places places); ///< these without what is hidden

    QAction *const showFolder; ///< of the current copy, and nothing else

private:
    enum class Answer { Shown, All, None };

    Answer ask(qint64 copies, const QString &leftOut);
    void setMember(int group, int member);

    const Parts m_parts;
    QWidget *m_window;
    QString m_folder; ///< of the current copy
};

} // namespace epr
