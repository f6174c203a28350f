// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "metadata.h"
#include "updatechecker.h"
#include "updatedialog.h"
#include "versioncompare.h"

#include <QDesktopServices>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

QByteArray http(const QByteArray &status, const QByteArray &body, const QByteArray &header = "Connection: close")
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + header
        + "\r\n\r\n" + body;
}

/// A web server on the loopback interface that gives every request the same answer, word for word, and never hangs up.
class LoopbackServer final {
public:
    explicit LoopbackServer(const QByteArray &answer, std::unique_ptr<QTcpServer> server = nullptr)
        : m_server(server ? std::move(server) : std::make_unique<QTcpServer>())
        , m_answer(answer)
    {
        QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] {
            QTcpSocket *socket = m_server->nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, m_server.get(), [this, socket] { serve(socket); });
            serve(socket); // a request may have come before anyone listened
        });
        m_server->listen(QHostAddress::LocalHost);
    }

    [[nodiscard]] QString address(const QString &scheme = u"http"_s) const
    {
        return u"%1://127.0.0.1:%2/latest"_s.arg(scheme).arg(m_server->serverPort());
    }

    QList<QByteArray> requests;

private:
    void serve(QTcpSocket *socket)
    {
        if (!socket->peek(65536).contains("\r\n\r\n"))
            return;
        requests << socket->readAll();
        socket->write(m_answer);
    }

    std::unique_ptr<QTcpServer> m_server;
    QByteArray m_answer;
};

/// A checker and what it said, one line for each signal.
struct Checker {
    explicit Checker(const QString &address)
    {
        checker.setUrl(address);
        const auto note = [this](bool silent, const QString &text) {
            said << (silent ? u"silent "_s : QString()) + text;
        };
        QObject::connect(&checker, &UpdateChecker::upToDate, [note](bool silent) { note(silent, u"up to date"_s); });
        QObject::connect(&checker, &UpdateChecker::checkFailed,
                         [note](const QString &error, bool silent) { note(silent, error); });
        QObject::connect(&checker, &UpdateChecker::updateAvailable,
                         [this, note](const UpdateChecker::Release &found, bool silent) {
                             release = found;
                             note(silent, found.version);
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
    void initTestCase()
    {
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_dir.path());
        metadata::applyToApplication();
        QDesktopServices::setUrlHandler(u"https"_s, this, "openUrl");
        QDesktopServices::setUrlHandler(u"file"_s, this, "openUrl");
    }

    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(u"https"_s);
        QDesktopServices::unsetUrlHandler(u"file"_s);
    }

    void init()
    {
        QSettings().clear();
        m_opened.clear();
    }

    void versionsCompareAsNumbers()
    {
        const QString digits(30, u'9');
        const QStringList equal { u"1.0.0 1"_s, u"1..1 1.0.1"_s, u"1.x.-5 1.0"_s, u"1.007-beta3 1.7"_s };
        const QStringList newer { u"1.10 1.9"_s, u"1.10.0 1.2.9"_s, digits + u" 8"_s + digits.mid(1),
                                  u"1"_s + digits + u' ' + digits };
        for (const QString &pair : equal + newer) {
            const QString a = pair.section(u' ', 0, 0);
            const QString b = pair.section(u' ', 1, 1);
            QVERIFY2(equal.contains(pair) ? compareVersions(a, b) == 0 : compareVersions(a, b) > 0, qPrintable(pair));
            QVERIFY2(equal.contains(pair) ? compareVersions(b, a) == 0 : compareVersions(b, a) < 0, qPrintable(pair));
        }
    }

    void answerBecomesOneSignal_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("silent");
        QTest::addColumn<QString>("said");

        constexpr qsizetype longest = 1 << 20;
        const QByteArray newer = R"({"latest_version":"1.1"})";
        const QByteArray skipped = R"({"latest_version":"7.0"})";
        const QByteArray critical = R"({"latest_version":"7.0","critical":true})";
        const QString noVersion = u"The update service did not report a version."_s;
        const QString unreadable = u"The update service returned an unreadable response."_s;
        const QString notFound = u"The update service returned HTTP 404."_s;
        const auto row = [](const char *name, const QByteArray &answer, bool silent, const QString &said) {
            QTest::newRow(name) << answer << silent << said;
        };
        row("newer", http("200 OK", newer), false, u"1.1"_s);
        row("newer, silent", http("200 OK", newer), true, u"silent 1.1"_s);
        row("equal", http("200 OK", R"({"latest_version":" 1.0 "})"), false, u"up to date"_s);
        row("older, silent", http("200 OK", R"({"latest_version":"0.9.9"})"), true, u"silent up to date"_s);
        row("skipped, silent", http("200 OK", skipped), true, u"silent up to date"_s);
        row("skipped, explicit", http("200 OK", skipped), false, u"7.0"_s);
        row("skipped but critical, silent", http("200 OK", critical), true, u"silent 7.0"_s);
        row("not found", http("404 Not Found", newer), false, notFound);
        row("no content", http("204 No Content", {}), true, u"silent The update service returned HTTP 204."_s);
        row("not JSON", http("200 OK", "<html></html>"), true, u"silent "_s + unreadable);
        row("an array", http("200 OK", "[" + newer + "]"), false, unreadable);
        row("no version", http("200 OK", R"({"notes":"7.0"})"), false, noVersion);
        row("version is no text", http("200 OK", R"({"latest_version":7})"), false, noVersion);
        row("as long as allowed", http("200 OK", newer.leftJustified(longest)), false, u"1.1"_s);
        row("too long", http("200 OK", newer.leftJustified(longest + 1)), false, unreadable);
        row("far too long", http("200 OK", newer.leftJustified(8 * longest)), true, u"silent "_s + unreadable);
        row("too long and not found", http("404 Not Found", QByteArray(2 * longest, ' ')), false, notFound);
    }

