// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "clirequest.h"
#include "setasidestore.h"

#include "hole.h"
#include "rows.h"
#include "temporarylibrary.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTest>

#ifdef Q_OS_UNIX
#include "deepfolder.h"

#include <csignal>
#endif

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

class TestCli : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        QVERIFY(QDir().mkpath(library()));
    }

    void switchesOverrideTheSavedSettings()
    {
        const auto optionsOf = [this](const QByteArray &switches) {
            ScanOptions saved;
            saved.detectIdentical = false;
            const QStringList line = words("echoprune-scan " + switches) << library();
            const ScanOptions o = parseCommandLine(line, saved).options;
            return QList<bool> { o.detectIdentical, o.detectSameAudio,     o.detectAcoustic,    o.detectMetadata,
                                 o.useCache,        !o.onlyPossibleCopies, o.compareThoroughly, o.checkWhole };
        };
        QCOMPARE(optionsOf(""), (QList<bool> { false, true, true, false, true, false, false, false }));
        QCOMPARE(optionsOf("--identical --no-same-audio --no-acoustic"),
                 (QList<bool> { true, false, false, false, true, false, false, false }));
        QCOMPARE(optionsOf("--metadata --no-cache --hash-all --thorough --check-whole"),
                 (QList<bool> { false, true, true, true, false, true, true, true }));
        const QStringList marked = words("echoprune-scan --report o.csv --report o.html") << library();
        for (const bool on : { true, false }) {
            const QStringList off = on ? QStringList() : QStringList(u"--no-csv-bom"_s);
            const QList<ReportFile> reports = parseCommandLine(marked + off, {}, true).reports;
            QCOMPARE(reports.value(0).format, on ? ReportFormat::CsvWithMark : ReportFormat::Csv);
            QCOMPARE(reports.value(1).format, ReportFormat::Html);
        }
    }

    // The files are in the folder "library"; the first letter of a name is the content. It is no audio, so that a file
    // counts as damaged, but it passes the size filter and is hashed all the same.
    void programTells_data()
    {
        // The text is on standard output, or on standard error where status or files are bad.
        const Rows<QByteArray, QByteArray, int, QString> row("files", "arguments", "status", "text");
        row("no folder", "", "", 2, u"No folder given"_s);
        row("unknown option", "", "--frobnicate .", 2, u"frobnicate"_s);
        row("missing folder", "", ". no/such/folder", 2, u"Not a folder: no"_s);
        row("a file for a folder", "a.mp3", "library/a.mp3", 2, u"Not a folder"_s);
        row("on and off at once", "", "--metadata --no-metadata .", 2, u"contradict"_s);
        row("every method off", "", "--no-identical --no-same-audio --no-acoustic --no-metadata .", 2,
            u"switched off"_s);
        row("report of no kind", "", "--verbose --report out.txt library", 2, u"Not a kind of report: \"out.txt\""_s);
        row("report nowhere", "", "--verbose --report no/out.csv library", 2, u"Could not write the report"_s);
        row("all different", "a.mp3 b.mp3", "library", 0, u"no duplicates found"_s);
        row("damaged", "x.flac", "library", 0, u"x.flac: Unrecognised or damaged FLAC container"_s);
        row("a copy", "a.mp3 a,копия.mp3 b.mp3", "library", 1, u"a,копия.mp3"_s);
#ifdef Q_OS_UNIX // which allows these names
        row("control characters", "a\x1b[2J\n\xC2\x85.mp3 a.mp3", "library", 1, u"a\\x1b[2J\\x0a\\x85.mp3"_s);
        row("marks of direction, separators", QByteArray("a\u061C\u200F\u2028\u202E\u2069\u200D.mp3 a.mp3"), "library",
            1, u"a\\u061c\\u200f\\u2028\\u202e\\u2069\u200D.mp3"_s);
#endif
    }

    void programTells()
    {
        QFETCH(const QByteArray, files);
        QFETCH(const QByteArray, arguments);
        QFETCH(const int, status);
        QFETCH(const QString, text);
        for (const QString &name : words(files))
            writeFile(library() + u'/' + name, QByteArray(40000, name.at(0).toLatin1()));
        const QByteArray good = "--no-acoustic --csv-bom --report o.JSON --report o.csv --report o.csv ";
        QProcess program;
        program.setWorkingDirectory(m_home->path());
        program.start(QStringLiteral(EPR_SCAN_PROGRAM), words((status == 2 ? "" : good) + arguments));
        QVERIFY(program.waitForFinished(120000) && program.exitStatus() == QProcess::NormalExit);
        const QString out = QString::fromUtf8(program.readAllStandardOutput());
        const QString err = QString::fromUtf8(program.readAllStandardError());
        QVERIFY2(program.exitCode() == status, qPrintable(out + err));
        QCOMPARE(out.isEmpty(), status == 2);
        QVERIFY(!err.contains("Discovered"_L1)); // refused before anything is scanned
        const QJsonDocument json = QJsonDocument::fromJson(readFile(m_home->filePath(u"o.JSON"_s)));
        QCOMPARE(json["duplicateGroups"_L1].toArray().size(), status % 2);
        QCOMPARE(readFile(m_home->filePath(u"o.csv"_s)).startsWith("\xEF\xBB\xBFGroup,"), status != 2);
        const bool isError = status == 2 || text.contains("damaged"_L1);
        QVERIFY2((isError ? err : out).contains(text), qPrintable(out + err));
        QCOMPARE(QDir(library()).entryList(QDir::Files).size(), words(files).size());
    }

    void groupsThatWereSetAsideAreLeftOut()
    {
        metadata::applyToApplication(); // the program's data is in a folder of its name
        for (const QString &name : words("1.wav 2.wav"))
            writeFile(library() + u'/' + name, waveOf(1));
        const QByteArray digest = QCryptographicHash::hash(QByteArray(6 * 8000, 1), QCryptographicHash::Sha256);
        SetAsideStore store(SetAsideStore::defaultFilePath());
        QVERIFY(store.open() && store.add({ { "audio:"_L1 + QLatin1StringView(digest.toHex()), 2, {} } }));
        for (const auto &[arguments, status] : { std::pair("", 0), { "--include-set-aside", 1 } }) {
            QProcess program;
            program.start(QStringLiteral(EPR_SCAN_PROGRAM), words(arguments) << library());
            QVERIFY(program.waitForFinished(60000));
            QCOMPARE(program.exitCode(), status);
            QCOMPARE(program.readAllStandardOutput().contains("1 group set aside"), status == 0);
        }
    }

