// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiobuilder.h"
#include "compareplayer.h"
#include "comparisontext.h"
#include "docks.h"
#include "mediabackend.h"
#include "temporarylibrary.h"

#include <QApplication>
#include <QAudioDevice>
#include <QMainWindow>
#include <QMediaDevices>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

/// A sound server of this process alone, whose one device swallows what it is sent. Where there is none to be had,
/// nothing happens.
struct SilentSoundServer {
    SilentSoundServer()
    {
        for (const char *variable : { "XDG_RUNTIME_DIR", "HOME", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH" })
            qputenv(variable, QFile::encodeName(dir.path()));
        qunsetenv("PULSE_SERVER");
        server.start(u"pulseaudio"_s,
                     test::words("-n --daemonize=no --exit-idle-time=-1 -L module-null-sink "
                                 "-L module-native-protocol-unix"));
        if (server.waitForStarted())
            std::ignore = QTest::qWaitFor([this] { return QFile::exists(dir.filePath(u"native"_s)); }, 10000);
    }

    ~SilentSoundServer()
    {
        server.terminate();
        server.waitForFinished();
    }

    QTemporaryDir dir;
    QProcess server;
};

/// 16 bits at 44.1 kHz: players tell their position in steps of the file's packets, which must be short.
QByteArray stereoWave(int seconds)
{
    const QByteArray format = test::little<quint16>(2) + test::little<quint32>(44100) + test::little<quint32>(176400)
        + test::little<quint16>(4) + test::little<quint16>(16);
    return test::waveOf('d', 441 * seconds / 20).replace(22, format.size(), format);
}

} // namespace

class TestPlayback : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(u"pulseaudio"_s).isEmpty())
            QSKIP("pulseaudio is not installed");
        QTRY_VERIFY_WITH_TIMEOUT(!QMediaDevices::defaultAudioOutput().isNull(), 20000);
        for (const Deck deck : bothDecks) {
            m_tracks[deck].path = m_dir.filePath(comparisontext::deckName(deck) + u" \u9759.wav"_s);
            test::writeFile(m_tracks[deck].path, stereoWave(deck == Deck::A ? 60 : 40));
        }
    }

    void init()
    {
        m_player.emplace();
        for (const Deck deck : bothDecks)
            m_player->load(deck, m_tracks[deck]);
        QTRY_VERIFY(a().duration() == 60000 && b().duration() == 40000);
    }

    void cleanup() { m_player.reset(); }

    // The promise is 140 ms, kept by a look once a second. So single looks may find the decks further apart.
    void linkedDecksStayTogether()
    {
        m_player->setLinked(true);
        m_player->playPause();
        QTRY_VERIFY_WITH_TIMEOUT(a().position() > 0 && b().position() > 0, 10000);
        QList<qint64> drifts;
        while (drifts.size() < 400) {
            QTest::qWait(25);
            drifts << std::abs(a().position() - b().position());
        }
        std::sort(drifts.begin(), drifts.end());
        QVERIFY2(drifts.at(200) <= ComparePlayer::maxDriftMs, qPrintable(QDebug::toString(drifts)));
        QVERIFY(a().isPlaying() && b().isPlaying() && a().position() > 1000);
    }

    // Qt's player would follow what it names, over the network too.
    void aManifestIsNotPlayed()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const QByteArray address = "http://127.0.0.1:" + QByteArray::number(server.serverPort());
        TrackInfo manifest;
        manifest.path = m_dir.filePath(u"manifest.mp3"_s);
        test::writeFile(manifest.path,
                        "<MPD type='static' mediaPresentationDuration='PT10S'><Period>"
                        "<AdaptationSet mimeType='audio/mp4'><Representation id='1' bandwidth='64000'>"
                        "<SegmentList duration='10'><SegmentURL media='"
                            + address + "/1.m4s'/></SegmentList></Representation></AdaptationSet></Period></MPD>");
        const QSignalSpy problems(&b(), &DeckPlayback::problem);
        m_player->load(Deck::B, manifest);
        m_player->playPause();
        QVERIFY(!server.waitForNewConnection(1000));
        QTRY_VERIFY(b().hasFailed() && a().isPlaying());
        QCOMPARE(problems.value(0).value(0).toString(), u"This file is a text, not audio."_s);
    }

    // A player that cannot be seen cannot be silenced; one in a window of its own can.
    void hiddenItPausesAndFloatingItPlaysOn()
    {
        QMainWindow window;
        PlayerDock dock(&window);
        window.addDockWidget(Qt::BottomDockWidgetArea, &dock);
        window.show();
        dock.load(Deck::A, m_tracks[Deck::A]);
        const DeckPlayback &deck = dock.player()->playback(Deck::A);
        QTRY_COMPARE(deck.duration(), 60000);
        dock.player()->playPause();
        QTRY_VERIFY_WITH_TIMEOUT(deck.position() > 0, 10000);
        dock.setFloating(true);
        const qint64 here = deck.position();
        QTRY_VERIFY_WITH_TIMEOUT(deck.position() > here + 500, 10000);
        QVERIFY(deck.isPlaying());
        dock.hide();
        QTRY_VERIFY(!deck.isPlaying());
    }

private:
    const DeckPlayback &a() const { return m_player->playback(Deck::A); }
    const DeckPlayback &b() const { return m_player->playback(Deck::B); }

    QTemporaryDir m_dir;
    PerDeck<TrackInfo> m_tracks;
    std::optional<ComparePlayer> m_player;
};

int main(int argc, char **argv)
{
    preferFfmpegMediaBackend();
    const SilentSoundServer server;
    const QApplication application(argc, argv);
    TestPlayback test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_playback.moc"