    void answerBecomesOneSignal()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, silent);
        QFETCH(QString, said);
        LoopbackServer server(answer);
        UpdateSettings().setSkippedVersion(u"7.0"_s);
        Checker watched(server.address());
        watched.checker.check(silent);
        QTRY_VERIFY(!watched.said.isEmpty());
        QTest::qWait(20); // a second signal would come now
        QCOMPARE(watched.said, QStringList { said });
        QCOMPARE(server.requests.size(), 1);
        const bool readable = !said.contains(u"service returned"_s);
        QCOMPARE(watched.checker.isDue(), !readable);
    }

    void requestAndReleaseAreComplete()
    {
        const QByteArray required = R"({"latest_version":" 2.0 ","min_supported_version":" 1.5 ","critical":true,)";
        const QByteArray links = R"("download_url":"https://d.example ","notes_url":" https://n.example",)";
        const QByteArray texts = R"("release_date":" 2026-11-20","notes":"\n- new\n- more\n"})";
        LoopbackServer server(http("200 OK", required + links + texts));
        Checker watched(server.address() + u"?channel=beta&flag"_s);
        watched.checker.check(false);
        QTRY_COMPARE(watched.said, QStringList { u"2.0"_s });
        QCOMPARE(watched.release,
                 (UpdateChecker::Release { u"2.0"_s, u"2026-11-20"_s, u"https://d.example"_s, u"https://n.example"_s,
                                           u"- new\n- more"_s, true, u"1.5"_s }));

        const QString request = QString::fromLatin1(server.requests.value(0));
        const QString items = u"channel=beta&flag&app=Echoprune&current=1.0.0&platform=windows&arch="_s;
        QCOMPARE(request.section(u' ', 1, 1), u"/latest?"_s + items + QSysInfo::currentCpuArchitecture());
        QVERIFY(request.contains(u"\r\nUser-Agent: Echoprune/1.0.0\r\n"_s));
        QVERIFY(request.contains(u"\r\nAccept: application/json\r\n"_s));
    }

    void onlyWebAddressesAreRequested()
    {
        QFile file(m_dir.filePath(u"answer.json"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(R"({"latest_version":"9.0"})") > 0);
        const QString readable = QUrl::fromLocalFile(file.fileName()).toString();
        for (const QString &address :
             { QString(), u"127.0.0.1/latest"_s, u"http://[oops"_s, u"ftp://127.0.0.1/"_s, readable }) {
            Checker watched(address);
            watched.checker.check(true);
            QVERIFY(watched.said.isEmpty()); // never before check() has returned
            QTRY_COMPARE(watched.said.size(), 1);
            QVERIFY2(watched.said.first().startsWith(u"silent The address"_s), qPrintable(address));
        }
    }

    void redirectsNeverDowngrade_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<bool>("followed");
        QTest::newRow("plain to plain") << u"http"_s << u"http"_s << true;
        QTest::newRow("plain to TLS") << u"http"_s << u"https"_s << true;
        QTest::newRow("TLS to TLS") << u"https"_s << u"https"_s << true;
        QTest::newRow("TLS to plain") << u"https"_s << u"http"_s << false;
    }

    void redirectsNeverDowngrade()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(bool, followed);
        LoopbackServer second(http("200 OK", R"({"latest_version":"2.0"})"), serverFor(to));
        LoopbackServer first(http("302 Found", {}, "Location: " + second.address(to).toLatin1()), serverFor(from));
        Checker watched(first.address(from));
        watched.checker.check(false);
        QTRY_COMPARE(watched.said.size(), 1);
        QCOMPARE(watched.said.first() == u"2.0"_s, followed);
        QVERIFY(!watched.said.first().contains(u"HTTP 302"_s)); // but the reason
        QCOMPARE(first.requests.size(), 1);
        QCOMPARE(second.requests.size(), followed ? 1 : 0);
    }

    void checkEndsAtTheTimeLimit()
    {
        LoopbackServer server({});
        Checker watched(server.address());
        watched.checker.setTimeLimit(std::chrono::milliseconds(200));
        watched.checker.check(false);
        QTRY_COMPARE(watched.said.size(), 1);
        QVERIFY(watched.checker.isDue());
        QCOMPARE(server.requests.size(), 1);
    }

    void overlappingChecksAnswerSeparately()
    {
        LoopbackServer server(http("200 OK", R"({"latest_version":"1.0.0"})"));
        Checker watched(server.address());
        watched.checker.check(true);
        watched.checker.check(false);
        QTRY_COMPARE(watched.said.size(), 2);
        QVERIFY(watched.said.contains(u"up to date"_s) && watched.said.contains(u"silent up to date"_s));
        QCOMPARE(server.requests.size(), 2);
    }

    void automaticCheckIsDueAfterTwentyHours()
    {
        const UpdateChecker checker;
        QVERIFY(checker.isDue());
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QDateTime stillFresh = now.addSecs(-(20 * 3600 - 60));
        const QDateTime old = now.addSecs(-20 * 3600);
        const QString byHand = old.toString(Qt::ISODate);
        for (const QVariant &due : { QVariant(u"yesterday"_s), QVariant(old), QVariant(byHand) }) {
            QSettings().setValue(u"updates/lastChecked"_s, due);
            QVERIFY2(checker.isDue(), qPrintable(due.toString()));
        }
        for (const QDateTime &fresh : { stillFresh, stillFresh.toOffsetFromUtc(9 * 3600) }) {
            QSettings().setValue(u"updates/lastChecked"_s, fresh);
            QVERIFY2(!checker.isDue(), qPrintable(fresh.toString()));
        }
    }

    void lastCheckAndAddressAreKept()
    {
        UpdateChecker checker;
        QCOMPARE(checker.lastCheckedText(), u"never"_s);
        UpdateSettings().setLastChecked(QDateTime(QDate(2026, 11, 9), QTime(21, 5)));
        QCOMPARE(QSettings().value(u"updates/lastChecked"_s).toDateTime().timeSpec(), Qt::UTC);
        QCOMPARE(checker.lastCheckedText().toLower(), u"9 nov 2026, 9:05 pm"_s);

        QCOMPARE(QUrl(checker.url()).path(), u"/api/latest.json"_s);
        checker.setUrl(u"  https://updates.example/feed \n"_s);
        QCOMPARE(UpdateChecker().url(), u"https://updates.example/feed"_s);
    }

    void releaseDateIsReadAsADay()
    {
        QCOMPARE(parseReleaseDate(u"2026-11-05"_s), QDate(2026, 11, 5));
        QCOMPARE(parseReleaseDate(u"2026-11-05T23:30:00Z"_s), QDate(2026, 11, 5));
        QVERIFY(!parseReleaseDate(u"soon"_s).isValid());
    }

    void hostileTextsStayText()
    {
        const QString markup = u"<img src=\"https://spy.example/x.png\">"_s;
        UpdateChecker::Release hostile;
        hostile.version = u"9."_s + markup.repeated(1000);
        hostile.notes = markup;
        hostile.notesUrl = u"https://n.example/\">"_s + markup;
        const UpdateDialog dialog(hostile);
        for (const QLabel *label : dialog.findChildren<QLabel *>())
            QVERIFY(label->textFormat() == Qt::PlainText || !label->text().contains(u"<img"_s));
        QCOMPARE(dialog.findChild<QPlainTextEdit *>()->toPlainText(), markup);
        QVERIFY(dialog.sizeHint().width() < 640);
    }

    void buttonsDoWhatTheySay_data()
    {
        QTest::addColumn<QString>("downloadUrl");
        QTest::addColumn<char>("key");
        QTest::addColumn<QStringList>("opened");
        QTest::addColumn<QString>("skipped");
        const QString web = u"https://d.example/get?a=1&b=2"_s;
        const auto enter = '\r';
        QTest::newRow("Enter downloads") << web << enter << QStringList { web } << QString();
        QTest::newRow("Enter opens no file") << u"file://server/setup.exe"_s << enter << QStringList {} << QString();
        QTest::newRow("Enter without an address") << QString() << enter << QStringList {} << QString();
        QTest::newRow("Remind me later") << web << 'r' << QStringList {} << QString();
        QTest::newRow("Skip This Version") << web << 's' << QStringList {} << u"1.4.0"_s;
    }

    void buttonsDoWhatTheySay()
    {
        QFETCH(QString, downloadUrl);
        QFETCH(char, key);
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
    }

