// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mediabackend.h"
#include "rows.h"
#include "temporarylibrary.h"
#include "waveformloader.h"

#include <QAudioBuffer>
#include <QPointer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <cmath>
#include <limits>
#include <random>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

template <typename Sample> QAudioBuffer bufferOf(int rate, int channels, const QList<Sample> &samples)
{
    QAudioFormat format;
    format.setSampleRate(rate);
    format.setChannelCount(channels);
    format.setSampleFormat(std::is_same_v<Sample, float>        ? QAudioFormat::Float
                               : std::is_same_v<Sample, quint8> ? QAudioFormat::UInt8
                               : std::is_same_v<Sample, qint16> ? QAudioFormat::Int16
                                                                : QAudioFormat::Int32);
    const auto bytes = qsizetype(sizeof(Sample)) * samples.size();
    return QAudioBuffer(QByteArray(reinterpret_cast<const char *>(samples.constData()), bytes), format);
}

bool isClose(const QList<float> &list, const QList<float> &wanted)
{
    return std::equal(list.begin(), list.end(), wanted.begin(), wanted.end(),
                      [](float a, float b) { return std::abs(a - b) < 1e-6F; });
}

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr qint16 lowest16 = -32768;
constexpr qint32 lowest32 = std::numeric_limits<qint32>::min();

struct Spied {
    explicit Spied(int watchdogMs = 60000)
        : loader(nullptr, watchdogMs)
    {
    }
    qsizetype reports() const { return loaded.size() + failed.size(); }

    WaveformLoader loader;
    QSignalSpy loaded { &loader, &WaveformLoader::loaded };
    QSignalSpy failed { &loader, &WaveformLoader::failed };
};

} // namespace

class TestWaveform : public QObject {
    Q_OBJECT

public:
    static void initMain() { preferFfmpegMediaBackend(); }

private Q_SLOTS:
    void peaks_data()
    {
        const test::Rows<QAudioBuffer, QList<float>, QList<float>> row("buffer", "left", "right");
        // At 50 Hz a bucket has two frames.
        row("8 bits", bufferOf<quint8>(50, 1, { 128, 0, 192, 128, 96 }), { 1, 0.5F, 0.25F }, { 1, 0.5F, 0.25F });
        row("16 bits, 2 channels", bufferOf<qint16>(50, 2, { lowest16, 0, 0, 8192, 0, 4096 }), { 1, 0 },
            { 0.25F, 0.125F });
        row("32 bits, and the first two of six channels count",
            bufferOf<qint32>(25, 6, { 1 << 29, lowest32, lowest32, 0, 0, lowest32 }), { 0.25F }, { 1 });
        row("beyond full scale", bufferOf<float>(50, 1, { 0.5F, -1.5F, 0.25F, 0 }), { 1.5F, 0.25F }, { 1.5F, 0.25F });
        row("no numbers", bufferOf<float>(50, 2, { notANumber, 1, 0.5F, notANumber, -infinite, 0, 0, infinite }),
            { 0.5F, 0 }, { 1, 0 });
        row("quiet is raised", bufferOf<float>(25, 2, { 0.49F, 0, 0.1F, -0.2F }), { 0.98F, 0.2F }, { 0, 0.4F });
    }

    void peaks()
    {
        QFETCH(const QAudioBuffer, buffer);
        QFETCH(const QList<float>, left);
        QFETCH(const QList<float>, right);
        EnvelopeBuilder builder;
        builder.add(buffer);
        const Envelope seen = builder.take();
        QVERIFY2(isClose(seen.left, left) && isClose(seen.right, right), qPrintable(QDebug::toString(seen.left)));
        QCOMPARE(seen.peak.size(), left.size());
        for (qsizetype i = 0; i < seen.peak.size(); ++i)
            QCOMPARE(seen.peak.at(i), std::max(seen.left.at(i), seen.right.at(i)));
    }

    void bufferLengthsDoNotMatter()
    {
        std::minstd_rand random(7);
        QList<qint16> samples { 32767, 0 };
        while (samples.size() < 2 * 44100)
            samples << qint16(random());
        EnvelopeBuilder whole;
        whole.add(bufferOf(44100, 2, samples));
        EnvelopeBuilder pieces;
        for (qsizetype at = 0, length = 2; at < samples.size(); at += length, length = 2 * (1 + random() % 4000))
            pieces.add(bufferOf(44100, 2, samples.mid(at, length)));
        const Envelope envelope = whole.take();
        QCOMPARE(envelope.peak.size(), 25);
        QVERIFY(pieces.take() == envelope);
    }

    void loadsFiles()
    {
        test::writeFile(m_dir.filePath(u"broken.mp3"_s),
                        QByteArray("x\1y").repeated(30000)); // not understood in silence
        for (const auto &[path, peaks] : { std::pair(wave(u"sound.wav"_s, 1, 64), QList<float>(25, 0.98F)),
                                           { wave(u"\u9759\u304b.wav"_s, 1, 128), QList<float>(25, 0) },
                                           { m_dir.filePath(u"gone.mp3"_s), QList<float>() },
                                           { wave(u"empty.wav"_s, 0, 0), QList<float>() },
                                           { m_dir.filePath(u"broken.mp3"_s), QList<float>() } }) {
            Spied spied;
            for (const int deck : { 2, -1, 1 }) // the other two are ignored
                spied.loader.request(deck, path);
            QTRY_COMPARE_WITH_TIMEOUT(spied.reports(), 1, 30000);
            const QVariantList signal = spied.failed.value(0, spied.loaded.value(0));
            QCOMPARE(signal.at(0).toInt(), 1);
            QVERIFY2(isClose(signal.at(1).value<Envelope>().peak, peaks), qPrintable(path));
            QCOMPARE(signal.at(1).toString().isEmpty(), !peaks.isEmpty()); // a failure has a text
        }
    }

