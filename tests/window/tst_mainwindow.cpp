// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanupcommand.h"
#include "compareplayer.h"
#include "folderpanel.h"
#include "mainactions.h"
#include "memberactions.h"
#include "problemsdock.h"
#include "problemsmodel.h"
#include "protectiondesk.h"
#include "resultspanel.h"
#include "reviewfiles.h"

#include "hole.h"
#include "reviewsketch.h"
#include "windowsupport.h"

#include <QClipboard>
#include <QInputDialog>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QTableView>
#include <QThread>
#include <QToolButton>

#include <cmath>

using namespace epr;
using namespace epr::test;

namespace {

QStringList foldersOf(const MainWindow &window)
{
    return window.findChild<FolderPanel *>()->folders();
}

QTreeView *resultsOf(const MainWindow &window)
{
    return window.findChild<QTreeView *>(u"resultsView"_s);
}

QString hintOf(const MainWindow &window)
{
    const auto *hint = resultsOf(window)->viewport()->findChild<QLabel *>();
    return hint->isVisibleTo(resultsOf(window)) ? hint->text() : QString();
}

// Two copies of one track, so that there is something to see without a scan.
void showTwoCopies(MainWindow &window)
{
    TrackInfo track;
    track.path = u"/music/one.mp3"_s;
    track.size = 2 << 20;
    track.fullHash = u"c0ffee"_s;
    TrackInfo copy = track;
    copy.path = u"/music/<two> & more.mp3"_s;
    copy.fileName = u"<two> & more.mp3"_s;
    window.show();
    window.onScanFinished({ track, copy }, { { .members = { 0, 1 }, .keep = 0, .reclaimableBytes = 2 << 20 } }, false,
                          1500);
}

QString matchOf(const MainWindow &window, int member)
{
    const QAbstractItemModel *rows = resultsOf(window)->model();
    return rows->index(member, ResultsModel::MatchColumn, rows->index(0, 0)).data().toString();
}

/// Twelve seconds of four voices and noise; a part from the sixth second on is silent.
QByteArray melody(int silentSeconds = 0)
{
    constexpr int rate = 8000;
    QByteArray samples;
    for (int i = 0; i < 12 * rate; ++i) {
        double value = 112 + static_cast<int>((static_cast<unsigned>(i) * 1103515245U + 12345U) >> 16 & 31U);
        for (int voice = 0; voice < 4; ++voice) {
            const int note = i / (1500 + 400 * voice);
            const double pitch = 150 * std::pow(2, note * (note + 7919 + voice) * 31 % 47 / 12.0);
            value += 18 * std::sin(i * pitch * 6.2832 / rate);
        }
        const bool isSilent = i >= 6 * rate && i < (6 + silentSeconds) * rate;
        samples += static_cast<char>(isSilent ? 0x80 : static_cast<int>(value));
    }
    return waveOf(0, 12).replace(44, samples.size(), samples);
}

TrackInfo trackOf(const QString &path)
{
    TrackInfo track;
    track.path = path;
    track.fileName = QFileInfo(path).fileName();
    track.suffix = u"wav"_s;
    track.size = QFileInfo(path).size();
    track.mtime = QFileInfo(path).lastModified();
    track.stream.durationMs = 12000;
    return track;
}

void press(const QKeyCombination &keys)
{
    QTest::keyClick(QApplication::focusWidget()->window()->windowHandle(), keys.key(), keys.keyboardModifiers());
}

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

public:
    // Called before the application object exists, which looks at these places when it starts.
    static void initMain() { static const TemporaryHome home; }

private Q_SLOTS:
    void initTestCase()
    {
        setUpApplication();
        startup::createDataFolder();
        QVERIFY(QSettings().fileName().startsWith(QDir::tempPath())); // they are cleared
    }

    void init()
    {
        QSettings().clear();
        forgetReview();
        m_folder.emplace();
    }