#ifdef Q_OS_UNIX // which has a way to send Ctrl-C to one process
    void interruptStopsCleanly()
    {
        // Big sparse files keep the hashing stage busy for long enough to be interrupted in it.
        for (const QString &name : words("library/1.wma library/2.wma library/3.wma library/4.wma"))
            QVERIFY(makeHole(m_home->filePath(name), 4LL << 30));
        const QString report = m_home->filePath(u"report.csv"_s);
        QProcess program;
        program.start(QStringLiteral(EPR_SCAN_PROGRAM),
                      words("--verbose --no-acoustic --report") << report << library());
        program.setReadChannel(QProcess::StandardError);
        QByteArray log;
        while (!log.contains("Discovered")) {
            QVERIFY2(program.waitForReadyRead(30000), log.constData());
            log += program.readAll();
        }
        QCOMPARE(::kill(static_cast<pid_t>(program.processId()), SIGINT), 0);
        QVERIFY(program.waitForFinished(60000) && program.exitStatus() == QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 2);
        QVERIFY(program.readAllStandardOutput().isEmpty() && !QFile::exists(report));
    }

    void unreadableFolderIsNotSuccess()
    {
        const DeepFolder deep(library() + "/deep"_L1);
        writeFile(library() + "/a.mp3"_L1, QByteArray(40000, 'a'));
        QProcess program;
        program.start(QStringLiteral(EPR_SCAN_PROGRAM), words("--no-cache --no-acoustic") << library());
        QVERIFY(program.waitForFinished(60000));
        QCOMPARE(program.exitCode(), 2);
        QCOMPARE(program.readAllStandardOutput(),
                 "Scanned 1 files - no duplicates found. (incomplete: 1 folder could not be read)\n");
        QVERIFY(program.readAllStandardError().endsWith("echoprune-scan: incomplete: 1 folder could not be read\n"));
    }
#endif

private:
    [[nodiscard]] QString library() const
    {
        return m_home->filePath(u"library"_s);
    }

    std::optional<TemporaryHome> m_home;
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
