// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "audiobuilder.h"
#include "folderpanel.h"
#include "mainwindow.h"
#include "metadata.h"
#include "metatypes.h"
#include "resultsmodel.h"
#include "settingsstore.h"
#include "startup.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeView>

#include <optional>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr int scanTimeoutMs = 60000;

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %ls", qUtf16Printable(path));
}

// 8,000 one-byte samples a second, long enough that a scan takes it into account; the seed makes the sound.
QByteArray wave(char seed, int seconds = 6)
{
    return test::waveFile(test::waveFormat(1, 8000, 8000) + test::riffChunk("data", QByteArray(8000 * seconds, seed)));
}

struct Box {
    QString title;
    QString text;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

// Presses a button of the next message box and keeps what the box said.
void answerNextBox(QMessageBox::StandardButton button, Box *seen)
{
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, button, seen] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        *seen = { box->windowTitle(), box->text(), box->standardButton(box->defaultButton()) };
        timer->deleteLater();
        box->button(button)->click();
    });
    timer->start(1);
}

template <typename Widget> Widget *part(const MainWindow &window, const QString &name)
{
    auto *found = window.findChild<Widget *>(name);
    if (!found)
        qFatal("The window has no %ls", qUtf16Printable(name));
    return found;
}

QString logOf(const MainWindow &window)
{
    return part<QPlainTextEdit>(window, u"activityLog"_s)->toPlainText();
}

QString summaryOf(const MainWindow &window)
{
    return part<QLabel>(window, u"summaryLabel"_s)->text();
}

QStringList foldersOf(const MainWindow &window)
{
    return window.findChild<FolderPanel *>()->folders();
}

QTreeView *treeOf(const MainWindow &window)
{
    return part<QTreeView>(window, u"resultsView"_s);
}

QString hintOf(const MainWindow &window)
{
    const auto *hint = treeOf(window)->viewport()->findChild<QLabel *>();
    return hint->isVisibleTo(treeOf(window)) ? hint->text() : QString();
}

// Two copies of one track, so that there is something to see without a scan.
void showTwoCopies(MainWindow &window)
{
    TrackInfo track;
    track.path = u"/music/one.mp3"_s;
    track.fileName = u"one.mp3"_s;
    track.size = 2 << 20;
    track.fullHash = u"c0ffee"_s;
    TrackInfo copy = track;
    copy.path = u"/music/<two> & more.mp3"_s;
    copy.fileName = u"<two> & more.mp3"_s;
    MatchGroup group;
    group.id = 1;
    group.matchType = MatchType::IdenticalFile;
    group.members = { 0, 1 };
    group.keep = 0;
    group.reclaimableBytes = 2 << 20;
    window.onScanFinished({ track, copy }, { group }, false, 1500);
}

// Opens the context menu of a member of the first group and triggers one of its actions.
void chooseFromMenu(const MainWindow &window, int member, const QString &action)
{
    QTreeView *tree = treeOf(window);
    const QModelIndex index = tree->model()->index(member, 0, tree->model()->index(0, 0));
    const QPoint place = tree->visualRect(index).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, tree->viewport()->mapToGlobal(place));
    QApplication::sendEvent(tree->viewport(), &event);
    auto *menu = part<QMenu>(window, u"memberMenu"_s);
    QVERIFY(menu->isVisible());
    auto *chosen = menu->findChild<QAction *>(action);
    QVERIFY(chosen && chosen->isEnabled());
    menu->close();
    chosen->trigger();
}

void drop(const MainWindow &window, const QList<QUrl> &urls, bool *accepted)
{
    auto *panel = window.findChild<FolderPanel *>();
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(panel, &enter);
    *accepted = enter.isAccepted();
    if (!*accepted)
        return;
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(panel, &event);
}

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

public:
    // Called before the application object exists, which looks at these places when it starts.
    static void initMain()
    {
        static const QTemporaryDir home;
        s_home = home.path();
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath(u"config"_s)));
        qputenv("XDG_DATA_HOME", QFile::encodeName(home.filePath(u"data"_s)));
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, home.filePath(u"config"_s));
#ifndef Q_OS_UNIX
        QStandardPaths::setTestModeEnabled(true);
#endif
    }

public Q_SLOTS:
    void keepUrl(const QUrl &url)
    {
        m_opened = url;
    }

