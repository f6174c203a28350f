// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>

class QAction;
class QMenuBar;
class QToolBar;

namespace epr {

class MainActions;
class MemberActions;
class PlayerDock;

/// Whose commands the menus hold.
struct MenuParts {
    const MainActions *commands;
    const MemberActions *member;
    const PlayerDock *player;
    QList<QAction *> views; ///< that show and hide parts of the window
};

/// Makes the menus, which are the full list of what the program can do.
void fillMenuBar(QMenuBar *bar, const MenuParts &parts);

/// What a clean-up needs from its beginning to its end.
void fillToolBar(QToolBar *bar, const MainActions &commands);

} // namespace epr
