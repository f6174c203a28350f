// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanup.h"
#include "cleanupsdialog.h"
#include "filelook.h"
#include "removaldialog.h"
#include "removalpreview.h"
#include "review.h"
#include "runwithprogress.h"
#include "undomanifest.h"

#include "reviewsketch.h"
#include "rows.h"
#include "sandbox.h"
#include "windowsupport.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QRadioButton>
#include <QThread>
#include <QTreeWidget>

using namespace epr;
using namespace epr::test;

namespace {

/// Sits before the screen: deals with every dialog that comes up, as it was told to, and remembers what was said.
class Operator final {
public:
    Operator()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.setSingleShot(true); // started anew each time, it also fires inside the dialogs that a click opens
        m_timer.start(1);
    }

    RemovalMode mode = RemovalMode::Quarantine;
    QDialogButtonBox::StandardButton removal = QDialogButtonBox::Ok;
    QMap<QString, QMessageBox::StandardButton> answers; ///< by title; other boxes get an OK
    QString newQuarantine; ///< chosen in the removal dialog unless empty
    QString stopAtFile = u"no file"_s; ///< when the progress dialog shows it

    std::function<void(CleanupsDialog *)> inHistory; ///< then it is closed
    std::function<void()> whileAsked; ///< happens behind the removal dialog

    bool wantsLog = false; ///< where a warning offers it

    QStringList boxes; ///< "title|text"
    bool isWarning = false; ///< the latest box
    QStringList offered; ///< clean-ups that could be undone
    QString hint; ///< of the removal dialog when it was left

private:
    void look()
    {
        m_timer.start(1);
        QWidget *dialog = QApplication::activeModalWidget();
        if (!dialog || !dialog->isVisible())
            return;
        if (auto *box = qobject_cast<QMessageBox *>(dialog)) {
            boxes << box->windowTitle() + u'|' + box->text();
            isWarning = box->icon() == QMessageBox::Warning;
            if (isWarning && wantsLog && box->buttons().size() == 2)
                box->buttons().last()->click();
            else
                box->button(answers.value(box->windowTitle(), QMessageBox::Ok))->click();
        } else if (auto *question = qobject_cast<RemovalDialog *>(dialog)) {
            answer(question);
        } else if (auto *history = qobject_cast<CleanupsDialog *>(dialog)) {
            if (const auto act = std::exchange(inHistory, {})) {
                act(history);
                history->reject();
            }
        } else if (auto *input = qobject_cast<QInputDialog *>(dialog)) {
            offered = input->comboBoxItems();
            input->accept();
        } else if (auto *chooser = qobject_cast<QFileDialog *>(dialog)) {
            chooser->selectFile(std::exchange(newQuarantine, {}));
            chooser->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open)->click();
        } else if (auto *file = dialog->findChild<QLabel *>(u"currentFile"_s); file->text().endsWith(stopAtFile)) {
            dialog->findChild<QPushButton *>()->click();
        }
    }

    void answer(RemovalDialog *dialog)
    {
        if (!newQuarantine.isEmpty())
            return dialog->findChildren<QPushButton *>().first()->click();
        if (whileAsked)
            whileAsked();
        hint = dialog->findChild<QLabel *>(u"quarantineHint"_s)->text();
        dialog->findChildren<QRadioButton *>().at(static_cast<int>(mode))->click();
        dialog->findChild<QDialogButtonBox *>()->button(removal)->click();
    }

    QTimer m_timer;
};

QString sha256(const QByteArray &content)
{
    return QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
}

/// A window with the results of a scan: groups of files, of which the first is kept and the others are ticked.
struct Session final : Sandbox {
    Session()
    {
        SettingsStore().set(settings::quarantineRoot, quarantine());
        window.emplace();
        window->addFolder(library());
        QList<TrackInfo> tracks;
        QList<MatchGroup> groups;
        for (const QStringList &names : { words("a1 a2"), words("b1 b2"), words("sub/c1 c2 sub/c3") }) {
            MatchGroup &group = groups.emplace_back();
            group.id = static_cast<qint32>(groups.size());
            group.keep = static_cast<qint32>(tracks.size());
            for (const QString &name : names) {
                group.members << static_cast<qint32>(tracks.size());
                TrackInfo &track = tracks.emplace_back();
                track.path = add(name);
                track.fileName = QFileInfo(track.path).fileName();
                track.size = 100;
                track.mtime = QFileInfo(track.path).lastModified();
                track.fullHash = sha256(readFile(track.path));
            }
        }
        window->show();
        window->onScanFinished(tracks, groups, false, 1);
        review = window->findChild<Review *>();
        before = treeOf(library());
    }