private Q_SLOTS:
    void initTestCase()
    {
        metadata::applyToApplication();
        registerMetaTypes();
        startup::loadResources();
        startup::applyLook();
        startup::createDataFolder();
#ifdef Q_OS_UNIX
        QVERIFY(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).startsWith(s_home));
        QVERIFY(QSettings().fileName().startsWith(s_home));
#endif
        QVERIFY(qApp->styleSheet().contains("QToolBar"_L1));
        QVERIFY(QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).exists());
        QVERIFY(!QImage(u":/icons/logo.png"_s).isNull());
        QDesktopServices::setUrlHandler(u"file"_s, this, "keepUrl");
    }

    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(u"file"_s);
    }

    void init()
    {
        QSettings().clear();
        m_folder.emplace();
    }

    void commandLineFoldersComeOnceAndInOrder()
    {
        const QDir root(m_folder->path());
        QVERIFY(root.mkpath(u"A"_s) && root.mkpath(u"B"_s));
        writeFile(root.filePath(u"file"_s), "x");
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(root.path()));
        const startup::Arguments arguments =
            startup::processArguments({ u"echoprune"_s, u"-s"_s, root.filePath(u"A"_s), u"-s"_s, u"B"_s, u"--scan"_s,
                                        u"A/"_s, u"-s"_s, u"file"_s, u"-s"_s, u"none"_s, u"-s"_s, QString() });
        MainWindow window;
        for (const QString &folder : arguments.folders)
            window.addFolder(folder);
        const QStringList expected { QDir::current().absoluteFilePath(u"A"_s),
                                     QDir::current().absoluteFilePath(u"B"_s) };
        QDir::setCurrent(before);
        QCOMPARE(foldersOf(window), expected);
        QVERIFY(!arguments.autostart);
        QVERIFY(startup::processArguments({ u"echoprune"_s, u"-a"_s }).autostart);
    }

#ifndef Q_OS_WIN // where a program without a console shows this in a box
    void programTellsItsVersion()
    {
        QProcess program;
        program.start(QStringLiteral(EPR_PROGRAM), { u"--version"_s });
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitCode(), 0);
        QCOMPARE(program.readAllStandardOutput().trimmed(), "Echoprune 1.0.0");
    }
