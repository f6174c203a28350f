// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow.h"
#include "metadata.h"
#include "metatypes.h"
#include "startup.h"

#include <QApplication>
#include <QIcon>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    epr::metadata::applyToApplication();
    epr::startup::loadResources();
    QApplication::setWindowIcon(QIcon(u":/icons/appicon.png"_s));
    epr::registerMetaTypes();
    const epr::startup::Arguments arguments = epr::startup::processArguments(QApplication::arguments());
    epr::startup::applyLook();
    epr::startup::createDataFolder();

    epr::MainWindow window;
    for (const QString &folder : arguments.folders)
        window.addFolder(folder);
    window.show();
    if (arguments.autostart)
        window.onStartScan();
    return QApplication::exec();
}
