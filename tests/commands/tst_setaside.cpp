// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "setasidecommand.h"
#include "setasidedialog.h"

#include "reviewsketch.h"
#include "rows.h"
#include "temporarylibrary.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

/// Groups of files whose audio is named by the first letter of their names; those with a capital have no digest.
Lists contentLists(const QString &sketch)
{
    Lists lists = listsOf(sketch);
    for (TrackInfo &track : lists.tracks) {
        const QChar letter = track.fileName.at(0);
        track.audioHash = letter.isLower() ? QString(64, letter) : QString();
        track.size = letter.unicode();
    }
    return lists;
}

/// A window of its own, as it is after a scan.
struct Window {
    Review review;
    SetAsideCommand command { review, nullptr };
    QSignalSpy log { &command, &Command::logMessage };

    explicit Window(const QString &sketch)
    {
        const Lists lists = contentLists(sketch);
        review.setResults(lists.tracks, lists.groups);
        command.takeResults();
    }
    QString shown() const
    {
        QStringList groups = sketchOf(review).split(u" / "_s);
        for (int group = static_cast<int>(groups.size()) - 1; group >= 0; --group) {
            if (review.state(group) == GroupState::NotDuplicates)
                groups.removeAt(group);
        }
        return groups.join(u" / "_s);
    }
};

using Spoil = std::function<void(const QString &)>;

} // namespace

Q_DECLARE_METATYPE(Spoil)

