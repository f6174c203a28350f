// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysiscache.h"
#include "mainactions.h"
#include "mainwindow.h"
#include "metadata.h"
#include "metatypes.h"
#include "settingsstore.h"
#include "startup.h"

#include "loopbackserver.h"
#include "messagebox.h"
#include "temporarylibrary.h"

#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

// The log's lines without their times.
QStringList logOf(const MainWindow &window)
{
    QStringList lines = window.findChild<QPlainTextEdit *>(u"activityLog"_s)->toPlainText().split(u'\n');
    for (QString &line : lines)
        line = line.section(u"] "_s, 1);
    return lines;
}

MainActions *actionsOf(const MainWindow &window)
{
    return window.findChild<MainActions *>();
}

template <typename Widget> Widget *named(const QWidget *parent, const QString &text)
{
    const auto widgets = parent->findChildren<Widget *>();
    const auto found = std::find_if(widgets.begin(), widgets.end(),
                                    [&text](const Widget *widget) { return widget->text().remove(u'&') == text; });
    return found == widgets.end() ? nullptr : *found;
}

// Does something with the next dialog, while its event loop runs.
void withNextDialog(const std::function<void(QDialog *)> &act)
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        timer->deleteLater();
        act(dialog);
    });
    timer->start(1);
}

void storeOneAnalysis()
{
    TrackInfo track;
    track.path = u"/music/one.mp3"_s;
    AnalysisCache cache;
    QVERIFY(cache.open());
    cache.store(track, 0);
}

} // namespace

class TestWindowCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        metadata::applyToApplication();
        registerMetaTypes();
    }

    void init()
    {
        m_home.emplace();
        startup::createDataFolder();
    }

    void explicitUpdateCheckEndsInABox_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text"); // of a label or a box
        QTest::addColumn<QString>("line");
        const auto row = [](const char *name, const QByteArray &answer, const char *title, const char *text,
                            const char *line) {
            QTest::newRow(name) << answer << QString::fromUtf8(title) << QString::fromUtf8(text)
                                << QString::fromUtf8(line);
        };
        row("newer", http("200 OK", R"({"latest_version":"1.4"})"), "Update available", "Echoprune 1.4 is available.",
            "Update available: version 1.4.");
        row("critical", http("200 OK", R"({"latest_version":"1.4","critical":true})"), "Important update",
            "Echoprune 1.4 is available.", "Important update available: version 1.4.");
        row("the same", http("200 OK", R"({"latest_version":"1.0"})"), "No update available",
            "You are running the latest version of Echoprune (1.0.0).", "Echoprune 1.0.0 is up to date.");
        row("failure", http("500 Oops", {}), "Update check failed",
            "Could not reach the update service.\n\nThe update service returned HTTP 500.",
            "Update check failed: The update service returned HTTP 500.");
    }

    void explicitUpdateCheckEndsInABox()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, text);
        LoopbackServer server(answer);
        QSettings().setValue(u"updates/url"_s, server.address());
        MainWindow window;
        QString title;
        QStringList texts;
        withNextDialog([&](QDialog *dialog) {
            title = dialog->windowTitle();
            for (const QLabel *label : dialog->findChildren<QLabel *>())
                texts << label->text();
            dialog->reject();
        });
        QAction *check = actionsOf(window)->checkForUpdates;
        check->trigger();
        QVERIFY2(!check->isEnabled(), "one check at a time");
        QTRY_VERIFY(!title.isEmpty() && check->isEnabled());
        QTEST(title, "title");
        QVERIFY2(texts.contains(text), qPrintable(texts.join(u'|')));
        QTEST(logOf(window).last(), "line");
    }

    void startupCheckIsSilentAndOnlyWhenDue()
    {
        LoopbackServer server(http("404 Not Found", {}));
        QSettings().setValue(u"updates/url"_s, server.address());
        MainWindow due;
        due.show();
        QTRY_COMPARE(logOf(due).last(), u"Update check failed: The update service returned HTTP 404."_s);
        QVERIFY(!QApplication::activeModalWidget());

        for (const QString &key : words("updates/lastChecked updates/checkOnStartup")) {
            QSettings().setValue(key, key.contains("last"_L1) ? QVariant(QDateTime::currentDateTimeUtc()) : false);
            MainWindow noCheck;
            QTest::qWait(3000); // longer than the check would wait
            QSettings().remove(key);
        }
        QCOMPARE(server.requests.size(), 1);
    }

    void editedSettingsAreStoredUnlessCancelled()
    {
        MainWindow window;
        for (const bool accepted : { false, true }) {
            withNextDialog([accepted](QDialog *dialog) {
                for (QSpinBox *box : dialog->findChildren<QSpinBox *>())
                    box->setValue(20);
                accepted ? dialog->accept() : dialog->reject();
            });
            actionsOf(window)->settings->trigger();
            QCOMPARE(SettingsStore().loadScanOptions().fingerprintSeconds, accepted ? 20 : 60);
            QCOMPARE(logOf(window).last() == u"Settings updated."_s, accepted);
        }
    }

    void cacheIsClearedFromMenuAndDialog()
    {
        MainWindow window;
        AnalysisCache cache;
        QVERIFY(cache.open());
        storeOneAnalysis();
        actionsOf(window)->clearCache->trigger();
        QCOMPARE(cache.count(), 0);
        QCOMPARE(logOf(window).last(), u"Analysis cache cleared."_s);

        storeOneAnalysis();
        withNextDialog([](QDialog *dialog) {
            auto *clear = named<QAbstractButton>(dialog, u"Clear cache"_s);
            QVERIFY(clear && !named<QLabel>(dialog, u"Cache unavailable."_s));
            clear->click();
            QVERIFY(named<QLabel>(dialog, u"Cache cleared. The next scan will re-analyse everything."_s));
            dialog->reject();
        });
        actionsOf(window)->settings->trigger();
        QCOMPARE(cache.count(), 0);
        QCOMPARE(logOf(window).count(u"Analysis cache cleared."_s), 2);
    }

    void cacheThatCannotBeClearedIsLeft()
    {
        const QByteArray damaged = QByteArray("no database ").repeated(1000);
        writeFile(AnalysisCache::defaultFilePath(), damaged);
        MainWindow window;
        actionsOf(window)->clearCache->trigger();
        QVERIFY(logOf(window).last().startsWith("Could not clear the analysis cache: "_L1));
        QCOMPARE(readFile(AnalysisCache::defaultFilePath()), damaged);
    }

private:
    std::optional<TemporaryHome> m_home;
};

QTEST_MAIN(TestWindowCommands)

#include "tst_windowcommands.moc"
