// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "startup.h"

#include "mainwindow.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QIcon>
#include <QStandardPaths>

// The resources are part of a static library, from which the linker takes nothing that nobody asks for. The macro must
// be used outside of any namespace.
static void initialiseResources()
{
    Q_INIT_RESOURCE(resources);
}

namespace epr::startup {

using namespace Qt::StringLiterals;

void loadResources()
{
    initialiseResources();
}

Arguments processArguments(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("epr::Startup", "Echoprune - find duplicate music in a station library."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption scan(
        { u"s"_s, u"scan"_s }, QCoreApplication::translate("epr::Startup", "Add <folder> to the scan list on startup."),
        u"folder"_s);
    const QCommandLineOption autostart({ u"a"_s, u"autostart"_s },
                                       QCoreApplication::translate("epr::Startup", "Begin scanning immediately."));
    parser.addOptions({ scan, autostart });
    parser.process(arguments);
    return { parser.values(scan), parser.isSet(autostart) };
}

void open(MainWindow &window, const Arguments &arguments)
{
    for (const QString &folder : arguments.folders)
        window.addFolder(folder);
    window.show();
    if (arguments.autostart)
        window.onStartScan();
}

QIcon applicationIcon()
{
    QIcon icon(u":/icons/appicon.png"_s);
    for (const int size : { 16, 20, 24, 32, 40, 48, 64, 128 })
        icon.addFile(u":/icons/appicon-%1.png"_s.arg(size), QSize(size, size));
    return icon;
}

void createDataFolder()
{
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
}

} // namespace epr::startup
