// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "clirequest.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

struct Outcome {
    int status = -1;
    QString out;
    QString err;
};

/// A file that passes the size filter; its content is no audio, so it counts as damaged but is hashed all the same.
QByteArray content(char fill)
{
    return QByteArray(40000, fill);
}

} // namespace

class TestCli : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void switchesOverrideTheSavedSettings_data();
    void switchesOverrideTheSavedSettings();
    void badUsageIsRefused_data();
    void badUsageIsRefused();
    void foldersBecomeAbsoluteAndUnique();
    void exitStatusTellsTheResult_data();
    void exitStatusTellsTheResult();
    void damagedFileIsNamedOnStandardError();
    void controlCharactersInNamesAreEscaped();
    void interruptStopsCleanly();

private:
    void prepare(QProcess &process, const QStringList &arguments) const;
    Outcome run(const QStringList &arguments) const;
    void addFile(const QString &name, char fill) const;
    QString library() const { return m_dir->filePath(u"library"_s); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestCli::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(library()));
}

void TestCli::prepare(QProcess &process, const QStringList &arguments) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_CONFIG_HOME"_s, m_dir->filePath(u"config"_s));
    environment.insert(u"XDG_DATA_HOME"_s, m_dir->filePath(u"data"_s));
    process.setProcessEnvironment(environment);
    process.setProgram(QStringLiteral(EPR_SCAN_PROGRAM));
    process.setArguments(arguments);
}

Outcome TestCli::run(const QStringList &arguments) const
{
    QProcess process;
    prepare(process, arguments);
    process.start();
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
             QString::fromUtf8(process.readAllStandardError()) };
}

void TestCli::addFile(const QString &name, char fill) const
{
    QFile file(library() + u'/' + name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content(fill)), 40000);
}

void TestCli::switchesOverrideTheSavedSettings_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QList<bool>>("expected"); // identical, same audio, acoustic, metadata, cache
    QTest::newRow("nothing given") << QStringList {} << QList<bool> { false, true, true, false, true };
    QTest::newRow("on and off") << QStringList { u"--identical"_s, u"--no-same-audio"_s, u"--no-acoustic"_s }
                                << QList<bool> { true, false, false, false, true };
    QTest::newRow("metadata, no cache") << QStringList { u"--metadata"_s, u"--no-cache"_s }
                                        << QList<bool> { false, true, true, true, false };
}

void TestCli::switchesOverrideTheSavedSettings()
{
    QFETCH(QStringList, arguments);
    ScanOptions saved;
    saved.detectIdentical = false;
    const CliRequest request = parseCommandLine(QStringList { u"echoprune-scan"_s } + arguments << library(), saved);
    QCOMPARE(request.text, QString());
    const ScanOptions &o = request.options;
    QTEST((QList<bool> { o.detectIdentical, o.detectSameAudio, o.detectAcoustic, o.detectMetadata, o.useCache }),
          "expected");
}

void TestCli::badUsageIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("no folder") << QStringList {} << u"No folder given"_s;
    QTest::newRow("unknown option") << QStringList { u"--frobnicate"_s, u"."_s } << u"frobnicate"_s;
    QTest::newRow("missing folder") << QStringList { u"."_s, u"no/such/folder"_s } << u"Not a folder: no"_s;
    QTest::newRow("a file for a folder") << QStringList { QStringLiteral(EPR_SCAN_PROGRAM) } << u"Not a folder"_s;
    QTest::newRow("on and off at once") << QStringList { u"--metadata"_s, u"--no-metadata"_s, u"."_s }
                                        << u"contradict"_s;
    QTest::newRow("every method off") << QStringList { u"--no-identical"_s, u"--no-same-audio"_s, u"--no-acoustic"_s,
                                                       u"--no-metadata"_s, u"."_s }
                                      << u"switched off"_s;
}

void TestCli::badUsageIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.out, QString());
    QVERIFY2(outcome.err.contains(message), qPrintable(outcome.err));
}

void TestCli::foldersBecomeAbsoluteAndUnique()
{
    const QString here = QDir::currentPath();
    const QStringList arguments { u"echoprune-scan"_s, u"."_s, library(), here, library() + u"/../library/"_s };
    QCOMPARE(parseCommandLine(arguments, {}).options.roots, (QStringList { here, library() }));
}

void TestCli::exitStatusTellsTheResult_data()
{
    QTest::addColumn<QStringList>("files"); // the first letter is the content
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty folder") << QStringList {} << 0 << u"no duplicates found"_s;
    QTest::newRow("all different") << QStringList { u"a.mp3"_s, u"b.mp3"_s } << 0 << u"no duplicates found"_s;
    QTest::newRow("a copy") << QStringList { u"a.mp3"_s, u"a, копия.mp3"_s, u"b.mp3"_s } << 1 << u"a, копия.mp3"_s;
}

void TestCli::exitStatusTellsTheResult()
{
    QFETCH(QStringList, files);
    QFETCH(QString, text);
    for (const QString &name : files)
        addFile(name, name.at(0).toLatin1());
    const Outcome outcome = run({ u"--no-acoustic"_s, library() });
    QTEST(outcome.status, "status");
    QVERIFY2(outcome.out.contains(text), qPrintable(outcome.out));
    QCOMPARE(QDir(library()).entryList(QDir::Files).size(), files.size());
}

void TestCli::damagedFileIsNamedOnStandardError()
{
    addFile(u"broken.flac"_s, 'x');
    const Outcome outcome = run({ u"--no-acoustic"_s, library() });
    QCOMPARE(outcome.status, 0);
    QVERIFY2(outcome.err.contains(u"broken.flac: Unrecognised or damaged FLAC container"_s), qPrintable(outcome.err));
}

void TestCli::controlCharactersInNamesAreEscaped()
{
#ifdef Q_OS_WIN
    QSKIP("Windows allows no control characters in file names");
#endif
    addFile(u"a\u001b[2J.mp3"_s, 'a');
    addFile(u"a\nKEEP.mp3"_s, 'a');
    const Outcome outcome = run({ u"--no-acoustic"_s, library() });
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.out.contains(u"a\\x1b[2J.mp3"_s) && outcome.out.contains(u"a\\x0aKEEP.mp3"_s),
             qPrintable(outcome.out));
}

void TestCli::interruptStopsCleanly()
{
#ifdef Q_OS_UNIX
    // Big sparse files keep the hashing stage busy for long enough to be interrupted in it.
    for (int i = 0; i < 4; ++i) {
        QFile file(library() + u"/big%1.mp3"_s.arg(i));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.resize(4LL << 30));
    }
    QProcess process;
    prepare(process, { u"--verbose"_s, u"--no-acoustic"_s, library() });
    process.start();
    process.setReadChannel(QProcess::StandardError);
    QByteArray log;
    while (!log.contains("Discovered")) {
        QVERIFY2(process.waitForReadyRead(30000), log.constData());
        log += process.readAll();
    }
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 2);
    QVERIFY(process.readAllStandardOutput().isEmpty());
#else
    QSKIP("needs a way to send Ctrl-C to one process");
#endif
}

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
