// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingsstore.h"

#include "temporarylibrary.h"

#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

class TestSettingsStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        QCoreApplication::setOrganizationName(u"Quorvane"_s);
        QCoreApplication::setApplicationName(u"Echoprune"_s);
    }

    void everythingSurvivesARestart()
    {
        ScanOptions options; // every kept value differs from its default and from its like
        options.extensions = QStringList { u"mp3"_s };
        options.excludes = QStringList();
        options.followSymlinks = options.includeHidden = options.detectMetadata = options.compareThoroughly = true;
        options.detectIdentical = options.detectSameAudio = options.detectAcoustic = options.useCache = false;
        options.onlyPossibleCopies = false;
        options.minBytes = 5000000000;
        options.minDurationMs = 6000000000;
        options.fingerprintSeconds = 91;
        options.threshold = 0.4;
        options.chromaprintThreshold = 0.1;
        options.durationTolerance = 7;
        options.decoderThreads = 13;
        options.metadataTolerance = 1234;
        options.keeperPolicy = 99;
        {
            SettingsStore store;
            store.set(settings::windowGeometry, QByteArray("\0\xff\x01", 3));
            store.set(settings::windowState, "state");
            store.set(settings::folders, { u"D:/Müsik, all"_s, u"E:/b"_s });
            store.saveScanOptions(options);
            store.set(settings::quarantineRoot, u"D:/Q"_s);
            store.set(settings::compareAgain, true);
            store.set(settings::csvMark, true);
            store.set(settings::showPlayer, false);
            store.set(settings::linkDecks, false);
            store.set(settings::checkForUpdatesOnStartup, false);
        }
        // Under other names a new version would begin without what the operator has set.
        QCOMPARE(QSettings().allKeys().join(u' '),
                 u"audition/linked audition/showPlayer detect/acoustic detect/checkWhole detect/chromaprintThreshold "
                 "detect/durationTolerance detect/identical detect/keeperPolicy detect/keeperRules detect/metadata "
                 "detect/metadataTolerance detect/sameAudio detect/thorough detect/threshold files/excludes "
                 "files/extensions "
                 "files/hidden files/minBytes files/minDurationMs files/symlinks perf/decoderThreads "
                 "perf/fingerprintSeconds perf/onlyPossibleCopies perf/useCache reports/csvByteOrderMark "
                 "safety/compareAgain "
                 "safety/quarantineRoot scan/folders "
                 "updates/checkOnStartup "
                 "window/geometry window/state"_s);
        const SettingsStore store;
        QCOMPARE(store.value(settings::windowGeometry), QByteArray("\0\xff\x01", 3));
        QCOMPARE(store.value(settings::windowState), QByteArray("state"));
        QCOMPARE(store.value(settings::folders), (QStringList { u"D:/Müsik, all"_s, u"E:/b"_s }));
        QCOMPARE(store.loadScanOptions(), options);
        QCOMPARE(store.value(settings::quarantineRoot), u"D:/Q"_s);
        QVERIFY(store.value(settings::compareAgain) && !store.value(settings::showPlayer)
                && !store.value(settings::linkDecks) && !store.value(settings::checkForUpdatesOnStartup));
    }

    void unreadableValuesAreDefaults()
    {
        test::writeFile(QSettings().fileName(),
                        "[detect]\nidentical=perhaps\nthreshold=low\nkeeperPolicy=4294967297\n[files]\nminBytes=1 MB\n"
                        "extensions=ogg\n[perf]\ndecoderThreads=-4\nfingerprintSeconds=0\nuseCache=0");
        QSettings().sync(); // values of the test before are kept for a while
        ScanOptions expected;
        expected.extensions = QStringList { u"ogg"_s };
        expected.decoderThreads = -4;
        expected.fingerprintSeconds = 0;
        expected.useCache = false;
        const SettingsStore store;
        QCOMPARE(store.loadScanOptions(), expected);
        QVERIFY(store.value(settings::showPlayer) && store.value(settings::linkDecks)
                && store.value(settings::checkForUpdatesOnStartup));
        QVERIFY(store.value(settings::folders).isEmpty()
                && store.value(settings::quarantineRoot).endsWith("/Echoprune Quarantine"_L1));
    }

private:
    std::optional<test::TemporaryHome> m_home;
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