    /// The groups left in the tree as numbers and members: "1:2 3:4".
    [[nodiscard]] QString groups() const
    {
        QStringList rows;
        for (const MatchGroup &group : review->groups())
            rows << u"%1:%2"_s.arg(group.id).arg(group.members.size());
        return rows.join(u' ');
    }

    /// Ends the program and starts it again.
    void reopen()
    {
        window->close();
        window.emplace();
        window->show();
        review = window->findChild<Review *>();
        if (!QTest::qWaitFor([this] { return !review->groups().isEmpty(); }))
            qFatal("The review is not there again");
    }

    std::optional<MainWindow> window;
    Review *review = nullptr;
    Tree before;
    Operator person;
};

using Act = std::function<void(Session &)>;

} // namespace

Q_DECLARE_METATYPE(Act)

class TestCleanupCommand : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUpApplication(); }

    void wrongTicksAreRefused()
    {
        Session session;
        session.window->onClearSelection();
        session.window->onRemoveSelected();
        // The group in question may be hidden by the filter.
        session.window->onSelectDuplicates();
        session.review->setTicked(1, 0, true);
        session.window->findChild<QLineEdit *>(u"filterEdit"_s)->setText(u"no such music"_s);
        session.window->onRemoveSelected();
        const QString first = u"Nothing selected|Tick the copies you want removed, or use Select All Duplicates."_s;
        const QString second = u"Every copy selected|Group 2 has all of its copies ticked for removal. Untick at least "
                               "one so a copy survives."_s;
        QCOMPARE(session.person.boxes, QStringList({ first, second }));
        QVERIFY(session.window->findChild<QTreeView *>()->currentIndex().data().toString().startsWith("Group 2 "_L1));
        QCOMPARE(treeOf(session.library()), session.before);
    }

    void whatIsUntickedBehindTheDialogStays()
    {
        Session session;
        session.person.whileAsked = [&] { session.review->setFileStates({ { 3, FileState::Changed } }); };
        session.window->onRemoveSelected();
        QCOMPARE(sketchOf(*session.review), u"b1* b2"_s);
        QVERIFY(QFile::exists(session.library() + u"/b2"_s));
    }

    void commandsLeaveOutWhatAFilterHides()
    {
        Session session;
        const auto ticks = [&] { return sketchOf(*session.review); };
        session.window->findChild<QLineEdit *>(u"filterEdit"_s)->setText(u"c2"_s);
        session.person.answers = { { u"A filter is on"_s, QMessageBox::Cancel } };
        session.window->onClearSelection();
        session.window->onRemoveSelected();
        QCOMPARE(ticks(), u"a1* a2! / b1* b2! / c1* c2! c3!"_s);
        session.person.answers[u"A filter is on"_s] = QMessageBox::Yes;
        session.window->onClearSelection();
        QCOMPARE(ticks(), u"a1* a2! / b1* b2! / c1* c2 c3!"_s);
        session.window->onInvertSelection();
        session.review->setTicked(0, 0, true); // of a group that is hidden: none of this clean-up's business
        session.window->onRemoveSelected();
        QCOMPARE(ticks(), u"a1*! a2! / b1* b2! / c1* c3!"_s);
        QVERIFY(QFile::exists(session.library() + u"/sub/c3"_s));
        session.person.answers[u"A filter is on"_s] = QMessageBox::YesToAll;
        session.window->findChild<QLineEdit *>(u"filterEdit"_s)->setText(u"b1"_s);
        session.window->onSelectDuplicates();
        QCOMPARE(ticks(), u"a1* a2! / b1* b2! / c1* c3!"_s);
        QCOMPARE(session.person.boxes.constFirst(), u"A filter is on|1 of 3 groups are shown. 6 copy(s) are hidden."_s);
    }

    void nothingIsDeletedWithoutConsent()
    {
        Session session;
        session.review->setTicked(2, 1, false);
        Operator &person = session.person;
        person.mode = RemovalMode::Delete;
        person.answers[u"Permanent deletion"_s] = QMessageBox::Cancel;
        for (const auto button : { QDialogButtonBox::Cancel, QDialogButtonBox::Ok }) {
            person.removal = button;
            session.window->onRemoveSelected();
            QCOMPARE(person.boxes.size(), button == QDialogButtonBox::Ok ? 1 : 0);
            QCOMPARE(treeOf(session.library()), session.before);
        }
        person.answers[u"Permanent deletion"_s] = QMessageBox::Yes;
        session.window->onRemoveSelected();
        const QString question =
            u"Permanent deletion|3 file(s) will be deleted permanently and cannot be recovered.\n\n"
            "Are you certain?"_s;
        const QString end = u"Clean-up complete|Removed 3 file(s), freeing 300 bytes."_s;
        QCOMPARE(person.boxes, QStringList({ question, question, end }));
        QCOMPARE(treeOf(session.library()).keys(), words("a1 b1 c2 sub sub/c1"));
        QCOMPARE(session.groups(), u"3:2"_s);
        QVERIFY(logs(*session.window, u"Delete permanently: 3 succeeded, 0 failed, 300 bytes freed."_s));
    }

    void quarantineIsUndoneInTheWindow()
    {
        Session session;
        Operator &person = session.person;
        person.newQuarantine = session.inLibrary(u"&quarantine;"_s);
        QVERIFY(QDir().mkdir(person.newQuarantine));
        session.window->onRemoveSelected();
        QVERIFY(
            person.hint.endsWith("under<br>"_L1 + native(session.library() + u"/&amp;quarantine;"_s) + "</span>"_L1));
        QVERIFY(person.boxes.value(0).startsWith("Quarantine folder will be scanned|"_L1));
        QCOMPARE(person.boxes.value(1),
                 u"Clean-up complete|Removed 4 file(s), freeing 400 bytes.\n\nThis clean-up can be reversed from Tools "
                 "> Undo Previous Clean-up."_s);
        QVERIFY(!person.isWarning && !QFileInfo::exists(session.inLibrary(u"sub/c3"_s)));
        QCOMPARE(session.groups(), QString());
        QCOMPARE(summaryOf(*session.window), u"7 files scanned - no duplicates are left."_s);

        person.answers[u"Quarantine will be scanned"_s] = QMessageBox::Cancel;
        session.window->onStartScan();
        QVERIFY(!session.window->isScanning() && person.boxes.size() == 3);

        session.window->onUndoPrevious();
        QCOMPARE(person.boxes.last(), u"Undo complete|Restored 4 file(s) to their original locations."_s);
        QVERIFY(logs(*session.window, u"Undo: 4 restored, 0 failed."_s));
        QCOMPARE(summaryOf(*session.window),
                 u"7 files scanned - no duplicates are left. 4 file(s) were put back since; the next scan shows "
                 "them."_s);
        QVERIFY(QDir(session.inLibrary(u"&quarantine;"_s)).removeRecursively());
        QCOMPARE(treeOf(session.library()), session.before);
        session.window->onUndoPrevious();
        QVERIFY(person.boxes.last().startsWith(u"Nothing to undo|No reversible clean-ups have been recorded."_s));
    }

    void doubtfulFilesStay()
    {
        Session session;
        QVERIFY(QFile::remove(session.inLibrary(u"a1"_s))); // the copy to keep
        session.write(session.inLibrary(u"b1"_s), "other music"); // another one
        session.write(session.inLibrary(u"c2"_s), "other music"); // one to be removed
        Tree expected = treeOf(session.library());
        expected.remove(u"sub/c3"_s);
        session.person.wantsLog = true;
        session.window->onRemoveSelected();
        QCOMPARE(treeOf(session.library()), expected);
        QVERIFY(
            session.person.boxes.value(0).contains("\n\n3 file(s) could not be removed - see the Activity Log."_L1));
        for (const QString &line :
             { u"Move to quarantine: 1 succeeded, 3 failed, 100 bytes freed."_s,
               u"Group 1 was left alone: no copy would remain"_s, u"Group 2 was left alone: the copy to keep changed"_s,
               native(session.inLibrary(u"c2"_s)) + u" changed since the scan"_s })
            QVERIFY2(logs(*session.window, line), qPrintable(line));
        const auto *log = session.window->findChild<QPlainTextEdit *>(u"activityLog"_s);
        QVERIFY(session.person.isWarning);
        QTRY_VERIFY(log->textCursor().selectedText().startsWith(u'['));
        QCOMPARE(log->textCursor().selectedText().count(QChar::ParagraphSeparator), 2); // between three lines
        QVERIFY(log->isVisible() && !log->textCursor().selectedText().contains("succeeded"_L1));
        QCOMPARE(session.groups(), u"2:2 3:2"_s); // only one file of the first group is left
    }

    void reopenedReviewsAreNoLessCareful_data()
    {
        const Rows<Act, bool, RemovalMode, QStringList> row("act", "waits", "mode", "removed");
        const Act nothing = [](Session &) {};
        row("all as it was", nothing, true, RemovalMode::Quarantine, words("a2 b2 c2 sub/c3"));
        const Act doubts = [](Session &session) {
            QVERIFY(QFile::remove(session.inLibrary(u"a1"_s)));
            session.write(session.inLibrary(u"b1"_s), "other music");
            session.write(session.inLibrary(u"c2"_s), "other music");
        };
        row("changed and vanished", doubts, true, RemovalMode::Quarantine, words("sub/c3"));
        row("the same before anybody looked", doubts, false, RemovalMode::Quarantine, words("sub/c3"));
        const Act other = [](Session &session) {
            const QDateTime time = QFileInfo(session.inLibrary(u"a2"_s)).lastModified();
            QFile file(session.inLibrary(u"a2"_s));
            QVERIFY(file.open(QIODevice::ReadWrite) && file.write("x") == 1 && file.flush());
            QVERIFY(file.setFileTime(time, QFile::FileModificationTime));
        };
        row("other content of the same size and time", other, true, RemovalMode::Delete, words("b2 c2 sub/c3"));
        if (!isUnix)
            return;
        const auto link = [](const QString &name, const QString &target) {
            return [=](Session &session) {
                QVERIFY(QFile::rename(session.inLibrary(name), session.path(name)));
                session.addLink(target.isEmpty() ? session.path(name) : session.inLibrary(target), name);
            };
        };
        row("a link in place of a ticked copy", link(u"a2"_s, {}), true, RemovalMode::Quarantine,
            words("b2 c2 sub/c3"));
        row("a link to a ticked copy in place of the kept one", link(u"a1"_s, u"a2"_s), false, RemovalMode::Delete,
            words("b2 c2 sub/c3"));
    }

    void reopenedReviewsAreNoLessCareful()
    {
        QFETCH(const Act, act);
        QFETCH(const bool, waits);
        QFETCH(const RemovalMode, mode);
        QFETCH(const QStringList, removed);
        Session session;
        session.review->setTicked(2, 2, false);
        session.review->setTicked(2, 2, true);
        session.window->close();
        act(session);
        Tree expected = treeOf(session.library());
        for (const QString &name : removed)
            expected.remove(name);
        session.reopen();
        if (waits)
            QTRY_VERIFY(!session.window->findChild<FileLook *>()->isLooking());
        session.person.mode = mode;
        session.person.answers[u"Permanent deletion"_s] = QMessageBox::Yes;
        session.window->onRemoveSelected();
        QCOMPARE(treeOf(session.library()).keys(), expected.keys());
        const QString left = session.groups();
        if (!left.isEmpty()) {
            session.reopen(); // what is stored is what is left
            QCOMPARE(session.groups(), left);
        }
    }

    void otherContentThanWasScannedStays()
    {
        Session session;
        const QString changed = session.inLibrary(u"a2"_s);
        const QDateTime time = QFileInfo(changed).lastModified();
        writeFile(changed, QByteArray(100, 'x'));
        QFile file(changed);
        QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFile::FileModificationTime));
        file.close();
        SettingsStore().set(settings::compareAgain, true);
        session.window->onRemoveSelected();
        QVERIFY(logs(*session.window, native(changed) + u" was left in place: its content is not what"_s));
        QCOMPARE(treeOf(session.library()).keys(), words("a1 a2 b1 sub sub/c1"));
    }

    void historyBringsBackAndRemoves()
    {
        Session session;
        Operator &person = session.person;
        session.window->onRemoveSelected();
        QVERIFY(QFile::remove(session.inLibrary(u"sub/c1"_s)));
        person.answers = { { u"Remove for good"_s, QMessageBox::Cancel }, { u"Empty folders"_s, QMessageBox::Yes } };
        QStringList states;
        person.inHistory = [&](CleanupsDialog *dialog) {
            const auto press = [&](const QString &name) {
                dialog->findChild<QPushButton *>(name)->click();
                states << runStateText(dialog->findChild<RunsModel *>()->runs().first());
            };
            dialog->findChild<QLineEdit *>()->setText(u"C2"_s);
            const auto *files = dialog->findChild<RunFilesModel *>();
            QTRY_COMPARE(files->rowCount(), 1);
            for (auto *list : dialog->findChildren<QTreeView *>()) {
                if (list->model() == files)
                    list->selectAll();
            }
            press(u"restoreSelectedButton"_s);
            press(u"purgeButton"_s);
            person.answers[u"Remove for good"_s] = QMessageBox::Ok;
            press(u"purgeButton"_s);
            press(u"emptyFoldersButton"_s);
            QVERIFY(!dialog->findChild<QPushButton *>(u"restoreAllButton"_s)->isEnabled());
        };
        for (auto *action : session.window->findChildren<QAction *>()) {
            if (action->text() == "Clean-ups..."_L1)
                action->trigger();
        }
        const QString end = u"partly undone, the rest removed for good"_s;
        QCOMPARE(states, QStringList({ u"partly undone, 3 left"_s, u"partly undone, 3 left"_s, end, end }));
        QCOMPARE(treeOf(session.library()).keys(), words("a1 b1 c2"));
        QCOMPARE(filesBelow(session.quarantine()), QStringList());
        QVERIFY(person.boxes.contains(u"Removed for good|Removed 3 file(s) for good, freeing 300 bytes."_s));
        QVERIFY(summaryOf(*session.window).contains("1 file(s) were put back since"_L1));
        QVERIFY(logs(*session.window, u"1 empty folder(s) removed."_s));
    }

    void previewTellsWhatGoes()
    {
        Review review;
        Lists lists = listsOf(u"a* b c / d* e"_s);
        lists.groups[0].matchType = MatchType::SameSong;
        lists.groups[0].links = { { 0, 1, MatchType::SameSong }, { 0, 2, MatchType::IdenticalFile } };
        lists.groups[1].matchType = MatchType::SameRecording; // of which nothing more is known
        lists.tracks[1].path = u"/other/b.mp3"_s;
        review.setResults(lists.tracks, lists.groups);
        QList<RemovalItem> items = removalItems(review);
        for (qsizetype i = 0; i < items.size(); ++i)
            items[i].size = 10 << i;
        const QHash<QString, Volume> volumes { { u"/music"_s, { u"/"_s, 5 } }, { u"/other"_s, {} } };
        const RemovalPreview preview = previewRemoval(items, volumes, { u"/"_s, 9 });
        using Shares = QList<RemovalPreview::Share>;
        QCOMPARE(preview.types,
                 Shares({ { u"Identical file"_s, 1, 20 },
                          { u"Same recording"_s, 1, 40 },
                          { u"Same song (metadata) - by artist and title alone"_s, 1, 10 } }));
        QCOMPARE(preview.folders, Shares({ { native(u"/music"_s), 2, 60 }, { native(u"/other"_s), 1, 10 } }));
        QCOMPARE(preview.volumes, Shares({ { native(u"/"_s), 2, 60 }, { u"(unknown drive)"_s, 1, 10 } }));
        QVERIFY(preview.bytesToCopy == 10 && preview.lacksRoom());
        QVERIFY(!previewRemoval(items, volumes, { u"/"_s, 10 }).lacksRoom());
        QCOMPARE(previewRemoval(items, volumes, { u"/q"_s, -1 }).bytesToCopy, 70);

        RemovalDialog dialog({ 3, {}, 0, 0, preview }, u"/q"_s);
        const auto *table = dialog.findChild<QTreeWidget *>();
        QCOMPARE(table->topLevelItemCount(), 5);
        QCOMPARE(table->topLevelItem(3)->childCount(), 2);
        const auto *note = dialog.findChild<QLabel *>(u"roomNote"_s);
        QVERIFY(!note->isHidden() && note->text().startsWith("There is too little room"_L1));
        dialog.showRoom(previewRemoval(items.sliced(1), volumes, { u"/"_s, 9 }));
        QCOMPARE(note->text(), u"They stay on their drive, where 9 bytes are free."_s);
        dialog.showRoom(previewRemoval(items, volumes, { u"/q"_s, -1 }));
        QVERIFY(note->isHidden());
    }

    void quarantineInOneDriveIsPointedOut()
    {
        const Sandbox box;
        qputenv("OneDriveCommercial", QFile::encodeName(native(box.library())));
        for (const auto &[folder, isInside] : std::initializer_list<std::pair<QString, bool>> {
                 { u"library"_s, true }, { u"library/Documents/new"_s, true }, { u"library 2"_s, false } }) {
            const RemovalDialog dialog({}, box.path(folder));
            QCOMPARE(dialog.findChild<QLabel *>(u"synchronisedWarning"_s)->isHidden(), !isInside);
        }
        qunsetenv("OneDriveCommercial");
    }

    void undoOfLookAlikesTakesTheNewer()
    {
        Session session;
        const QStringList files = session.addMany(2, u"file-%1"_s);
        QStringList manifests;
        for (const QString &file : files) { // within one second, as a rule
            manifests << removeFiles({ file }, RemovalMode::Quarantine, session.quarantine(), {}).manifestPath;
            UndoManifest manifest = readManifest(manifests.last()).value();
            manifest.createdAt = u"2026-03-01T21:05:00"_s;
            QVERIFY(writeManifest(manifests.last(), manifest));
        }
        session.window->onUndoPrevious();
        QCOMPARE(session.person.offered, QStringList(2, u"1 Mar 2026 9:05 pm - 1 file(s)"_s));
        QVERIFY(QFileInfo::exists(files.last()) && !QFileInfo::exists(files.first()));

        // The drive with the quarantine goes.
        QVERIFY(QDir().rename(session.quarantine(), session.path(u"unplugged"_s)));
        for (const auto button : { QMessageBox::Cancel, QMessageBox::Ignore }) {
            session.person.answers[u"Quarantine not found"_s] = button;
            session.window->onUndoPrevious();
            QCOMPARE(listUndoManifests().size(), 1);
            QCOMPARE(listUndoManifests() == manifests.first(1), button == QMessageBox::Cancel);
        }
        QCOMPARE(session.person.boxes.last(),
                 u"Undo complete|Restored 0 file(s); 1 could not be restored. See the Activity Log."_s);

        // The drive is back, and now that with the library goes.
        QVERIFY(QDir().rename(session.path(u"unplugged"_s), session.quarantine()));
        QVERIFY(QDir().rename(session.library(), session.path(u"unplugged"_s)));
        for (const auto button : { QMessageBox::Cancel, QMessageBox::Ignore }) {
            session.person.answers[u"Folders not found"_s] = button;
            session.window->onUndoPrevious();
            QVERIFY(session.person.boxes.contains(
                u"Folders not found|1 folder(s) that files of this clean-up came from are not there, the first of "
                "them %1.\n\nIf they are on a drive that is not connected, connect it and undo again. Undoing now "
                "would "
                "make them anew."_s.arg(native(session.library()))));
            QCOMPARE(QFileInfo::exists(files.first()), button == QMessageBox::Ignore);
        }
    }

    // The job stays before its fourth file until somebody stops it, which takes a dialog that is alive.
    void stoppedRunKeepsTheRest()
    {
        Sandbox box;
        const QStringList paths = box.addMany(6, u"%1"_s);
        const Tree before = treeOf(box.library());
        Operator person;
        person.stopAtFile = native(u"/3"_s);
        RemovalResult result;
        const auto job = [&](const CleanupProgressFn &progress) {
            const auto patient = [&](qsizetype index, qsizetype total, const QString &path) {
                for (const QDeadlineTimer end(10000); index == 3 && !end.hasExpired() && progress(index, total, path);)
                    QThread::yieldCurrentThread();
                return progress(index, total, path);
            };
            result = removeFiles(paths, RemovalMode::Quarantine, box.quarantine(), {}, patient);
        };
        QVERIFY(!runWithProgress(u"Test"_s, job, nullptr));
        QCOMPARE(result, RemovalResult({ 3, 0, 300, {}, result.manifestPath }));
        QCOMPARE(treeOf(box.library()).keys(), words("3 4 5"));
        QCOMPARE(restoreManifest(result.manifestPath), RestoreResult({ 3, 0, {} }));
        QCOMPARE(treeOf(box.library()), before);
    }
};

QTEST_MAIN(TestCleanupCommand)
#include "tst_cleanupcommand.moc"