private:
    // For the loopback address, and trusted by this process alone.
    void createCertificate()
    {
        const QString keyPath = m_dir.filePath(u"key.pem"_s);
        const QString certificatePath = m_dir.filePath(u"certificate.pem"_s);
        QProcess openssl;
        openssl.start(
            u"openssl"_s,
            QStringList { u"req"_s, u"-keyout"_s, keyPath, u"-out"_s, certificatePath }
                + u"-x509 -nodes -newkey rsa:2048 -subj /CN=loopback -addext subjectAltName=IP:127.0.0.1"_s.split(
                    u' '));
        QVERIFY2(openssl.waitForFinished() && openssl.exitCode() == 0,
                 "the openssl program could not make a certificate");

        QFile key(keyPath);
        QVERIFY(key.open(QIODevice::ReadOnly));
        const QList<QSslCertificate> certificates = QSslCertificate::fromPath(certificatePath);
        m_tls.setLocalCertificateChain(certificates);
        m_tls.setPrivateKey(QSslKey(&key, QSsl::Rsa));
        QSslConfiguration clients = QSslConfiguration::defaultConfiguration();
        clients.addCaCertificates(certificates);
        QSslConfiguration::setDefaultConfiguration(clients);
    }

    std::unique_ptr<QTcpServer> serverFor(const QString &scheme)
    {
        if (scheme == u"http"_s)
            return nullptr;
        if (m_tls.isNull())
            createCertificate();
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(m_tls);
        return server;
    }

    QTemporaryDir m_dir;
    QSslConfiguration m_tls;
    QStringList m_opened;
};

QTEST_MAIN(TestUpdate)

#include "tst_update.moc"
