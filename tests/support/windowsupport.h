// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "application.h"
#include "look.h"
#include "mainwindow.h"
#include "records.h"
#include "resultsmodel.h"
#include "review.h"
#include "settingsstore.h"
#include "startup.h"

#include "messagebox.h"
#include "temporarylibrary.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QTreeView>

namespace epr::test {

using namespace Qt::StringLiterals;

/// What the program does before it makes its window. The system's own dialogs are no widgets, which a test could use.
inline void setUpApplication()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    metadata::applyToApplication();
    registerMetaTypes();
    startup::loadResources();
    applyLook();
}

inline QString labelOf(const MainWindow &window, const QString &name)
{
    return window.findChild<QLabel *>(name)->text();
}

inline QString summaryOf(const MainWindow &window)
{
    return labelOf(window, u"summaryLabel"_s);
}

/// The lines of the activity log without their times.
inline QStringList logOf(const MainWindow &window)
{
    QStringList lines = window.findChild<QPlainTextEdit *>(u"activityLog"_s)->toPlainText().split(u'\n');
    for (QString &line : lines)
        line = line.section(u"] "_s, 1);
    return lines;
}

inline bool logs(const MainWindow &window, const QString &startOfLine)
{
    return (u'\n' + logOf(window).join(u'\n')).contains(u'\n' + startOfLine);
}

/// Scans a folder to the end.
inline void scan(MainWindow &window, const QString &folder)
{
    window.addFolder(folder);
    window.onStartScan();
    if (!QTest::qWaitFor([&window] { return !window.isScanning(); }, 60000))
        qFatal("The scan does not end");
}

} // namespace epr::test
