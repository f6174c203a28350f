// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingsstore.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <optional>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

// What is loaded from a settings file with this content.
ScanOptions optionsOf(const QByteArray &ini)
{
    QFile file(QSettings().fileName());
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly) || file.write(ini) != ini.size())
        qFatal("Cannot write the settings");
    file.close();
    QSettings().sync(); // values of the file before are kept for a while
    return SettingsStore().loadScanOptions();
}

} // namespace

class TestSettingsStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The native store of Windows is the registry, which tests leave alone.
    void init()
    {
        m_folder.emplace();
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_folder->path());
        QCoreApplication::setOrganizationName(u"Quorvane"_s);
        QCoreApplication::setApplicationName(u"Echoprune"_s);
    }

    void everythingSurvivesARestart()
    {
        ScanOptions options; // every kept value differs from its default and from its like
        options.extensions = QStringList { u"mp3"_s };
        options.excludes = QStringList();
        options.followSymlinks = options.includeHidden = options.detectMetadata = true;
        options.detectIdentical = options.detectSameAudio = options.detectAcoustic = options.useCache = false;
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
            store.setWindowGeometry(QByteArray("\0\xff\x01", 3));
            store.setWindowState("state");
            store.setFolders({ u"D:/Müsik, all"_s, u"E:/b"_s });
            store.saveScanOptions(options);
            store.setQuarantineRoot(u"D:/Q"_s);
            store.setShowPlayer(false);
            store.setLinkDecks(false);
            store.setCheckForUpdatesOnStartup(false);
        }
        const SettingsStore store;
        QCOMPARE(store.windowGeometry(), QByteArray("\0\xff\x01", 3));
        QCOMPARE(store.windowState(), QByteArray("state"));
        QCOMPARE(store.folders(), (QStringList { u"D:/Müsik, all"_s, u"E:/b"_s }));
        QCOMPARE(store.loadScanOptions(), options);
        QCOMPARE(store.quarantineRoot(), u"D:/Q"_s);
        QVERIFY(!store.showPlayer() && !store.linkDecks() && !store.checkForUpdatesOnStartup());

        QCoreApplication::setApplicationName(u"Another"_s);
        QVERIFY(SettingsStore().loadScanOptions().useCache);
    }

    void storedValues()
    {
        ScanOptions expected;
        expected.decoderThreads = defaultDecoderThreads(QThread::idealThreadCount());
        QCOMPARE(optionsOf(""), expected);
        QCOMPARE(optionsOf("[detect]\nidentical=perhaps\nthreshold=low\nkeeperPolicy=4294967297\n"
                           "[files]\nminBytes=1 MB"),
                 expected);
        expected.minBytes = -1;
        expected.extensions = QStringList { u"ogg"_s };
        expected.decoderThreads = -4;
        expected.fingerprintSeconds = 0;
        expected.useCache = false;
        QCOMPARE(optionsOf("[files]\nminBytes=-1\nextensions=ogg\n"
                           "[perf]\ndecoderThreads=-4\nfingerprintSeconds=0\nuseCache=0"),
                 expected);
        const SettingsStore store;
        QVERIFY(store.showPlayer() && store.linkDecks() && store.checkForUpdatesOnStartup());
        QVERIFY(store.folders().isEmpty() && store.quarantineRoot().endsWith("/Echoprune Quarantine"_L1));
    }

    void defaultThreads()
    {
        QList<qint32> threads;
        for (const int processors : { 1, 4, 5, 12, 16, 17, 18, 64 })
            threads.append(defaultDecoderThreads(processors));
        QCOMPARE(threads, (QList<qint32> { 2, 2, 2, 6, 8, 8, 8, 8 }));
    }

private:
    std::optional<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
