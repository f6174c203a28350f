// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "deckpair.h"
#include "qtdecoder.h"
#include "temporarylibrary.h"

#include <QMediaDevices>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <random>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 maxDriftMs = 140;

/// A sound server of this process alone, whose one device swallows what it is sent.
class SilentSoundServer {
public:
    ~SilentSoundServer()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

    /// False where it cannot be had.
    bool start()
    {
        const QString tool = QStandardPaths::findExecutable(u"pulseaudio"_s);
        for (const char *variable : { "XDG_RUNTIME_DIR", "HOME", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH" })
            qputenv(variable, QFile::encodeName(m_dir.path()));
        qunsetenv("PULSE_SERVER");
        if (tool.isEmpty())
            return false;
        m_server.start(tool,
                       { u"-n"_s, u"--daemonize=no"_s, u"--exit-idle-time=-1"_s, u"-L"_s, u"module-null-sink"_s,
                         u"-L"_s, u"module-native-protocol-unix"_s });
        return QTest::qWaitFor([this] { return QFile::exists(m_dir.filePath(u"native"_s)); }, 10000);
    }

private:
    QTemporaryDir m_dir;
    QProcess m_server;
};

} // namespace

class TestPlayback : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const auto &[deck, seconds] : { std::pair(0, 60), std::pair(1, 58) }) {
            m_tracks[deck].path = m_dir.filePath(u"%1 \u9759.wav"_s.arg(deck));
            test::writeFile(m_tracks[deck].path, test::waveOf(char(100), seconds));
        }
        m_broken.path = m_dir.filePath(u"broken.mp3"_s);
        test::writeFile(m_broken.path, QByteArray(100000, 'x'));
    }

    // What is checked is the whole of the promise: 140 ms, and what the tick of a second may take to restore it. So the
    // decks may be further apart in single looks, but not in all those of more than two seconds.
    void linkedDecksStayTogether()
    {
        DeckPair pair;
        loadBoth(pair);
        pair.setLinked(true);
        pair.playPause();
        QTRY_VERIFY_WITH_TIMEOUT(pair.position(0) > 0 && pair.position(1) > 0, 10000);
        qint64 worst = 0;
        int apart = 0;
        QElapsedTimer time;
        time.start();
        while (time.elapsed() < 30000) {
            QTest::qWait(100);
            const qint64 drift = std::abs(pair.position(0) - pair.position(1));
            worst = std::max(worst, drift);
            apart = drift > maxDriftMs ? apart + 1 : 0;
            QVERIFY2(apart <= 25, qPrintable(u"%1 ms apart"_s.arg(drift)));
        }
        QVERIFY(pair.isPlaying(0) && pair.isPlaying(1));
        QVERIFY(pair.position(0) > 1000);
        qInfo("worst %lld ms", static_cast<long long>(worst));
    }

    void survivesSeeksAndSwaps()
    {
        DeckPair pair;
        loadBoth(pair);
        std::minstd_rand random(11);
        pair.playPause();
        for (int step = 0; step < 200; ++step) {
            switch (random() % 8) {
            case 0: pair.swapMonitor(); break;
            case 1: pair.setLinked(!pair.isLinked()); break;
            case 2: pair.playPause(); break;
            case 3: pair.load(1, pair.track(1)); break;
            default: pair.seek(int(random() % 2), random() % 70000); break;
            }
            QTest::qWait(int(random() % 40));
        }
        pair.stop();
        pair.setLinked(true);
        QVERIFY(!pair.anyPlaying());
        pair.playPause();
        QTRY_VERIFY_WITH_TIMEOUT(pair.position(0) > 200 && pair.position(1) > 200, 10000);
    }

private:
    void loadBoth(DeckPair &pair)
    {
        for (const int deck : { 0, 1 })
            pair.load(deck, m_tracks[deck]);
        QTRY_VERIFY(pair.duration(0) == 60000 && pair.duration(1) == 58000);
    }

    QTemporaryDir m_dir;
    TrackInfo m_tracks[2];
    TrackInfo m_broken;
};

int main(int argc, char **argv)
{
    preferFfmpegMediaBackend();
    SilentSoundServer server;
    server.start();
    const QCoreApplication application(argc, argv);
    TestPlayback test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_playback.moc"
