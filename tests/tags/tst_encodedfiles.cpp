// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "hashing.h"
#include "probe.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// Files of an independent encoder, five seconds of stereo at 44.1 kHz.
class TestEncodedFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void retaggedCopiesHaveEqualPayloads_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : { u"tone.mp3"_s, u"tone.flac"_s, u"tone.m4a"_s, u"tone.aifc"_s, u"tone.wav"_s })
            QTest::addRow("%s", qPrintable(name)) << name;
    }

    void retaggedCopiesHaveEqualPayloads()
    {
        QFETCH(QString, name);
#ifdef Q_OS_WIN // where the set-up does not bring it
        if (QStandardPaths::findExecutable(u"ffmpeg"_s).isEmpty())
            QSKIP("ffmpeg is not installed");
#endif
        const QTemporaryDir folder;
        const QString tone = folder.filePath(name);
        const QString retagged = folder.filePath(u"retagged-"_s + name);
        const QString encode = u"-v error -f lavfi -i sine=duration=5:sample_rate=44100 -ac 2 -metadata title=One"_s;
        QCOMPARE(QProcess::execute(u"ffmpeg"_s, encode.split(u' ') << tone), 0);
        const QStringList retag { u"-c"_s, u"copy"_s, u"-metadata"_s, u"title=A longer one"_s, retagged };
        QCOMPARE(QProcess::execute(u"ffmpeg"_s, QStringList { u"-v"_s, u"error"_s, u"-i"_s, tone } + retag), 0);
        epr::ProbeResult one;
        epr::ProbeResult two;
        QVERIFY(epr::probeFile(tone, one) && epr::probeFile(retagged, two));
        QCOMPARE(one.title + two.title, u"OneA longer one"_s);
        QCOMPARE(one.channels, 2);
        QVERIFY2(qAbs(one.durationMs - 5000) < 60, qPrintable(QString::number(one.durationMs)));
        QVERIFY(one.audioRangeValid && one.audioLength > 10000);
        QCOMPARE(epr::hashAudioPayload(tone, one.audioOffset, one.audioLength),
                 epr::hashAudioPayload(retagged, two.audioOffset, two.audioLength));
    }
};

QTEST_GUILESS_MAIN(TestEncodedFiles)
#include "tst_encodedfiles.moc"
