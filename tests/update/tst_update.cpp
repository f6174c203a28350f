// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "updatechecker.h"
#include "updatedialog.h"

#include "loopbackserver.h"
#include "rows.h"
#include "temporarylibrary.h"

#include <QDesktopServices>
#include <QNetworkReply>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

/// A checker and what it said, one line for each signal.
struct Checker {
    explicit Checker(const QString &address)
    {
        checker.setUrl(address);
        const auto note = [this](const QString &text, bool silent) { said << (silent ? u"silent "_s + text : text); };
        QObject::connect(&checker, &UpdateChecker::upToDate, [note](bool silent) { note(u"up to date"_s, silent); });
        QObject::connect(&checker, &UpdateChecker::checkFailed, note);
        QObject::connect(&checker, &UpdateChecker::updateAvailable, [this, note](const auto &found, bool silent) {
            release = found;
            note(found.version, silent);
        });
    }

    UpdateChecker checker;
    UpdateChecker::Release release;
    QStringList said;
};

} // namespace

class TestUpdate : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void openUrl(const QUrl &url) { m_opened << url.toString(); }

private Q_SLOTS:
    void initTestCase() { metadata::applyToApplication(); }

    void init()
    {
        QSettings().clear();
        m_opened.clear();
    }

    void versionsCompareAsNumbers_data()
    {
        QTest::addColumn<int>("order");
        for (const char *equal : { "1.0.0 1", "1..1 1.0.1", "1.x.-5 1.0", "1.007-beta3 1.7" })
            QTest::newRow(equal) << 0;
        for (const char *newer : { "1.10 1.9", "1.10.0 1.2.9", "99999999999999999999 89999999999999999999",
                                   "100000000000000000000 99999999999999999999" })
            QTest::newRow(newer) << 1;
    }

    void versionsCompareAsNumbers()
    {
        const QStringList versions = words(QTest::currentDataTag());
        const auto order = [](int value) { return (value > 0) - (value < 0); };
        QTEST(order(compareVersions(versions.at(0), versions.at(1))), "order");
        QTEST(-order(compareVersions(versions.at(1), versions.at(0))), "order");
    }

    void answerBecomesOneSignal_data()
    {
        constexpr qsizetype longest = 1 << 20;
        const QByteArray newer = R"({"latest_version":"1.1"})";
        const QByteArray skipped = R"({"latest_version":"7.0"})";
        const QString unreadable = u"The update service returned an unreadable response."_s;
        const auto ok = [](const QByteArray &body) { return http("200 OK", body); };
        const Rows<QByteArray, bool, QString> row("answer", "silent", "said");
        row("newer", ok(newer), false, u"1.1"_s);
        row("equal", ok(R"({"latest_version":" 1.0 "})"), false, u"up to date"_s);
        row("older, silent", ok(R"({"latest_version":"0.9.9"})"), true, u"silent up to date"_s);
        row("skipped, silent", ok(skipped), true, u"silent up to date"_s);
        row("skipped, explicit", ok(skipped), false, u"7.0"_s);
        row("critical, silent", ok(R"({"latest_version":"7.0","critical":true})"), true, u"silent 7.0"_s);
        row("not found", http("404 Not Found", newer), false, u"The update service returned HTTP 404."_s);
        row("no answer", {}, false, u"Operation canceled"_s);
        row("not JSON", ok("<html></html>"), true, u"silent "_s + unreadable);
        row("an array", ok("[" + newer + "]"), false, unreadable);
        row("no version", ok(R"({"notes":"7.0"})"), false, u"The update service did not report a version."_s);
        row("as long as allowed", ok(newer.leftJustified(longest)), false, u"1.1"_s);
        row("too long", ok(newer.leftJustified(longest + 1)), true, u"silent "_s + unreadable);
    }

    void answerBecomesOneSignal()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, silent);
        QFETCH(QString, said);
        LoopbackServer server(answer);
        UpdateSettings().setSkippedVersion(u"7.0"_s);
        Checker watched(server.address());
        watched.checker.setTimeLimit(std::chrono::milliseconds(answer.isEmpty() ? 200 : 15000));
        watched.checker.check(silent);
        QTRY_VERIFY(!watched.said.isEmpty());
        QTRY_VERIFY(watched.checker.findChildren<QNetworkReply *>().isEmpty()); // nothing can give a second signal
        QCOMPARE(watched.said, QStringList { said });
        QCOMPARE(server.requests.size(), 1);
        QCOMPARE(watched.checker.isDue(), answer.isEmpty() || said.contains(u"service returned"_s));
    }

    void buttonsDoWhatTheySay_data()
    {
        const QString web = u"https://d.example/get?a=1&b=2"_s;
        const Rows<QString, char, QStringList, QString> row("downloadUrl", "key", "opened", "skipped");
        row("download", web, '\r', QStringList { web }, QString());
        row("a file for an address", u"file://server/setup.exe"_s, '\r', QStringList(), QString());
        row("skip", web, 's', QStringList(), u"1.4.0"_s);
    }

    void buttonsDoWhatTheySay()
    {
        QFETCH(QString, downloadUrl);
        QFETCH(char, key);
        QDesktopServices::setUrlHandler(u"https"_s, this, "openUrl");
        QDesktopServices::setUrlHandler(u"file"_s, this, "openUrl");
        UpdateChecker::Release release;
        release.version = u"1.4.0"_s;
        release.downloadUrl = downloadUrl;
        UpdateDialog dialog(release);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QTest::keyClick(dialog.windowHandle(), key, key == '\r' ? Qt::NoModifier : Qt::AltModifier);
        QTRY_VERIFY(!dialog.isVisible());
        QTEST(m_opened, "opened");
        QTEST(UpdateSettings().skippedVersion(), "skipped");
        QDesktopServices::unsetUrlHandler(u"https"_s);
        QDesktopServices::unsetUrlHandler(u"file"_s);
    }

private:
    TemporaryHome m_dir;
    QStringList m_opened;
};

QTEST_MAIN(TestUpdate)

#include "tst_update.moc"
