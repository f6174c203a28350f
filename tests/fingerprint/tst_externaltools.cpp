// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiofixtures.h"
#include "decoding.h"
#include "externaltool.h"
#include "fpcalcbatch.h"
#include "rows.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr ToolTimeouts patient { 5000, 20000, 2000, 60000 };

/// What a stand-in for fpcalc does with a file goes by the file's name: a number and a word.
const QByteArray oddTool = R"(
say() { echo DURATION=70; echo FINGERPRINT=7,${1%% *}; }
one() {
    case $1 in
    *bad | *none) echo no such codec >&2; exit 2;; *short) echo cut >&2; say "$1"; exit 3;; *quiet) exit 2;;
    *odd) echo DURATION=70; printf FINGERPRINT=1; printf x >&2; echo 2,2; exit;;
    *empty) echo DURATION=70; echo FINGERPRINT=; exit;; *skip) exit;;
    *warns) echo hm >&2;; *flood) exec yes;; *crash) say "$1"; kill -9 $$;;
    *hang) exec sleep 60;; *slow) sleep 0.8;; *late) say "$1"; exec sleep 60;;
    esac
    say "$1"
}
)";

void compareWithAlone(const QString &tool, const QList<FingerprintJob> &jobs, const ToolTimeouts &timeouts)
{
    QHash<int, FpcalcResult> alone;
    QHash<int, FpcalcResult> shared;
    for (const FingerprintJob &job : jobs)
        alone.insert(job.id, runFpcalcTool(tool, job.path, 5, timeouts));
    const std::atomic<bool> leaveOff = false;
    FpcalcBatch(tool, 5, timeouts, leaveOff).run(jobs, [&](int id, const auto &result) { shared.insert(id, result); });
    QCOMPARE(shared, alone);
}

} // namespace

