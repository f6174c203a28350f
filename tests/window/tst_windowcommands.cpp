// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "commands.h"

#include "loopbackserver.h"
#include "windowsupport.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

using namespace epr;
using namespace epr::test;

namespace {

enum Filter { Html, Csv, Json, Playlist }; // in the order of the file dialog

} // namespace

class TestWindowCommands : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void keepUrl(const QUrl &url) { m_opened = url; }

private Q_SLOTS:
    void initTestCase()
    {
        setUpApplication();
        QDesktopServices::setUrlHandler(u"file"_s, this, "keepUrl");
    }

    void init()
    {
        m_home.emplace();
        startup::createDataFolder();
    }

    void startupCheckIsSilentAndOnlyIfWanted()
    {
        LoopbackServer server(http("404 Not Found", {}));
        SettingsStore store;
        store.set(settings::updateUrl, server.address());
        store.set(settings::checkForUpdatesOnStartup, false);
        MainWindow window;
        const auto timer = [&] { return window.findChild<QTimer *>(u"startupCheck"_s); };
        QVERIFY(!timer());
        store.remove(settings::checkForUpdatesOnStartup);
        window.findChild<UpdateNotices *>()->scheduleStartupCheck();
        timer()->start(0);
        QTRY_COMPARE(logOf(window).last(), u"Update check failed: The update service returned HTTP 404."_s);
        QVERIFY(server.requests.size() == 1 && !QApplication::activeModalWidget());
    }

    void reportShowsTheResultsAsTheyStand()
    {
        for (const QString &name : { u"1"_s, u"2"_s, u"3"_s })
            writeFile(pathOf(u"scanned/%1.wav"_s.arg(name)), waveOf(1));
        MainWindow window;
        scan(window, pathOf(u"scanned"_s));
        window.addFolder(m_home->path());
        auto *review = window.findChild<Review *>();
        review->removeMembers({ 0 });
        review->setKeeper(0, 2);

        // The filter decides on the format, whatever the name says.
        const auto pathFor = [this](Filter filter) { return pathOf(u"&lt;%1&gt;.html"_s.arg(filter)); };
        for (const auto &[filter, start] :
             { std::pair(Html, "<!DOCTYPE html>"), { Csv, "Group," }, { Json, "{" }, { Playlist, "#EXTM3U" } }) {
            const SeenBox box =
                exportTo(window, pathFor(filter), filter, filter == Html ? QMessageBox::Yes : QMessageBox::No);
            QCOMPARE(box.title + box.text,
                     u"Report savedReport saved to:\n%1\n\nOpen it now?"_s.arg(native(pathFor(filter))));
            QVERIFY2(readFile(pathFor(filter)).startsWith(start), start);
        }
        QCOMPARE(m_opened, QUrl::fromLocalFile(pathFor(Html)));
        const QJsonDocument json = QJsonDocument::fromJson(readFile(pathFor(Json)));
        QCOMPARE(json["roots"_L1].toArray(), QJsonArray { pathOf(u"scanned"_s) });
        const QJsonArray files = json["duplicateGroups"_L1][0]["files"_L1].toArray();
        QCOMPARE(files.size(), 2);
        QVERIFY(!files.at(0)["keep"_L1].toBool() && files.at(1)["path"_L1] == pathOf(u"scanned/3.wav"_s));
    }

private:
    QString pathOf(const QString &name) const { return m_home->filePath(name); }

    /// Types a name into the next file dialog, under that filter; cancels without a name.
    static void answerFileDialog(const QString &path, Filter filter)
    {
        withNext<QFileDialog>([=](QFileDialog *dialog) {
            dialog->selectNameFilter(dialog->nameFilters().at(filter));
            dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
            QMetaObject::invokeMethod(dialog, path.isEmpty() ? "reject" : "accept");
        });
    }

    static SeenBox exportTo(MainWindow &window, const QString &path, Filter filter, QMessageBox::StandardButton answer)
    {
        SeenBox box;
        answerFileDialog(path, filter);
        answerNextBox(answer, &box);
        window.onExportReport();
        return box;
    }

    std::optional<TemporaryHome> m_home;
    QUrl m_opened;
};

QTEST_MAIN(TestWindowCommands)
#include "tst_windowcommands.moc"
