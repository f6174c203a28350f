// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "progress.h"

#include <QLocale>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class TestTranslation : public QObject {
    Q_OBJECT

    static QByteArray run(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        return process.waitForFinished() ? process.readAllStandardOutput() + process.readAllStandardError()
                                         : QByteArray();
    }

private Q_SLOTS:
    // In a language that nobody has translated yet, so the English catalogue must step in.
    void pluralsAreEnglish()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        epr::translation::install();
        for (const auto &[minutes, words] :
             { std::pair(1, u"about 1 minute left"_s), { 2, u"about 2 minutes left"_s } }) {
            epr::ProgressEstimate estimate;
            estimate.add(0, 20 + minutes * 600, 0);
            estimate.add(20, 20 + minutes * 600, 2000);
            QVERIFY2(estimate.text().endsWith(words), qUtf8Printable(estimate.text()));
        }
    }

    // The whole way of a text: found in the sources, translated, compiled, and asked for under the same context.
    void translatorsWorkReachesTheOperator()
    {
        const QString python = u"" EPR_PYTHON ""_s;
        if (python.isEmpty())
            QSKIP("needs lupdate and Python, where the tests are built");
        const QTemporaryDir folder;
        const QString catalogue = folder.filePath(u"cli.ts"_s);
        const QString compiled = folder.filePath(u"cli.qm"_s);
        run(u"" EPR_LUPDATE ""_s, { u"-source-language"_s, u"en"_s, u"" EPR_SOURCE "/src/cli"_s, u"-ts"_s, catalogue });
        run(python, { u"" EPR_SOURCE "/scripts/pseudo-translate"_s, catalogue, catalogue });
        run(u"" EPR_LRELEASE ""_s, { catalogue, u"-qm"_s, compiled });
        qputenv("ECHOPRUNE_TRANSLATION", compiled.toUtf8());
        const QByteArray help = run(u"" EPR_SCAN_PROGRAM ""_s, { u"--help"_s });
        for (const char *text : { "[Fîñdš dûpļîçåţé", "[Fîñd îdéñţîçåļ", "[Šwîţçh ţhåţ", "[Föļdéř ţö šçåñ" })
            QVERIFY2(help.contains(text), help.constData());
        QVERIFY(run(u"" EPR_SCAN_PROGRAM ""_s, {}).contains("[Ñö föļdéř ğîvéñ"));
    }
};

QTEST_GUILESS_MAIN(TestTranslation)
#include "tst_translation.moc"
