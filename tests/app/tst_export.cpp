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
#include <QJsonObject>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

/// Types a name into the next file dialog, under the filter with that number, and accepts it; cancels without a name.
void answerFileDialog(const QString &path, int filter, QString *seen)
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        timer->deleteLater();
        auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
        *seen = QStringList { dialog->windowTitle(), name->text(), dialog->nameFilters().join("; "_L1) }.join(u'\n');
        dialog->selectNameFilter(dialog->nameFilters().at(filter));
        name->setText(path);
        QMetaObject::invokeMethod(dialog, path.isEmpty() ? "reject" : "accept");
    });
    timer->start(1);
}

} // namespace

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

    // Whatever the name says.
    void filterDecidesTheFormat()
    {
        MainWindow window;
        window.onScanFinished({ TrackInfo(), TrackInfo() }, { { .members = { 0, 1 }, .keep = 0 } }, false, 1);
        const QList<QByteArray> starts { "<!DOCTYPE html>", "Group,", "{\n", "#EXTM3U\n" };
        for (int filter = 0; filter < starts.size(); ++filter) {
            const QString path = m_folder.filePath(u"<b>%1.html"_s.arg(filter));
            QString dialog;
            SeenBox box;
            answerFileDialog(path, filter, &dialog);
            answerNextBox(filter == 0 ? QMessageBox::Yes : QMessageBox::No, &box);
            window.onExportReport();
            QVERIFY(readFile(path).startsWith(starts.at(filter)));
            QCOMPARE(
                dialog,
                u"Export duplicate report\nEchoprune-%1.html\nHTML report (*.html); Comma separated values (*.csv); "
                "JSON data (*.json); M3U playlist (*.m3u8)"_s.arg(QDate::currentDate().toString(Qt::ISODate)));
            QCOMPARE(box.title + box.text, u"Report savedReport saved to:\n%1\n\nOpen it now?"_s.arg(path));
            QVERIFY(logOf(window).endsWith("] Report written to "_L1 + path));
            QCOMPARE(m_opened, QUrl::fromLocalFile(m_folder.filePath(u"<b>0.html"_s)));
        }
    }

    void reportShowsTheResultsAsTheyStand()
    {
        for (const QString &name : { u"1"_s, u"2"_s, u"3"_s })
            writeFile(m_folder.filePath(u"scanned/%1.wav"_s.arg(name)), waveOf(1));
        MainWindow window;
        window.addFolder(m_folder.filePath(u"scanned"_s));
        window.onStartScan();
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), 60000);
        window.addFolder(m_folder.path());
        auto *results = window.findChild<ResultsModel *>();
        results->removeMembers({ 0 });
        results->setKeeper(0, 2);

        const QString path = m_folder.filePath(u"after.json"_s);
        QString dialog;
        SeenBox box;
        answerFileDialog(path, 2, &dialog);
        answerNextBox(QMessageBox::No, &box);
        window.onExportReport();
        const QJsonObject json = QJsonDocument::fromJson(readFile(path)).object();
        QCOMPARE(json["roots"_L1].toArray(), QJsonArray { m_folder.filePath(u"scanned"_s) });
        const QJsonArray files = json["duplicateGroups"_L1][0]["files"_L1].toArray();
        QCOMPARE(files.size(), 2);
        QCOMPARE(files.at(1)["path"_L1].toString(), m_folder.filePath(u"scanned/3.wav"_s));
        QVERIFY(!files.at(0)["keep"_L1].toBool() && files.at(1)["keep"_L1].toBool());
    }

    void nothingIsWrittenWithoutResultsOrAName()
    {
        MainWindow window;
        QString dialog;
        SeenBox box;
        answerNextBox(QMessageBox::Ok, &box);
        window.onExportReport();
        QCOMPARE(box.title + box.text, u"Nothing to exportRun a scan first - there are no results to report on."_s);

        window.onScanFinished({ TrackInfo(), TrackInfo() }, { { .members = { 0, 1 }, .keep = 0 } }, false, 1);
        answerFileDialog({}, 0, &dialog);
        window.onExportReport();
        answerFileDialog(m_folder.filePath(u"none/report.html"_s), 0, &dialog);
        answerNextBox(QMessageBox::Ok, &box);
        window.onExportReport();
        QCOMPARE(box.title, u"Export failed"_s);
        QVERIFY(box.text.startsWith("Could not write the report:\n\n"_L1) && box.text.size() > 35);
        QVERIFY(!logOf(window).contains("Report written"_L1));
    }

private:
    static QString logOf(const MainWindow &window)
    {
        return window.findChild<QPlainTextEdit *>(u"activityLog"_s)->toPlainText();
    }

    QTemporaryDir m_folder;
    QUrl m_opened;
};

QTEST_MAIN(TestExport)
#include "tst_export.moc"
