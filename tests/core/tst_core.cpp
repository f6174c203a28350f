// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "progress.h"
#include "systempaths.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestCore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void timeLeftOfAScanIsToldOnlyWhenKnown()
    {
        const auto left = [](bool hasUnknownPace, qint64 toCompare, std::optional<qint64> ownMs) {
            const epr::ScanStep step { 4, 5, hasUnknownPace, toCompare };
            return step.timeLeftMs(ownMs).value_or(-1);
        };
        QCOMPARE(left(false, 20000, 600000), 620000);
        QCOMPARE(left(true, 20000, 600000), -1); // decoding is still to come
        QCOMPARE(left(false, 20000, 19999), -1); // most of it would be a guess
        QCOMPARE(left(false, 20000, std::nullopt), -1);
        QCOMPARE(epr::ScanStep({ 4, 5 }).text(), u"step 4 of 5"_s);
    }

    void folderIsKnownByPathOrNumbers()
    {
        const epr::FolderIdentity drive { u"D:/Music"_s, 1, 2, 3, true };
        const auto isDrive = [&](const epr::FolderIdentity &other) { return drive.isSameAs(other); };
        QVERIFY2(isDrive({ u"D:/Music"_s, 1, 9, 3, true }), "some drivers number a folder anew at every look");
        QVERIFY2(isDrive({ u"//studio/Music"_s, 1, 2, 3, false }), "its own share");
        QVERIFY2(!isDrive({ u"E:/Music"_s, 1, 2, 3, true }), "a copy of the whole disk");
        QVERIFY2(!isDrive({ u"//nas/all/disk2"_s, 1, 2, 4, false }), "another disk of a share");
        QVERIFY2(!epr::FolderIdentity({ u"//nas/a"_s }).isSameAs({ u"//nas/b"_s }), "without numbers");
        QVERIFY2(!epr::FolderIdentity().isSameAs({}), "neither is there");
    }
};

QTEST_GUILESS_MAIN(TestCore)
#include "tst_core.moc"