    void textsAreNotFollowed()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const QByteArray address = "http://127.0.0.1:" + QByteArray::number(server.serverPort());
        test::writeFile(m_dir.filePath(u"manifest.m4a"_s),
                        R"(<MPD profiles="urn:mpeg:dash:profile:isoff-on-demand:2011" type="static"
                        mediaPresentationDuration="PT10S"><Period><AdaptationSet mimeType="audio/mp4">
                        <Representation id="1" bandwidth="64000" codecs="mp4a.40.2"><SegmentList duration="10">
                        <SegmentURL media=")"
                            + address + R"(/1.m4s"/></SegmentList></Representation></AdaptationSet></Period></MPD>)");
        Spied spied;
        spied.loader.request(0, m_dir.filePath(u"manifest.m4a"_s));
        QTRY_COMPARE_WITH_TIMEOUT(spied.failed.size(), 1, 30000);
        QVERIFY(!server.hasPendingConnections());
    }

    // A report may already wait in this thread's queue when the next request is made; the last one counts even so.
    void onlyTheNewestRequestOfADeckReports()
    {
        const QString other = wave(u"other.wav"_s, 2, 0);
        const QString wanted = wave(u"wanted.wav"_s, 3, 0);
        Spied spied;
        for (int row = 0; row < 50; ++row) {
            spied.loader.request(row % 2, row % 3 == 0 ? m_dir.path() : other);
            if (row % 16 == 0)
                QTest::qSleep(200); // which handles no events, so that the reports wait
        }
        spied.loader.request(0, wanted);
        spied.loader.cancel(1);
        QTRY_COMPARE_WITH_TIMEOUT(spied.reports(), 1, 30000);
        spied.loader.request(1, wanted);
        QTRY_COMPARE_WITH_TIMEOUT(spied.reports(), 2, 30000);
        for (const int deck : { 0, 1 })
            QCOMPARE(spied.loaded.value(deck).value(1).value<Envelope>().peak.size(), 75);
    }

    // Of a square wave, and of one that has half its level.
    void measuresLoudness()
    {
        Spied spied;
        for (const int deck : { 0, 1 }) {
            const int swing = 64 >> deck;
            const QByteArray period =
                QByteArray(8, static_cast<char>(128 + swing)) + QByteArray(8, static_cast<char>(128 - swing));
            QByteArray file = test::waveOf('\0', 3);
            const qsizetype samples = 3 * 8000;
            file.replace(file.size() - samples, samples, period.repeated(samples / period.size()));
            test::writeFile(m_dir.filePath(u"square.wav"_s), file);
            spied.loader.request(deck, m_dir.filePath(u"square.wav"_s));
            QTRY_COMPARE(spied.loaded.size(), deck + 1);
        }
        const auto loudness = [&](int deck) { return spied.loaded.at(deck).at(1).value<Envelope>().loudness; };
        QVERIFY2(std::abs(loudness(0) - loudness(1) - 6.02) < 0.15, qPrintable(QString::number(loudness(0))));
    }

    void whoeverWaitsFindsTheFileClosed()
    {
        const QString path = wave(u"hour.wav"_s, 3600, 0);
        for (int row = 0; row < 20; ++row) {
            Spied spied;
            spied.loader.request(0, path);
            if (row > 0)
                QTRY_VERIFY(test::isOpen(path));
            QTest::qSleep(row);
            row % 2 == 0 ? spied.loader.cancel(0) : spied.loader.request(0, m_dir.path());
            QVERIFY(spied.loader.awaitClosed({ path }));
            QVERIFY(!test::isOpen(path));
        }
    }

    // A thread that was joined is gone with its loader; one that was not would have been left behind.
    void isDestroyedInTheMiddle()
    {
        for (const bool isDecoding : { false, true }) {
            auto spied = std::make_unique<Spied>();
            const QPointer<QThread> thread = spied->loader.findChild<QThread *>(u"epr-waveform"_s);
            QVERIFY(thread);
            spied->loader.request(0, m_dir.path());
            spied->loader.request(1, wave(u"hour.wav"_s, 3600, 0));
            QTRY_COMPARE(spied->failed.size(), isDecoding ? 1 : 0); // then the other's turn has come
            spied.reset();
            QVERIFY(!thread);
        }
    }

    void theWatchdogEndsALongDecoding()
    {
        Spied spied(1);
        spied.loader.request(0, wave(u"hour.wav"_s, 3600, 0));
        QTRY_COMPARE_WITH_TIMEOUT(spied.reports(), 1, 30000);
        const QVariant said = spied.failed.value(0, spied.loaded.value(0)).at(1);
        QVERIFY(said.value<Envelope>().peak.size() < EnvelopeBuilder::maxBuckets);
        QVERIFY(spied.failed.isEmpty() || said == u"This file could not be decoded for preview."_s);
    }

private:
    /// 8-bit samples that are all the same.
    QString wave(const QString &name, int seconds, quint8 sample)
    {
        test::writeFile(m_dir.filePath(name), test::waveOf(static_cast<char>(sample), seconds));
        return m_dir.filePath(name);
    }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestWaveform)
#include "tst_waveform.moc"
