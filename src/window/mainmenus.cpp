// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainmenus.h"

#include "mainactions.h"
#include "memberactions.h"
#include "playerdock.h"

#include <QCoreApplication>
#include <QMenuBar>
#include <QToolBar>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

struct MainMenus {
    Q_DECLARE_TR_FUNCTIONS(epr::MainMenus)
};

// Each part after the first is set off by a line.
void fill(QMenu *menu, const QList<QList<QAction *>> &parts)
{
    for (const QList<QAction *> &part : parts) {
        if (!menu->isEmpty())
            menu->addSeparator();
        menu->addActions(part);
    }
}

} // namespace

void fillMenuBar(QMenuBar *bar, const MenuParts &parts)
{
    const MainActions &commands = *parts.commands;
    const MemberActions &member = *parts.member;
    fill(bar->addMenu(MainMenus::tr("&File")),
         { { commands.addFolder, commands.removeFolder }, { commands.exportReport }, { commands.exit } });
    fill(bar->addMenu(MainMenus::tr("&View")), { parts.views });
    fill(bar->addMenu(MainMenus::tr("&Scan")), { { commands.startScan, commands.stopScan } });
    fill(bar->addMenu(MainMenus::tr("&Edit")),
         { { commands.selectDuplicates, commands.clearSelection, commands.invertSelection },
           { member.keep, member.showDetails, member.copyPath },
           { commands.filterResults, commands.nextGroup, commands.previousGroup } });
    QMenu *player = bar->addMenu(MainMenus::tr("&Player"));
    parts.player->addCommandsTo(player);
    fill(player, { { member.loadIntoDeckA, member.loadIntoDeckB, member.compareGroup } });
    fill(bar->addMenu(MainMenus::tr("&Tools")),
         { { commands.removeSelected, commands.undoCleanup }, { commands.settings, commands.clearCache } });
    fill(bar->addMenu(MainMenus::tr("&Help")),
         { { commands.shortcuts, commands.checkForUpdates }, { commands.website, commands.about } });
}

void fillToolBar(QToolBar *bar, const MainActions &commands)
{
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    bar->addAction(commands.addFolder);
    bar->addSeparator();
    bar->addActions({ commands.startScan, commands.stopScan });
    bar->addSeparator();
    bar->addActions({ commands.selectDuplicates, commands.clearSelection, commands.invertSelection });
    bar->addSeparator();
    bar->addActions({ commands.removeSelected, commands.undoCleanup });
    bar->widgetForAction(commands.startScan)->setObjectName(u"startScanButton"_s); // the style sheet colours it
}

} // namespace epr
