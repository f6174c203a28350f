// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "startup.h"

#include "matchcolour.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QPalette>
#include <QStandardPaths>

// The resources are part of a static library, from which the linker takes nothing that nobody asks for. The macro must
// be used outside of any namespace.
static void initialiseResources()
{
    Q_INIT_RESOURCE(resources);
}

namespace epr::startup {

using namespace Qt::StringLiterals;

namespace {

struct Startup {
    Q_DECLARE_TR_FUNCTIONS(epr::Startup)
};

// The program's own tones where the system's are light. A dark system keeps its palette: only the selection and the
// links are ours there, in tones that a dark background carries.
QPalette palettedFrom(QPalette palette)
{
    const bool isDark = isDarkPalette(palette);
    const QColor selection = isDark ? QColor(52, 96, 150) : QColor(13, 36, 64);
    palette.setColor(QPalette::Active, QPalette::Highlight, selection);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, selection.lighter(130));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, isDark ? QColor(132, 180, 240) : QColor(28, 90, 138));
    if (!isDark) {
        palette.setColor(QPalette::Window, QColor(247, 249, 252));
        palette.setColor(QPalette::AlternateBase, QColor(232, 238, 246));
    }
    return palette;
}

} // namespace

void loadResources()
{
    initialiseResources();
}

Arguments processArguments(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(Startup::tr("Echoprune - find duplicate music in a station library."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption scan({ u"s"_s, u"scan"_s }, Startup::tr("Add <folder> to the scan list on startup."),
                                  u"folder"_s);
    const QCommandLineOption autostart({ u"a"_s, u"autostart"_s }, Startup::tr("Begin scanning immediately."));
    parser.addOptions({ scan, autostart });
    parser.process(arguments);
    return { parser.values(scan), parser.isSet(autostart) };
}

void applyLook()
{
    QApplication::setPalette(palettedFrom(QApplication::palette()));
    QFile sheet(u":/style/app.qss"_s);
    if (sheet.open(QIODevice::ReadOnly | QIODevice::Text))
        qApp->setStyleSheet(QString::fromUtf8(sheet.readAll()));
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