class TestSetAside : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_home.emplace(); }

    void nextScanKnowsThem_data()
    {
        const Rows<QString, QString, QString> row("setAside", "foundLater", "shown");
        row("the same", u"a* b / c* d"_s, u"c* d / a* b"_s, u"c* d!"_s);
        row("other names and another order", u"a1* b1"_s, u"b7* a9"_s, QString());
        row("a third copy", u"a* b"_s, u"a* b c"_s, u"a* b c!"_s);
        row("a third copy that is kept", u"a* b"_s, u"a b c*"_s, u"a! b! c*"_s);
        row("two of three", u"a* b c"_s, u"b* c"_s, QString());
        row("another copy of one file", u"a1* a2"_s, u"a1* a2 a3"_s, u"a1* a2! a3!"_s);
        row("fewer copies of one file", u"a1* a2 a3"_s, u"a4* a5"_s, QString());
        row("two copies of one of them", u"a* b"_s, u"a1* a2 b"_s, u"a1* a2! b"_s);
        row("without a digest, in its place", u"A* b"_s, u"b* A"_s, QString());
        row("without a digest, moved", u"A1* b"_s, u"A2* b"_s, u"A2* b!"_s);
    }

    void nextScanKnowsThem()
    {
        QFETCH(const QString, setAside);
        Window(setAside).review.setState({ 0 }, GroupState::NotDuplicates);
        QFETCH(const QString, foundLater);
        QTEST(Window(foundLater).shown(), "shown");
    }

    void pairsOfSeveralGroupsAdd()
    {
        for (const QString &pair : { u"a* b"_s, u"b* c"_s })
            Window(pair).review.setState({ 0 }, GroupState::NotDuplicates);
        QCOMPARE(Window(u"b* a c"_s).shown(), u"b* a c"_s); // a and c are still to be judged
        Window(u"a* c"_s).review.setState({ 0 }, GroupState::NotDuplicates);
        QCOMPARE(Window(u"b* a c"_s).shown(), QString());
    }

    void whatIsTakenBackIsForgotten()
    {
        Window(u"a* b"_s).review.setState({ 0 }, GroupState::NotDuplicates);
        Window window(u"a* b c / d* e"_s);
        window.review.setState({ 0, 1 }, GroupState::NotDuplicates);
        QCOMPARE(Window(u"a* b c / d* e"_s).shown(), QString());
        window.review.undo();
        QCOMPARE(Window(u"a* b c / d* e"_s).shown(), u"a* b c! / d* e!"_s); // as it was before
        window.review.redo();
        QCOMPARE(Window(u"a* b c / d* e"_s).shown(), QString());
        Window later(u"a* c / d* e"_s); // known by a larger group only
        later.review.setState({ 0 }, GroupState::Undecided);
        QCOMPARE(Window(u"a* c"_s).shown(), u"a* c!"_s);
    }

    void dialogFindsAndRestores()
    {
        Window window(u"a* b / c* d"_s);
        window.review.setState({ 0, 1 }, GroupState::NotDuplicates);
        QTimer::singleShot(0, this, [] {
            auto *dialog = qobject_cast<SetAsideDialog *>(QApplication::activeModalWidget());
            auto *list = dialog->findChild<QTreeWidget *>();
            list->selectAll();
            dialog->findChild<QLineEdit *>()->setText(u"TITLE OF C"_s);
            for (auto *button : dialog->findChildren<QPushButton *>()) {
                if (button->text() == "&Restore"_L1)
                    button->click();
            }
            dialog->reject();
        });
        window.command.showAll();
        QCOMPARE(window.shown(), u"c* d"_s);
        QCOMPARE(window.review.state(1), GroupState::Undecided);
        QCOMPARE(Window(u"a* b / c* d"_s).shown(), u"c* d!"_s);
        window.review.undo();
        QCOMPARE(Window(u"a* b / c* d"_s).shown(), QString());
    }

    void unusableFilesCostNothing_data()
    {
        const Rows<Spoil, QString, bool> row("spoil", "message", "isKeptAside");
        const auto query = [](const QString &statement) {
            return [statement](const QString &file) {
                {
                    QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"spoil"_s);
                    db.setDatabaseName(file);
                    QVERIFY(db.open());
                    QSqlQuery(db).exec(statement);
                }
                QSqlDatabase::removeDatabase(u"spoil"_s);
            };
        };
        row(
            "no database", [](const QString &file) { writeFile(file, QByteArray(5000, 'x')); }, u"kept as"_s, true);
        row("foreign", query(u"PRAGMA application_id=77"_s), u"kept as"_s, true);
        row("newer", query(u"PRAGMA user_version=99"_s), u"newer version"_s, false);
    }

    void unusableFilesCostNothing()
    {
        const QString file = SetAsideStore::defaultFilePath();
        Window(u"a* b"_s).review.setState({ 0 }, GroupState::NotDuplicates);
        QFETCH(const Spoil, spoil);
        spoil(file);
        const QByteArray spoilt = readFile(file);
        Window window(u"a* b"_s);
        QCOMPARE(window.shown(), u"a* b!"_s);
        QFETCH(const QString, message);
        QVERIFY2(window.log.value(0).value(0).toString().contains(message),
                 qPrintable(window.log.value(0).value(0).toString()));
        QFETCH(const bool, isKeptAside);
        const QStringList aside = QFileInfo(file).dir().entryList({ u"decisions.sqlite.damaged-*"_s });
        QCOMPARE(aside.size(), isKeptAside ? 1 : 0);
        QCOMPARE(readFile(isKeptAside ? QFileInfo(file).dir().filePath(aside.first()) : file), spoilt);
        window.review.setState({ 0 }, GroupState::NotDuplicates); // the program goes on
        QCOMPARE(Window(u"a* b"_s).shown(), isKeptAside ? QString() : u"a* b!"_s);
    }

    void whatALockKeptOutIsStoredLater()
    {
        { // makes the file
            const Window first(u"a* b"_s);
        }
        std::optional<Window> window;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"lock"_s);
            db.setDatabaseName(SetAsideStore::defaultFilePath());
            QVERIFY(db.open());
            for (const auto statement : { "PRAGMA locking_mode=EXCLUSIVE"_L1, "PRAGMA user_version=1"_L1 })
                QVERIFY(QSqlQuery(db).exec(statement));
            window.emplace(u"a* b / c* d"_s);
            window->review.setState({ 0 }, GroupState::NotDuplicates);
            QVERIFY(window->log.value(0).value(0).toString().contains("locked"_L1));
        }
        QSqlDatabase::removeDatabase(u"lock"_s);
        window->review.setState({ 1 }, GroupState::NotDuplicates);
        QCOMPARE(Window(u"a* b / c* d"_s).shown(), QString());
    }

private:
    std::optional<TemporaryHome> m_home;
};

QTEST_MAIN(TestSetAside)
#include "tst_setaside.moc"
