// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "mainwindow.h"
#include "metatypes.h"
#include "resultsmodel.h"

#include "messagebox.h"
#include "temporarylibrary.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLineEdit>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

class TestExport : public QObject {
    Q_OBJECT

public:
    static void initMain() { static const TemporaryHome home; }

public Q_SLOTS:
    void keepUrl(const QUrl &url) { m_opened = url; }

private Q_SLOTS:
    void initTestCase()
    {
        registerMetaTypes();
        QDesktopServices::setUrlHandler(u"file"_s, this, "keepUrl");
    }

    void reportShowsTheResultsAsTheyStand()
    {
        for (const QString &name : { u"1"_s, u"2"_s, u"3"_s })
            writeFile(pathOf(u"scanned/%1.wav"_s.arg(name)), waveOf(1));
        MainWindow window;
        window.addFolder(pathOf(u"scanned"_s));
        window.onStartScan();
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), 60000);
        window.addFolder(m_folder.path());
        auto *results = window.findChild<ResultsModel *>();
        results->removeMembers({ 0 });
        results->setKeeper(0, 2);

        // The filter decides on the format, whatever the name says.
        const QList<QByteArray> starts { "<!DOCTYPE html>", "Group,", "{\n", "#EXTM3U\n" };
        for (int filter = 0; filter < starts.size(); ++filter) {
            const QString path = pathOf(u"<b>%1.html"_s.arg(filter));
            const SeenBox box = exportTo(window, path, filter, filter == 0 ? QMessageBox::Yes : QMessageBox::No);
            QCOMPARE(box.title + box.text, u"Report savedReport saved to:\n%1\n\nOpen it now?"_s.arg(path));
            QVERIFY(readFile(path).startsWith(starts.at(filter)));
        }
        QCOMPARE(m_opened, QUrl::fromLocalFile(pathOf(u"<b>0.html"_s)));
        const QJsonDocument json = QJsonDocument::fromJson(readFile(pathOf(u"<b>2.html"_s)));
        QCOMPARE(json["roots"_L1].toArray(), QJsonArray { pathOf(u"scanned"_s) });
        const QJsonArray files = json["duplicateGroups"_L1][0]["files"_L1].toArray();
        QCOMPARE(files.size(), 2);
        QVERIFY(!files.at(0)["keep"_L1].toBool() && files.at(1)["path"_L1] == pathOf(u"scanned/3.wav"_s));
    }

    void nothingIsWrittenWithoutResultsOrAName()
    {
        MainWindow window;
        SeenBox box;
        answerNextBox(QMessageBox::Ok, &box);
        window.onExportReport();
        QCOMPARE(box.title + box.text, u"Nothing to exportRun a scan first - there are no results to report on."_s);
        window.onScanFinished({ TrackInfo(), TrackInfo() }, { { .members = { 0, 1 }, .keep = 0 } }, false, 1);
        answerFileDialog({}, 0);
        window.onExportReport(); // a box would never close
        box = exportTo(window, pathOf(u"none/report.html"_s), 0, QMessageBox::Ok);
        QCOMPARE(box.title, u"Export failed"_s);
        QVERIFY(box.text.startsWith("Could not write the report:\n\n"_L1) && box.text.size() > 35);
    }

private:
    QString pathOf(const QString &name) const { return m_folder.filePath(name); }

    /// Types a name into the next file dialog, under the filter with that number; cancels without a name.
    static void answerFileDialog(const QString &path, int filter)
    {
        auto *timer = new QTimer(qApp);
        connect(timer, &QTimer::timeout, timer, [=] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            timer->deleteLater();
            dialog->selectNameFilter(dialog->nameFilters().at(filter));
            dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
            QMetaObject::invokeMethod(dialog, path.isEmpty() ? "reject" : "accept");
        });
        timer->start(1);
    }

    static SeenBox exportTo(MainWindow &window, const QString &path, int filter, QMessageBox::StandardButton answer)
    {
        SeenBox box;
        answerFileDialog(path, filter);
        answerNextBox(answer, &box);
        window.onExportReport();
        return box;
    }

    QTemporaryDir m_folder;
    QUrl m_opened;
};

QTEST_MAIN(TestExport)
#include "tst_export.moc"