    void commandLineFoldersComeOnceAndInOrder()
    {
        writeFile(m_folder->filePath(u"A/file"_s), "x");
        writeFile(m_folder->filePath(u"B/file"_s), "x");
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_folder->path()));
        const QString here = QDir::currentPath();
        const startup::Arguments arguments = startup::processArguments(
            words("echoprune -s " + here.toUtf8() + "/A -s B --scan A/ -s A/file -s none") << u"-s"_s << QString());
        MainWindow window;
        startup::open(window, arguments);
        QDir::setCurrent(before);
        QVERIFY(window.isVisible() && !window.isScanning());
        QCOMPARE(foldersOf(window), (QStringList { here + "/A"_L1, here + "/B"_L1 }));
        auto *list = window.findChild<QListWidget *>(u"folderList"_s);
        QCOMPARE(list->item(1)->text(), native(here + "/B"_L1));
        list->setCurrentRow(0);
        window.onRemoveFolder();
        QCOMPARE(foldersOf(window), QStringList(here + "/B"_L1));
    }

    void startClearsUpAfterACleanUpThatWasKilled()
    {
        const QDir data(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
        const QString halfList = data.filePath(u"undo/undo-20260101-000000.json.AbCdEf"_s);
        writeFile(halfList, "{");
        const MainWindow window;
        QTRY_VERIFY(logs(window, u"Removed 1 unfinished"_s));
        QVERIFY(!QFileInfo::exists(halfList));
    }

    void scansFillTheTree()
    {
        writeFile(m_folder->filePath(u"one.wav"_s), waveOf(1));
        writeFile(m_folder->filePath(u"two.wav"_s), waveOf(2));
        MainWindow window;
        window.show();
        scan(window, m_folder->path());
        QCOMPARE(summaryOf(window), u"Scanned 2 files - no duplicates found."_s);
        QVERIFY(hintOf(window).contains("No duplicates"_L1));

        writeFile(m_folder->filePath(u"sub/one again.wav"_s), waveOf(1));
        QVERIFY(QTest::qWaitForWindowActive(&window));
        window.findChild<QListWidget *>(u"folderList"_s)->setFocus();
        window.onStartScan();
        QVERIFY(window.isScanning());
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), 60000);
        QCOMPARE(resultsOf(window)->model()->rowCount(), 1);
        QVERIFY(resultsOf(window)->isExpanded(resultsOf(window)->model()->index(0, 0)));
        QVERIFY(resultsOf(window)->hasFocus() && resultsOf(window)->currentIndex().isValid());
        QVERIFY(summaryOf(window).startsWith("3 files scanned - 1 duplicate groups - 1 redundant copies"_L1));

        writeFile(m_folder->filePath(u"gone/file"_s), "x");
        for (const bool gone : { true, false }) {
            window.addFolder(m_folder->filePath(u"gone"_s));
            if (gone)
                QVERIFY(QDir(m_folder->path()).rename(u"gone"_s, u"away"_s));
            scan(window, m_folder->path());
            QCOMPARE(summaryOf(window).endsWith(" (incomplete: 1 folder(s) could not be read)"_L1), gone);
            QVERIFY(!gone || QDir(m_folder->path()).rename(u"away"_s, u"gone"_s));
        }
    }

    // Enough to hash that the scan is still at it when the answers come.
    void closingDuringAScanAsks()
    {
        for (const QString &name : words("a b c d e f g h i j k l"))
            QVERIFY(makeHole(m_folder->filePath(name + ".wma"_L1), 1 << 30));
        MainWindow window;
        window.show();
        window.addFolder(m_folder->path());
        window.onStartScan();
        auto *pause = window.findChild<MainActions *>()->pauseScan;
        for (const QString &word : { u"Resume"_s, u"Pause"_s, u"Resume"_s }) {
            pause->trigger();
            QCOMPARE(pause->text(), word);
            QCOMPARE(window.windowTitle().startsWith("Paused: "_L1), word == "Resume"_L1);
        }
        SeenBox box;
        answerNextBox(QMessageBox::No, &box);
        QVERIFY(!window.close() && window.isVisible() && window.isScanning());
        QCOMPARE(box.title + box.text, u"Scan in progressA scan is still running. Stop it and close Echoprune?"_s);
        QCOMPARE(box.defaultButton, QMessageBox::No);
        answerNextBox(QMessageBox::Yes, &box);
        QVERIFY(window.close() && !window.isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), 60000);
        QVERIFY(logs(window, u"--- Scan cancelled after "_s));
        QVERIFY(hintOf(window).contains("What was analysed is kept"_L1));
        QVERIFY(!pause->isEnabled() && pause->text() == "Pause"_L1);
        QCOMPARE(SettingsStore().value(settings::folders), QStringList { m_folder->path() });
    }

    // A thread that had not ended in time would be left behind instead of going with its window.
    void windowMayGoInTheMiddleOfAScan()
    {
        writeFile(m_folder->filePath(u"one.wav"_s), waveOf(1, 3600));
        std::optional<MainWindow> window(std::in_place);
        const QPointer<QThread> thread = window->findChild<QThread *>(u"epr-scan"_s);
        QVERIFY(thread && thread->isRunning());
        window->addFolder(m_folder->path());
        window->onStartScan();
        QTRY_VERIFY(logs(*window, u"Analysis cache"_s));
        window.reset();
        QVERIFY(!thread);
    }

    void foldersSurviveARestartWhileTheyExist()
    {
        const QStringList folders { m_folder->filePath(u"goes"_s), m_folder->filePath(u"stays"_s) };
        for (const QString &folder : folders) {
            MainWindow window;
            QVERIFY(QDir().mkpath(folder) && window.addFolder(folder));
#ifdef Q_OS_WIN
            QVERIFY(!window.addFolder(folder.toUpper()));
#else
            QVERIFY(QFile::link(folder, folder + u"2"_s) && !window.addFolder(folder + u"2"_s));
#endif
        } // without a close, as when the program is killed
        QCOMPARE(SettingsStore().value(settings::folders), folders);
        QVERIFY(QDir(folders.first()).removeRecursively());
        MainWindow window;
        QCOMPARE(foldersOf(window), folders.last(1));
        window.close();
        QCOMPARE(SettingsStore().value(settings::folders), folders.last(1));
    }

    void foldersFoldOnceThereAreGroups()
    {
        const auto isOpen = [](const MainWindow &window) {
            return window.findChild<QListWidget *>(u"folderList"_s)->isVisible();
        };
        for (const bool stays : { false, true, true }) { // each start goes on with what the one before left
            MainWindow window;
            window.show();
            QVERIFY(QTest::qWaitForWindowActive(&window));
            window.addFolder(m_folder->path());
            QVERIFY(isOpen(window));
            window.findChild<QListWidget *>(u"folderList"_s)->selectAll();
            const int resultsBefore = resultsOf(window)->height();
            showTwoCopies(window);
            QCOMPARE(isOpen(window), stays);
            if (stays)
                continue;
            QTRY_VERIFY(resultsOf(window)->height() > resultsBefore + 40);
            const QString line = window.findChild<QLabel *>(u"foldedFolders"_s)->text();
            QVERIFY2(line.startsWith("1 folder(s), 2 files: "_L1), qPrintable(line));
            window.onRemoveFolder(); // nothing that nobody sees
            QCOMPARE(foldersOf(window).size(), 1);
            press(Qt::Key_F7);
            QVERIFY(isOpen(window));
            window.close();
        }
    }

    void protectedCopiesAreLockedByWhateverPath()
    {
        const auto path = [this](const QString &name) { return m_folder->filePath(name); };
        QVERIFY(QDir(m_folder->path()).mkpath(u"safe/inner"_s));
        if (!QFile::link(path(u"safe"_s), path(u"alias"_s)) || !QFileInfo(path(u"alias/inner"_s)).isDir())
            QSKIP("This system has no links that Qt can make");
        Lists lists = listsOf(u"a* b / c* d"_s);
        lists.tracks[1].path = path(u"alias/inner/b.mp3"_s);
        lists.tracks[3].path = path(u"safer/d.mp3"_s);
        Review review;
        ResultsModel model(review);
        QAction action;
        FolderPanel panel(&action, &action);
        const ProtectionDesk desk(review, panel, nullptr);
        panel.protect({ path(u"safe"_s) });
        review.setResults(lists.tracks, lists.groups);
        QTRY_VERIFY(review.isProtected(1));
        QCOMPARE(sketchOf(review), u"a* b / c* d!"_s);
        const QModelIndex locked = model.memberIndex(0, 1);
        QVERIFY(locked.data(ResultsModel::LockRole).toBool());
        QVERIFY(locked.data(Qt::AccessibleTextRole).toString().startsWith("b.mp3, protected, "_L1));
        panel.findChild<QListWidget *>()->selectAll();
        panel.removeSelected();
        QTRY_VERIFY(!locked.data(ResultsModel::LockRole).toBool());
    }

    void protectionOutlivesTheListAndItsDrive()
    {
        const QString music = m_folder->filePath(u"music"_s);
        const QString part = m_folder->filePath(u"music/playout"_s);
        const QString away = m_folder->filePath(u"away"_s);
        QVERIFY(QDir().mkpath(part));
        const auto stored = [] { return SettingsStore().value(settings::protectedFolders); };
        const auto protect = [](const MainWindow &window, const QStringList &folders) {
            window.findChild<FolderPanel *>()->protect(folders);
        };
        {
            MainWindow window;
            QVERIFY(window.addFolder(music));
            protect(window, { part, away });
            QCOMPARE(stored(), QStringList({ part, away })); // at once, not only when the window closes
            window.close();
        }
        MainWindow window;
        QCOMPARE(foldersOf(window), QStringList(music));
        QCOMPARE(window.findChild<FolderPanel *>()->protectedFolders(), QStringList({ part, away }));
        protect(window, { music });
        auto *list = window.findChild<QListWidget *>(u"folderList"_s);
        for (const QStringList &left : { QStringList { music, part, away }, QStringList { part, away } }) {
            list->setCurrentRow(0);
            window.onRemoveFolder();
            QCOMPARE(stored(), left); // a folder that was scanned, too, is protected until it is removed again
            QVERIFY(foldersOf(window).isEmpty());
        }
        QVERIFY(window.addFolder(part)); // scanned now, in its row
        QCOMPARE(list->count(), 2);
        list->setCurrentRow(0);
        window.findChild<FolderPanel *>()->protectActions().first()->trigger();
        QCOMPARE(stored(), QStringList(away));
        QCOMPARE(foldersOf(window), QStringList(part));
    }

    void reviewNeedsNoMouse()
    {
        MainWindow window;
        showTwoCopies(window);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(summaryOf(window).contains("removal: 1 file(s), 2.00 MB."_L1));
        press(Qt::CTRL | Qt::Key_F);
        for (const Qt::Key letter : { Qt::Key_A, Qt::Key_B })
            press(letter); // letters, although they also switch decks
        QCOMPARE(window.findChild<QLineEdit *>(u"filterEdit"_s)->text(), u"ab"_s);
        QVERIFY(hintOf(window).contains("filter"_L1));
        press(Qt::Key_Escape);
        QCOMPARE(hintOf(window), QString());
        press(Qt::CTRL | Qt::Key_Down);
        press(Qt::Key_Down);
        press(Qt::Key_Space);
        QVERIFY(summaryOf(window).contains("removal: 0 file(s)"_L1));
        press(Qt::CTRL | Qt::Key_K);
        QCOMPARE(matchOf(window, 1), u"KEEP"_s);
        auto *player = window.findChild<ComparePlayer *>();
        press(Qt::CTRL | Qt::Key_1);
        QCOMPARE(player->track(Deck::A).path, u"/music/<two> & more.mp3"_s);
        const auto isKept = [&](const QString &deck) {
            return !player->findChild<QWidget *>(deck)->findChild<QWidget *>(u"deckKept"_s)->isHidden();
        };
        QVERIFY(isKept(u"deckA"_s));
        press(Qt::Key_Up);
        press(Qt::Key_Return); // the free deck
        QCOMPARE(player->track(Deck::B).path, u"/music/one.mp3"_s);
        const QModelIndex loaded = resultsOf(window)->currentIndex().siblingAtColumn(0);
        QVERIFY(loaded.data(Qt::AccessibleTextRole).toString().contains(", in deck B, "_L1));
        QVERIFY(!isKept(u"deckB"_s));
        press(Qt::CTRL | Qt::Key_K);
        QVERIFY(isKept(u"deckB"_s) && !isKept(u"deckA"_s));
        press(Qt::Key_Down);
        press(Qt::CTRL | Qt::Key_K);
        press(Qt::Key_Up);
        press(Qt::Key_B);
        QCOMPARE(player->monitor(), Deck::B);
        press(Qt::Key_X);
        QCOMPARE(player->monitor(), Deck::A);
        press(Qt::CTRL | Qt::Key_Return); // the kept copy on deck A, the current one on deck B
        QCOMPARE(player->track(Deck::A).path, u"/music/<two> & more.mp3"_s);
        press(Qt::Key_Down);
        SeenBox box;
        answerNextBox(QMessageBox::Ok, &box);
        press(Qt::ALT | Qt::Key_Return);
        QCOMPARE(box.title, u"File details"_s);
        for (const QString &text : { u"&lt;two&gt; &amp; more.mp3"_s, u"c0ffee"_s, u"not computed"_s })
            QVERIFY2(box.text.contains(text), qPrintable(box.text));
        QCOMPARE(window.focusWidget(), resultsOf(window));
    }

    // Commands must not act on a copy that is out of sight, and nobody wants to look for their place again.
    void placeSurvivesAFilterAndARemoval()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const Lists lists = listsOf(u"a* b / c* d / e* f"_s);
        window.onScanFinished(lists.tracks, lists.groups, false, 1);
        auto *review = window.findChild<Review *>();
        const auto *member = window.findChild<MemberActions *>();
        const auto current = [&] {
            const QModelIndex index = resultsOf(window)->currentIndex();
            return index.isValid() ? index.siblingAtColumn(0).data().toString().section(u'.', 0, 0) : QString();
        };
        press(Qt::CTRL | Qt::Key_Down);
        QCOMPARE(current(), u"a"_s);
        press(Qt::CTRL | Qt::Key_Down);
        press(Qt::Key_Down);
        auto *filter = window.findChild<QLineEdit *>(u"filterEdit"_s);
        filter->setText(u"title of c"_s);
        QVERIFY(current().isEmpty() && !member->keep->isEnabled() && !member->showDetails->isEnabled());
        press(Qt::CTRL | Qt::Key_K);
        QCOMPARE(review->groups().at(1).keep, 2);
        filter->clear();
        QCOMPARE(current(), u"d"_s);
        review->removeMembers({ 3 });
        QCOMPARE(current(), u"e"_s);
        QVERIFY(member->showDetails->isEnabled());
        press(Qt::CTRL | Qt::Key_Up);
        QCOMPARE(current(), u"a"_s);
    }

    void selectedRowsAreDecidedTogether()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const Lists lists = listsOf(u"k* l / m* n o / r* s / t* u"_s);
        window.onScanFinished(lists.tracks, lists.groups, false, 1);
        auto *review = window.findChild<Review *>();
        press(Qt::CTRL | Qt::Key_Down); // k
        for (int step = 0; step < 8; ++step) // to s, over the rows of the groups
            press(Qt::SHIFT | Qt::Key_Down);
        press(Qt::CTRL | Qt::Key_K); // s alone is one of its group and the current one
        QCOMPARE(sketchOf(*review), u"k* l! / m* n! o! / r! s* / t* u!"_s);
        press(Qt::Key_G);
        for (int group = 0; group < 4; ++group)
            QCOMPARE(review->state(group), group < 3 ? GroupState::Done : GroupState::Undecided);
        QCOMPARE(resultsOf(window)->selectionModel()->selectedRows().size(), 1); // and on to the next group
        press(Qt::Key_Space);
        QCOMPARE(sketchOf(*review), u"k* l! / m* n! o! / r! s* / t*! u!"_s);
        review->undo();
        review->undo();
        QCOMPARE(review->state(1), GroupState::Undecided);
        window.findChild<ResultsPanel *>()->showMember(0, 1);
        press(Qt::CTRL | Qt::SHIFT | Qt::Key_C);
        QCOMPARE(QGuiApplication::clipboard()->text(), native(u"/music/l.mp3"_s));
        press(Qt::SHIFT | Qt::Key_Up);
        press(Qt::SHIFT | Qt::Key_Up); // the group's own row
        press(Qt::Key_N);
        QVERIFY(review->state(0) == GroupState::NotDuplicates && review->totals().setAside == 1);
    }

    void groupsAreDecidedByOneKeyEach()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const Lists lists = listsOf(u"a* b / c* d / e* f"_s);
        window.onScanFinished(lists.tracks, lists.groups, false, 1);
        const auto *review = window.findChild<Review *>();
        const auto currentGroup = [&] {
            return resultsOf(window)->currentIndex().data(ResultsModel::GroupRole).toInt();
        };
        press(Qt::CTRL | Qt::Key_Down);
        press(Qt::Key_N);
        QCOMPARE(review->state(0), GroupState::NotDuplicates);
        QCOMPARE(currentGroup(), 1);
        QVERIFY(summaryOf(window).endsWith("set aside as not duplicates."_L1));
        press(Qt::Key_G);
        QCOMPARE(currentGroup(), 2);
        QVERIFY(window.findChild<QLabel *>(u"progressText"_s)->text().startsWith("1 of 2 groups done"_L1));
        press(Qt::CTRL | Qt::Key_Up);
        press(Qt::Key_G); // once more takes it back
        QCOMPARE(review->state(1), GroupState::Undecided);
        QCOMPARE(currentGroup(), 1);
        for (int step = 0; step < 3; ++step)
            press(Qt::CTRL | Qt::Key_Z);
        QCOMPARE(review->state(0), GroupState::Undecided);
        QCOMPARE(currentGroup(), 0);
        press(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
        QCOMPARE(review->state(0), GroupState::NotDuplicates);
        press(Qt::CTRL | Qt::Key_F);
        press(Qt::Key_X);
        press(Qt::CTRL | Qt::Key_Z); // of the text that is being typed
        QCOMPARE(review->state(0), GroupState::NotDuplicates);
    }

    void problemsAreOneKeyAway()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        Lists lists = listsOf(u"p* q / r* s / t* u / v* w"_s);
        lists.groups[2].check.measures = { { 4, { .error = u"broken"_s } }, { 5, {} } };
        window.onScanFinished(lists.tracks, lists.groups, false, 1);
        auto *review = window.findChild<Review *>();
        const auto *note = window.findChild<QToolButton *>(u"problemNote"_s);
        const auto goOn = [&] {
            press(Qt::Key_P);
            return resultsOf(window)->currentIndex().data(ResultsModel::GroupRole).toInt();
        };
        const auto problemOf = [&](int row) {
            return resultsOf(window)
                ->model()
                ->index(row, 0)
                .data(Qt::AccessibleTextRole)
                .toString()
                .section(u", "_s, 1);
        };
        QTRY_COMPARE(note->text(), u"1 group(s) to look at"_s);
        QCOMPARE(goOn(), 2);
        review->setTicked(0, 0, true);
        review->setFileStates({ { 6, FileState::Vanished } });
        QTRY_COMPARE(note->text(), u"3 group(s) to look at"_s);
        for (const auto &[group, problem] : { std::pair(3, u"the kept copy is no longer there"_s),
                                              { 0, u"every copy is ticked"_s },
                                              { 2, u"the kept copy is the worse one"_s } }) {
            QCOMPARE(goOn(), group);
            QCOMPARE(problemOf(group), problem);
        }
        review->setState({ 2 }, GroupState::Done); // the operator knows
        review->setTicked(0, 1, false);
        review->setKeeper(3, 7);
        QTRY_VERIFY(!note->isVisible());
        QCOMPARE(goOn(), 2);
    }

    void whatFailedIsListed()
    {
        writeFile(m_folder->filePath(u"one.wav"_s), melody());
        writeFile(m_folder->filePath(u"one again.wav"_s), melody());
        writeFile(m_folder->filePath(u"broken.flac"_s), QByteArray(100000, 'x'));
        writeFile(m_folder->filePath(u"gone/file"_s), "x");
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        window.addFolder(m_folder->filePath(u"gone"_s));
        QVERIFY(QDir(m_folder->path()).rename(u"gone"_s, u"away"_s));
        scan(window, m_folder->path());
        auto *list = window.findChild<QTableView *>(u"problemList"_s);
        const auto *dock = window.findChild<ProblemsDock *>();
        const auto select = [&](const QString &file, const QString &attempt) {
            for (int row = 0; row < list->model()->rowCount(); ++row) {
                const QModelIndex cell = list->model()->index(row, 0);
                if (cell.data() == file && cell.siblingAtColumn(ProblemsModel::AttemptColumn).data() == attempt)
                    list->setCurrentIndex(cell);
            }
            return list->currentIndex().data().toString() == file;
        };
        QCOMPARE(list->model()->rowCount(), 2);
        QVERIFY(select(u"gone"_s, u"Reading the folder"_s) && select(u"broken.flac"_s, u"Scan"_s));
        QVERIFY(dock->tryAgain->isEnabled() && !dock->goToRow->isEnabled());

        const auto *review = window.findChild<Review *>();
        const QString copy = review->track(0, review->isKeeper(0, 0) ? 1 : 0)->path;
        window.findChild<CleanupCommand *>()->removalEnded({}, { { copy, Attempt::Remove, u"in use"_s } });
        QVERIFY(select(QFileInfo(copy).fileName(), u"Removal"_s));
        QCOMPARE(dock->windowTitle(), u"Problems (3)"_s);
        dock->goToRow->trigger();
        QCOMPARE(resultsOf(window)->currentIndex().siblingAtColumn(0).data().toString(), QFileInfo(copy).fileName());

        window.findChild<CleanupCommand *>()->removalEnded({ copy }, {});
        QVERIFY(QDir(m_folder->path()).rename(u"away"_s, u"gone"_s));
        QVERIFY(QFile::remove(m_folder->filePath(u"broken.flac"_s)));
        QVERIFY(select(u"broken.flac"_s, u"Scan"_s));
        dock->tryAgain->trigger();
        QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), 60000);
        QCOMPARE(dock->windowTitle(), u"Problems"_s);
    }

    void decisionsOutliveTheProgramAndAScan()
    {
        for (const QString &name : words("a1 a2 a3 b1 b2 c1 c2"))
            writeFile(m_folder->filePath(name + u".wav"_s),
                      waveOf(name.front().toLatin1(),
                             name.startsWith(u'a')       ? 20
                                 : name.startsWith(u'b') ? 9
                                                         : 6));
        const QString done = u"a1! a2* a3 / b1* b2! / c1* c2"_s;
        {
            MainWindow window;
            window.show();
            scan(window, m_folder->path());
            auto *review = window.findChild<Review *>();
            review->setKeeper(0, review->groups().at(0).members.at(1));
            review->setTicked(0, 2, false);
            review->setState({ 1 }, GroupState::Done);
            review->setTicked(2, 1, false);
            resultsOf(window)->setCurrentIndex(
                resultsOf(window)->model()->index(1, 0, resultsOf(window)->model()->index(0, 0)));
            window.close();
        }
        {
            MainWindow window;
            window.show();
            const auto *review = window.findChild<Review *>();
            QTRY_COMPARE(sketchOf(*review), done);
            QVERIFY(logs(window, u"The review of "_s) && summaryOf(window).startsWith("7 files scanned - 3 "_L1));
            QCOMPARE(resultsOf(window)->currentIndex().siblingAtColumn(0).data().toString(), u"a2.wav"_s);
            QVERIFY(window.findChild<MainActions *>()->removeSelected->isEnabled() && resultsOf(window)->hasFocus());
            window.onStartScan();
            window.onStopScan();
            QTRY_VERIFY_WITH_TIMEOUT(!window.isScanning(), 60000);
            QCOMPARE(sketchOf(*review), done); // also if the scan was quicker
            writeFile(m_folder->filePath(u"b3.wav"_s), waveOf('b', 9));
            scan(window, m_folder->path());
            QCOMPARE(sketchOf(*review), u"a1! a2* a3 / b1* b2! b3! / c1* c2"_s);
            QVERIFY(logs(window, u"Carried over from the last review: 1 kept copies, 2 ticks, 0 groups done."_s));
        }
        MainWindow window; // its scan begins before the file was read
        scan(window, m_folder->path());
        QCOMPARE(sketchOf(*window.findChild<Review *>()), u"a1! a2* a3 / b1* b2! b3! / c1* c2"_s);
        QVERIFY(!logs(window, u"This scan is of other folders."_s));
        window.findChild<QListWidget *>(u"folderList"_s)->setCurrentRow(0);
        window.onRemoveFolder();
        writeFile(m_folder->filePath(u"other/d.wav"_s), waveOf('d'));
        scan(window, m_folder->filePath(u"other"_s));
        QVERIFY(logs(window, u"This scan is of other folders. What was decided until now is saved as Review of "_s));
    }

    void reviewsHaveNames()
    {
        const QStringList names { u"ends: a/b?"_s, u"50 %, Ünder.."_s, u"con"_s };
        for (const QString &name : names)
            QCOMPARE(reviewName(reviewFileName(name)), name);
        QCOMPARE(reviewFileName(names.first()), u"review-ends%3a a%2fb%3f.sqlite"_s);
        QVERIFY(!reviewFileName(QString(100, u'ü')).isEmpty() && reviewFileName(QString(101, u'ü')).isEmpty());

        MainWindow window;
        window.show();
        auto *review = window.findChild<Review *>();
        const auto run = [&](int command) {
            window.findChild<ReviewFiles *>()->menu()->actions().at(command)->trigger();
        };
        const auto type = [](const QString &name) {
            withNext<QInputDialog>([name](QInputDialog *dialog) {
                dialog->setTextValue(name);
                dialog->accept();
            });
        };
        const Lists lists = listsOf(u"a* b c"_s);
        window.onScanFinished(lists.tracks, lists.groups, false, 1);
        review->setTicked(0, 1, false);
        type(names.first());
        run(0);
        QVERIFY(logs(window, u"The review is saved as ends: a/b?."_s));
        review->setTicked(0, 2, false);
        SeenBox box;
        for (const auto answer : { QMessageBox::No, QMessageBox::Yes }) {
            type(names.first());
            answerNextBox(answer, &box);
            run(1);
            QCOMPARE(box.title, u"Open review"_s);
            QCOMPARE(sketchOf(*review), answer == QMessageBox::No ? u"a* b c"_s : u"a* b c!"_s);
        }
        type(names.first());
        answerNextBox(QMessageBox::Yes, &box);
        run(2);
        answerNextBox(QMessageBox::Ok, &box);
        run(1);
        QCOMPARE(box.text, u"No review was saved under a name."_s);
    }

    void groupsAreCheckedOverTheirWholeLength()
    {
        const QStringList names { u"a.wav"_s, u"b.wav"_s, u"c.wav"_s };
        QList<TrackInfo> tracks;
        for (const QString &name : names) {
            writeFile(m_folder->filePath(name), melody(name == u"b.wav"_s ? 2 : 0));
            tracks << trackOf(m_folder->filePath(name));
        }
        MainWindow window;
        window.show();
        const auto *text = window.findChild<QLabel *>(u"checkText"_s);
        window.onScanFinished(tracks,
                              { { .id = 1, .matchType = MatchType::SameRecording, .members = { 0, 1, 2 }, .keep = 0 } },
                              false, 1);
        QCOMPARE(text->text(), u"1 group(s) were compared over their first 60 s."_s);
        QVERIFY(text->isVisible());
        auto *check = window.findChild<QPushButton *>(u"checkWholeButton"_s);
        check->setFocus();
        check->click();
        QTRY_VERIFY_WITH_TIMEOUT(!text->isVisible(), 120000);
        QCOMPARE(window.focusWidget(), resultsOf(window));
        QCOMPARE(matchOf(window, 1), u"silent 0:06-0:08"_s);
        QCOMPARE(matchOf(window, 2), u"alike to the end"_s);
        QVERIFY(logs(window,
                     u"Checked over the whole length: 0 group(s) alike to the end, 1 with copies that differ, 1 "
                     "copy(s) unticked."_s));
        const auto *review = window.findChild<Review *>();
        QVERIFY(!review->isTicked(0, 1) && review->isTicked(0, 2));

        QVERIFY(QTest::qWaitForWindowActive(&window));
        press(Qt::Key_F3);
        const ComparePlayer *player = window.findChild<ComparePlayer *>();
        QCOMPARE(player->track(Deck::A).path, tracks.at(0).path);
        QCOMPARE(player->track(Deck::B).path, tracks.at(1).path);
        QCOMPARE(resultsOf(window)->currentIndex().row(), 1);
        window.findChild<Review *>()->setKeeper(0, 1);
        QCOMPARE(matchOf(window, 0), u"the kept copy is silent 0:06-0:08"_s);
        press(Qt::CTRL | Qt::SHIFT | Qt::Key_K);
        QVERIFY(review->isKeeper(0, 0));
    }

private:
    std::optional<QTemporaryDir> m_folder;
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