#endif

    void firstStartSaysWhatToDo()
    {
        MainWindow window;
        QCOMPARE(window.windowTitle(), u"Echoprune"_s);
        QCOMPARE(summaryOf(window), u"No scan has been run yet."_s);
        QVERIFY(hintOf(window).contains("Start Scan"_L1));
        QVERIFY(logOf(window).endsWith("] Echoprune 1.0.0 ready."_L1));
        QVERIFY(QRegularExpression(u"^\\[\\d\\d:\\d\\d:\\d\\d\\] "_s).match(logOf(window)).hasMatch());
    }

    void scanNeedsAFolder()
    {
        MainWindow window;
        Box box;
        answerNextBox(QMessageBox::Ok, &box);
        window.onStartScan();
        QCOMPARE(box.title, u"Nothing to scan"_s);
        QCOMPARE(box.text, u"Add at least one folder containing music before starting a scan."_s);
        QVERIFY(!window.isScanning());
    }

    void scanNeedsAMethodAndKeepsTheResultsWithoutOne()
    {
        ScanOptions none;
        none.detectIdentical = none.detectSameAudio = none.detectAcoustic = none.detectMetadata = false;
        SettingsStore().saveScanOptions(none);
        MainWindow window;
        window.addFolder(m_folder->path());
        showTwoCopies(window);
        Box box;
        answerNextBox(QMessageBox::Ok, &box);
        window.onStartScan();
        QCOMPARE(box.title, u"No detection method enabled"_s);
        QCOMPARE(box.text, u"Enable at least one detection method in Settings before scanning."_s);
        QVERIFY(!window.isScanning());
        QCOMPARE(treeOf(window)->model()->rowCount(), 1);
    }

    void scanFillsTheTree()
    {
        const QDir root(m_folder->path());
        writeFile(root.filePath(u"one.wav"_s), wave(1));
        writeFile(root.filePath(u"sub/one again.wav"_s), wave(1));
        writeFile(root.filePath(u"two.wav"_s), wave(2));
        MainWindow window;
        window.show();
        window.addFolder(root.path());
        window.onStartScan();
        QVERIFY(window.isScanning());
        QCOMPARE(summaryOf(window), QString());
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), scanTimeoutMs);

        QTreeView *tree = treeOf(window);
        QCOMPARE(tree->model()->rowCount(), 1);
        QVERIFY(tree->isExpanded(tree->model()->index(0, 0)));
        QVERIFY(summaryOf(window).startsWith("3 files scanned - 1 duplicate groups - 1 redundant copies"_L1));
        QVERIFY(logOf(window).contains("] --- Scan started "_L1));
        QVERIFY(logOf(window).contains("] Discovered 3 audio files."_L1));
        QVERIFY(logOf(window).contains("] --- Scan complete in "_L1));
        QVERIFY(part<QLabel>(window, u"statusLabel"_s)->text().startsWith("Scan complete in "_L1));
    }

    void scanWithoutDuplicatesSaysSo()
    {
        writeFile(m_folder->filePath(u"one.wav"_s), wave(1));
        MainWindow window;
        window.addFolder(m_folder->path());
        window.onStartScan();
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), scanTimeoutMs);
        QCOMPARE(summaryOf(window), u"Scanned 1 files - no duplicates found."_s);
        QVERIFY(hintOf(window).contains("No duplicates"_L1));
    }

    void failedScanIsReported()
    {
        MainWindow window;
        window.onScanFailed(u"no room"_s);
        QVERIFY(logOf(window).endsWith("] Scan failed: no room"_L1));
        QCOMPARE(part<QLabel>(window, u"statusLabel"_s)->text(), u"Scan failed: no room"_s);
    }

    void closingDuringAScanCanBeDeclined()
    {
        writeFile(m_folder->filePath(u"one.wav"_s), wave(1));
        MainWindow window;
        window.show();
        window.addFolder(m_folder->path());
        window.onStartScan();
        Box box;
        answerNextBox(QMessageBox::No, &box);
        QVERIFY(!window.close());
        QCOMPARE(box.title, u"Scan in progress"_s);
        QCOMPARE(box.text, u"A scan is still running. Stop it and close Echoprune?"_s);
        QCOMPARE(box.defaultButton, QMessageBox::No);
        QVERIFY(window.isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), scanTimeoutMs);
        QVERIFY(logOf(window).contains("--- Scan complete in "_L1));
    }

    // Enough to hash that the scan is still at it when the answer comes. The files are mostly holes, which costs no
    // disk.
    void closingDuringAScanStopsIt()
    {
        constexpr int secondsOfAnHour = 3600;
        const QByteArray recording = wave(1, secondsOfAnHour);
        for (int i = 0; i < 40; ++i) {
            const QString path = m_folder->filePath(u"%1.wav"_s.arg(i));
            writeFile(path, recording.left(1024));
            QVERIFY(QFile::resize(path, recording.size()));
        }
        MainWindow window;
        window.show();
        window.addFolder(m_folder->path());
        window.onStartScan();
        Box box;
        answerNextBox(QMessageBox::Yes, &box);
        QVERIFY(window.close());
        QVERIFY(!window.isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), scanTimeoutMs);
        QVERIFY(logOf(window).contains("--- Scan cancelled after "_L1));
        QVERIFY(hintOf(window).contains("cancelled"_L1));
        QCOMPARE(SettingsStore().folders(), QStringList { m_folder->path() });
    }

    // A thread that had not ended in time would be left behind instead of going with its window.
    void windowMayGoInTheMiddleOfAScan()
    {
        for (int i = 0; i < 50; ++i)
            writeFile(m_folder->filePath(u"%1.wav"_s.arg(i)), wave(static_cast<char>(i)));
        std::optional<MainWindow> window(std::in_place);
        const QPointer<QThread> thread = window->findChild<QThread *>(u"epr-scan"_s);
        QVERIFY(thread && thread->isRunning());
        window->addFolder(m_folder->path());
        window->onStartScan();
        QTRY_VERIFY(logOf(*window).contains("Analysis cache"_L1));
        window.reset();
        QVERIFY(!thread);
    }

    void foldersSurviveARestartWhileTheyExist()
    {
        const QDir root(m_folder->path());
        QVERIFY(root.mkpath(u"stays"_s) && root.mkpath(u"goes"_s));
        {
            MainWindow window;
            window.addFolder(root.filePath(u"goes"_s));
            window.addFolder(root.filePath(u"stays"_s));
            window.close();
        }
        QVERIFY(QDir(root.filePath(u"goes"_s)).removeRecursively());
        MainWindow window;
        QCOMPARE(foldersOf(window), QStringList { root.filePath(u"stays"_s) });
        window.close();
        QCOMPARE(SettingsStore().folders(), QStringList { root.filePath(u"stays"_s) });
        QCOMPARE(SettingsStore().loadScanOptions().roots, QStringList());
    }

    void onlyFoldersMayBeDropped()
    {
        writeFile(m_folder->filePath(u"song.mp3"_s), "x");
        const QUrl folder = QUrl::fromLocalFile(m_folder->path());
        const QUrl song = QUrl::fromLocalFile(m_folder->filePath(u"song.mp3"_s));
        MainWindow window;
        bool accepted = true;
        drop(window, { song, QUrl(u"https://radio.example/folder"_s) }, &accepted);
        QVERIFY(!accepted);
        drop(window, { song, folder, folder }, &accepted);
        QVERIFY(accepted);
        QCOMPARE(foldersOf(window), QStringList { m_folder->path() });

        part<QListWidget>(window, u"folderList"_s)->selectAll();
        window.onRemoveFolder();
        QCOMPARE(foldersOf(window), QStringList());
    }

    void ticksChangeTheSummary()
    {
        MainWindow window;
        window.show();
        showTwoCopies(window);
        QVERIFY(summaryOf(window).endsWith("selected for removal: 1 file(s), 2.00 MB."_L1));
        window.onInvertSelection();
        window.onSelectDuplicates();
        QTreeView *tree = treeOf(window);
        tree->setCurrentIndex(tree->model()->index(0, ResultsModel::TitleColumn, tree->model()->index(0, 0)));
        QTest::keyClick(tree, Qt::Key_Space);
        QVERIFY(summaryOf(window).endsWith("selected for removal: 2 file(s), 4.00 MB."_L1));
        window.onClearSelection();
        QVERIFY(summaryOf(window).endsWith("selected for removal: 0 file(s), 0 bytes."_L1));
    }

    void filterWithoutAHitSaysSo()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        showTwoCopies(window);
        auto *filter = part<QLineEdit>(window, u"filterEdit"_s);
        filter->setText(u"TWO"_s);
        const QAbstractItemModel *rows = treeOf(window)->model();
        QCOMPARE(rows->rowCount(rows->index(0, 0)), 1);
        QVERIFY(treeOf(window)->isExpanded(rows->index(0, 0)));
        QCOMPARE(hintOf(window), QString());
        filter->setText(u"three"_s);
        QCOMPARE(rows->rowCount(), 0);
        QVERIFY(hintOf(window).contains("filter"_L1));
        filter->setFocus();
        QTest::keyClick(filter, Qt::Key_Escape);
        QCOMPARE(rows->rowCount(rows->index(0, 0)), 2);
    }

    void memberMenuActsOnItsCopy()
    {
        MainWindow window;
        window.show();
        showTwoCopies(window);
        chooseFromMenu(window, 1, u"playMember"_s);
        QCOMPARE(m_opened, QUrl::fromLocalFile(u"/music/<two> & more.mp3"_s));
        chooseFromMenu(window, 1, u"openMemberFolder"_s);
        QCOMPARE(m_opened, QUrl::fromLocalFile(u"/music"_s));
        chooseFromMenu(window, 1, u"copyMemberPath"_s);
        QCOMPARE(QGuiApplication::clipboard()->text(), QDir::toNativeSeparators(u"/music/<two> & more.mp3"_s));
        QCOMPARE(part<QLabel>(window, u"statusLabel"_s)->text(), u"Path copied to clipboard."_s);
        chooseFromMenu(window, 1, u"keepMember"_s);
        const QAbstractItemModel *rows = treeOf(window)->model();
        QCOMPARE(rows->index(1, ResultsModel::MatchColumn, rows->index(0, 0)).data(), u"KEEP"_s);

        Box box;
        answerNextBox(QMessageBox::Ok, &box);
        chooseFromMenu(window, 1, u"showMemberDetails"_s);
        QCOMPARE(box.title, u"File details"_s);
        QVERIFY(box.text.contains("&lt;two&gt; &amp; more.mp3"_L1));
        QVERIFY(box.text.contains("c0ffee"_L1));
        QVERIFY(box.text.contains("not computed"_L1));
    }

private:
    static inline QString s_home; ///< settings and data of this test
    std::optional<QTemporaryDir> m_folder;
    QUrl m_opened;
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
