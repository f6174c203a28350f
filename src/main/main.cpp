// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "look.h"
#include "mainwindow.h"
#include "mediabackend.h"
#include "records.h"
#include "startup.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    epr::avoidCompiledExpressions();
    epr::startup::answerQuestions(argc, argv);
    epr::preferFfmpegMediaBackend();
    const QApplication application(argc, argv);
    epr::metadata::applyToApplication();
    epr::translation::install();
    epr::startup::loadResources();
    QApplication::setWindowIcon(epr::startup::applicationIcon());
    QApplication::setDesktopFileName(epr::metadata::desktopId());
    epr::registerMetaTypes();
    const epr::startup::Arguments arguments = epr::startup::processArguments(QApplication::arguments());
    epr::applyLook();
    epr::startup::createDataFolder();

    epr::MainWindow window;
    epr::startup::open(window, arguments);
    return QApplication::exec();
}
