// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

namespace epr {

class CleanupCommand;
class MemberActions;
class PlayerDock;
class ResultsPanel;
class Review;
class SettingsStore;

/// The comparison player in the main window: what is loaded from the results, what these and the decks show of each
/// other, and a clean-up that needs the files closed.
class PlayerDesk final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        Review *review;
        ResultsPanel *results;
        PlayerDock *player;
        CleanupCommand *cleanup;
        MemberActions *member;
    };

    PlayerDesk(const Parts &parts, QObject *window);

    void restore(const SettingsStore &store, bool isFirstStart); ///< which keeps it away from a screen too low for it
    void save(SettingsStore &store) const;

Q_SIGNALS:
    void logMessage(const QString &message);

private:
    void markLoadedCopies(); ///< in the results, and in the decks whether they are kept

    const Parts m_parts;
};

} // namespace epr
