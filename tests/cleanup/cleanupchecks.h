// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"
#include "sandbox.h"

#include <QCoreApplication>
#include <QTest>

namespace epr::test {

/// The program of cleanupdriver.cpp.
inline QString cleanupDriver()
{
    return QCoreApplication::applicationDirPath() + u"/epr_cleanup_driver"_s;
}

inline RemovalCandidate asItIs(const QString &path)
{
    const QFileInfo info(path);
    return { path, info.size(), info.lastModified() };
}

inline void checkUndo(const Sandbox &box, const QString &manifest, qsizetype count, const Tree &before)
{
    QCOMPARE(restoreManifest(manifest), RestoreResult({ static_cast<qint32>(count), 0, {} }));
    QCOMPARE(treeOf(box.library()), before);
    QVERIFY(!QFileInfo::exists(manifest));
}

/// Ends the test that it stands in when the undo is not as it should be.
#define CHECK_UNDO(...)                                                                                                \
    checkUndo(__VA_ARGS__);                                                                                            \
    if (QTest::currentTestFailed())                                                                                    \
    return

/// The undo folder is that of an application with this name, as in the driver.
#define CLEANUP_MAIN(Test)                                                                                             \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        QCoreApplication application(argc, argv);                                                                      \
        QCoreApplication::setApplicationName(u"epr-test"_s);                                                           \
        if (!isUnix)                                                                                                   \
            QStandardPaths::setTestModeEnabled(true);                                                                  \
        Test test;                                                                                                     \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }

} // namespace epr::test
