// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "startup.h"

#include "application.h"
#include "mainwindow.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QIcon>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <string_view>

// The resources are part of a static library, from which the linker takes nothing that nobody asks for. The macro must
// be used outside of any namespace.
static void initialiseResources()
{
    Q_INIT_RESOURCE(resources);
}

namespace epr::startup {

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

void addOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        QCoreApplication::translate("epr::Startup", "Echoprune - find duplicate music in a station library."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({ { u"s"_s, u"scan"_s },
                       QCoreApplication::translate("epr::Startup", "Add <folder> to the scan list on startup."),
                       u"folder"_s });
    parser.addOption(
        { { u"a"_s, u"autostart"_s }, QCoreApplication::translate("epr::Startup", "Begin scanning immediately.") });
}

} // namespace

void loadResources()
{
    initialiseResources();
}

void answerQuestions(int &argc, char **argv)
{
    constexpr std::array questions { "-h"sv, "--help"sv, "-v"sv, "--version"sv };
    if (std::find_first_of(argv, argv + argc, questions.begin(), questions.end()) == argv + argc)
        return;
    const QCoreApplication application(argc, argv);
    metadata::applyToApplication();
    translation::install();
    QCommandLineParser parser;
    addOptions(parser);
    parser.parse(QCoreApplication::arguments()); // which may have options of Qt's that only a graphical one knows
    if (parser.isSet(u"version"_s))
        parser.showVersion();
    if (parser.isSet(u"help"_s))
        parser.showHelp();
}

Arguments processArguments(const QStringList &arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    parser.process(arguments);
    return { parser.values(u"scan"_s), parser.isSet(u"autostart"_s) };
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