class TestExternalTools : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fpcalcOutputIsParsed_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<FpcalcResult>("result");
        const auto row = [](const char *name, const QByteArray &output, const QList<quint32> &words, qint64 ms) {
            QTest::newRow(name) << output << FpcalcResult { words, ms, {} };
        };
        row("plain", "DURATION=187.53\nFINGERPRINT=1,4294967295,3\n", { 1, 4294967295, 3 }, 187530);
        row("blanks", "DURATION= 2 \r\nFINGERPRINT= 1 ,\t2\r\n", { 1, 2 }, 2000);
        row("no words", "FINGERPRINT=1,x,,4294967296,+3,-3,3.0,0x3,4 4,5", { 1, 5 }, 0);
        row("no number", "DURATION=2\nDURATION=2:31\n", {}, 0);
        row("no keys", "FILE=x\n DURATION=5\nfingerprint=1\nFINGERPRINT 2\n", {}, 0);
    }

    void fpcalcOutputIsParsed()
    {
        QFETCH(const QByteArray, output);
        QTEST(parseFpcalcOutput(output), "result");
    }

    void argumentsArriveUnchanged()
    {
        // The arguments come back as the error text, each one after a bar.
        const QString tool = standIn("printf '|%s' \"$@\" >&2; exit 1");
        for (const QString &path : { u"-\"b\" 'c' \\d/ e .mp3"_s, u"/日本/😀$(id) `id` *;&|>%PATH%\n.mp3"_s }) {
            QCOMPARE(runFpcalcTool(tool, path, 60, patient).error, u"|-raw|-length|60|"_s + path);
            const QString all = decodeWithFfmpegTool(tool, { path, 11025, 60 }, patient).error().text;
            QVERIFY(all.startsWith("|-nostdin|-loglevel|error|-protocol_whitelist|file,pipe|-format_whitelist|"_L1));
            QVERIFY(all.endsWith(u"|-i|"_s + path + u"|-t|60|-ac|1|-ar|11025|-f|f32le|-"_s));
        }
        QCOMPARE(runFpcalcTool(tool, u"a"_s, 0, patient).error, u"|-raw|-length|1|a"_s);
    }

    // A text that names another file, which ffmpeg would decode by itself.
    void filesCannotReferToOthers()
    {
        QVERIFY(makeAudioFile(m_dir.filePath(u"other.wav"_s), 2));
        test::writeFile(m_dir.filePath(u"list.mp3"_s), "ffconcat version 1.0\nfile other.wav\n");
        const auto decode = [this](const QString &name) {
            return decodeWithFfmpegTool(u"ffmpeg"_s, { m_dir.filePath(name), 8000, 1 }, patient);
        };
        QVERIFY(decode(u"other.wav"_s).has_value());
        QVERIFY(!decode(u"list.mp3"_s).has_value());
    }

    void failuresAreReported_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("error");
        QTest::newRow("no tool") << QByteArray() << u"could not start TOOL"_s;
        QTest::newRow("its own words") << "echo ' no such codec ' >&2; exit 1"_ba << u"no such codec"_s;
        QTest::newRow("killed") << "kill -9 $$"_ba << u"TOOL failed (exit 9)"_s;
        QTest::newRow("hangs") << "echo FINGERPRINT=1; exec sleep 60"_ba << u"TOOL timed out"_s;
        QTest::newRow("hangs with a child")
            << "trap '' TERM; sleep 60 & echo $! >>PIDS; wait"_ba << u"TOOL timed out"_s;
        QTest::newRow("leaves a child") << "sleep 60 & echo $! >>PIDS; exit 5"_ba << u"TOOL failed (exit 5)"_s;
        QTest::newRow("drips") << "while :; do printf 1; sleep 0.1; done"_ba << u"TOOL timed out"_s;
        QTest::newRow("floods") << "yes"_ba << u"TOOL printed too much"_s;
        QTest::newRow("complains without end") << "yes >&2"_ba << u"TOOL timed out"_s;
    }

    // Each tool notes its number and its children's, none of which may be at work afterwards.
    void failuresAreReported()
    {
        QFETCH(QByteArray, script);
        QFETCH(const QString, error);
        const QString pids = m_dir.filePath(u"pids"_s);
        QFile::remove(pids);
        const QString tool = script.isEmpty()
            ? m_dir.filePath(u"gone"_s)
            : standIn("echo $$ >>PIDS; " + script.replace("PIDS", QFile::encodeName(pids)));
        const bool hangs = error.endsWith("timed out"_L1);
        const ToolTimeouts timeouts { 5000, hangs ? 400 : 20000, 30000, hangs ? 800 : 60000 };
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(runFpcalcTool(tool, u"a"_s, 60, timeouts),
                 (FpcalcResult { {}, 0, QString(error).replace(u"TOOL"_s, u"fpcalc"_s) }));
        const auto audio = decodeWithFfmpegTool(tool, { u"a"_s, 11025, 60 }, timeouts);
        QVERIFY(!audio);
        QCOMPARE(audio.error().text, QString(error).replace(u"TOOL"_s, u"ffmpeg"_s));
        QCOMPARE(audio.error().hasRefused, !script.isEmpty() && !hangs);
        QVERIFY(clock.elapsed() < 30000); // or a hanging tool was waited for, not killed
        for (const QByteArray &pid : test::readFile(pids).split('\n')) {
            const QString commandLine = u"/proc/%1/cmdline"_s.arg(QString::fromLatin1(pid)); // empty for the dead
            QTRY_VERIFY2(pid.isEmpty() || test::readFile(commandLine).isEmpty(), pid.constData());
        }
    }

    void memoryIsLimited()
    {
        const QString limit = runFpcalcTool(standIn("ulimit -d >&2; exit 1"), u"a"_s, 60, patient).error; // in KiB
        QVERIFY2(limit.toInt() > 512 * 1024, qUtf8Printable(limit));
    }

    void usableOutputIsTaken()
    {
        const auto fpcalc = [this](const QByteArray &script) {
            return runFpcalcTool(standIn(script), u"a"_s, 60, patient);
        };
        QCOMPARE(fpcalc("echo hm >&2; echo FINGERPRINT=5; echo DURATION=1"), (FpcalcResult { { 5 }, 1000, {} }));
        const QByteArray needsSamples =
            "[ $3 -ge 45 ]; STATUS=$((3 * (1 - $?))); echo DURATION=45; echo FINGERPRINT=$3; ";
        QCOMPARE(fpcalc(needsSamples + "exit $STATUS"), (FpcalcResult { { 44 }, 45000, {} }));
        QCOMPARE(fpcalc(needsSamples + "exit 3"), (FpcalcResult { {}, 0, u"fpcalc failed (exit 3)"_s }));
        QCOMPARE(fpcalc("echo DURATION=4"), (FpcalcResult { {}, 4000, u"fpcalc produced no fingerprint"_s }));
        const auto ffmpeg = [&](const char *script) {
            return decodeWithFfmpegTool(standIn(script), { u"a"_s, 11025, 60 }, patient);
        };
        QCOMPARE(ffmpeg("echo hm >&2; printf '\\0\\0\\200\\077abc'").value(), QList<float>({ 1.0F }));
        QCOMPARE(ffmpeg("printf 123").error().text, u"ffmpeg produced no audio"_s);
    }

    void onlyAPauseIsAHangForFfmpeg()
    {
        const QString tool = standIn("for i in 1 2 3 4 5 6 7 8 9 10; do printf 'FING'; sleep 0.2; done");
        const ToolTimeouts timeouts { 5000, 1200, 2000, 60000 };
        QCOMPARE(decodeWithFfmpegTool(tool, { u"a"_s, 8000, 60 }, timeouts).value().size(), 10);
        QCOMPARE(runFpcalcTool(tool, u"a"_s, 60, timeouts).error, u"fpcalc timed out"_s);
    }

    // "more" is how many processes more than one for each run may be begun.
    void sharedProcessesSayTheSame_data()
    {
        const QByteArray all = "shift 3; for f; do (one \"$f\") || { s=$?; ON_ERROR; }; done; exit $s";
        const auto tool = [&](const QByteArray &onError) { return QByteArray(all).replace("ON_ERROR", onError); };
        const QByteArray stops = tool("break");
        const test::Rows<QByteArray, QString, int> row("tool", "files", "more");
        row("stops", stops, u"good good good good bad good good good good short good good good good"_s, -1);
        row("at the ends", stops, u"bad good good good good good good good crash"_s, -1);
        row("odd", stops, u"good odd good good empty good flood good warns good good"_s, 9);
        row("passes over one", stops, u"good good skip good good good"_s, 2);
        row("hangs", stops, u"slow slow slow hang good late good hang"_s, 2);
        row("one after the other", stops, u"bad short bad short bad short bad short bad short"_s, 4);
        row("goes on", tool("true"), u"good good quiet good good good bad good good short good good"_s, 1);
        row("later", tool("[ \"$f\" = \"${f%none}\" ] || break"), u"good good bad good good short good good"_s, 9);
        row("names files", tool("break").replace("(one", "(echo FILE=$f; one"), u"good good good bad"_s, 3);
        row("says it twice", tool("break").replace("(one", "(say \"$f\"; one"), u"good good good bad"_s, 1);
    }

    void sharedProcessesSayTheSame()
    {
        QFETCH(const QByteArray, tool);
        QFETCH(const QString, files);
        QFETCH(const int, more);
        const QString log = m_dir.filePath(u"log"_s);
        QFile::remove(log);
        QList<FingerprintJob> jobs;
        for (int id = 0; const QString &kind : files.split(u' '))
            jobs.append({ id, u"%1 %2"_s.arg(id++).arg(kind), kind == "skip"_L1 ? 80000 : 70900 });
        compareWithAlone(standIn("echo >>'" + QFile::encodeName(log) + "'\n" + oddTool + tool), jobs,
                         { 5000, files.contains("hang"_L1) ? 2000 : 20000, 2000, 60000 });
        QVERIFY(QFile(log).size() <= 2 * jobs.size() + more);
    }

    void sharingChangesNothingForRealFiles()
    {
        const QString tool = findFpcalc();
        if (tool.isEmpty())
            QSKIP("fpcalc is not installed");
        QList<FingerprintJob> jobs;
        for (int id = 0; id < 16; ++id) {
            const int seconds = id % 5 == 3 ? 3 : 7;
            jobs.append(
                { id, m_dir.filePath(QString::number(id) + u".mp3.wav.ogg"_s.mid(id % 3 * 4, 4)), seconds * 1000 });
            QVERIFY(makeAudioFile(jobs.last().path, seconds, u"-ac %1"_s.arg(1 + id % 2), 16000 + 2000 * id));
            if (id % 7 == 4)
                test::writeFile(jobs.last().path, test::readFile(jobs.last().path).first(9000));
        }
        compareWithAlone(tool, jobs, patient);
    }

private:
    QString standIn(const QByteArray &body) { return makeStandIn(m_dir.filePath(u"stand in"_s), body); }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestExternalTools)
#include "tst_externaltools.moc"
