// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "rows.h"
#include "temporarylibrary.h"
#include "wholechecker.h"

#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

/// Two encodings of ten seconds of noise whose loudness goes up and down, and a second piece.
void makeFiles(const QString &folder)
{
    const QString ffmpeg = u"ffmpeg"_s;
    const auto make = [&](const QString &name, int seed, const QStringList &options) {
        const QString source = u"anoisesrc=c=pink:seed=%1:a=0.8:d=10:r=44100,tremolo=f=1.3:d=0.9"_s.arg(seed);
        const QStringList arguments {
            u"-nostdin"_s, u"-v"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, source
        };
        QCOMPARE(QProcess::execute(ffmpeg, arguments + options + QStringList { folder + u'/' + name }), 0);
    };
    make(u"a.wav"_s, 1, { u"-ac"_s, u"2"_s });
    make(u"b.mp3"_s, 1, { u"-b:a"_s, u"128k"_s });
    make(u"other.wav"_s, 2, {});
    test::writeFile(folder + u"/broken.wav"_s, QByteArray(4000, '\x90'));
    test::writeFile(folder + u"/list.wav"_s, "#EXTM3U\na.wav\n");
}

TrackInfo trackOf(const QString &path)
{
    const QFileInfo file(path);
    TrackInfo track;
    track.path = path;
    track.size = file.size();
    track.mtime = file.lastModified();
    return track;
}

} // namespace

class TestWholeChecker : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { makeFiles(m_home.path()); }

    void aFileThatCannotBeCheckedSaysWhy_data();
    void aFileThatCannotBeCheckedSaysWhy();
    void theSecondCheckDecodesNothing();
    void anUnusableCacheIsNone();
    void groupsAreCheckedBehindEachOther();
    void stoppedAtAnyTime_data();
    void stoppedAtAnyTime();

private:
    CheckItem item(const QStringList &names, qint32 group = 1) const
    {
        CheckItem made { .group = group, .keep = 10, .members = {}, .tracks = {} };
        for (const QString &name : names) {
            made.members.append(10 + static_cast<qint32>(made.members.size()));
            made.tracks.append(trackOf(m_home.filePath(name)));
        }
        return made;
    }

    QTemporaryDir m_home;
    std::atomic<bool> m_go = false;
};

void TestWholeChecker::aFileThatCannotBeCheckedSaysWhy_data()
{
    const test::Rows<QString, std::function<void(TrackInfo &)>, QString> row("name", "change", "error");
    row(
        "gone", u"gone.wav"_s, [](TrackInfo &) {}, u"gone"_s);
    row(
        "longer than it was", u"other.wav"_s, [](TrackInfo &track) { --track.size; }, u"changed"_s);
    row(
        "newer", u"other.wav"_s, [](TrackInfo &track) { track.mtime = track.mtime.addSecs(-2); }, u"changed"_s);
    row(
        "no sound", u"broken.wav"_s, [](TrackInfo &) {}, u"could not be decoded"_s);
    row(
        "a playlist", u"list.wav"_s, [](TrackInfo &) {}, u"text"_s);
}

void TestWholeChecker::aFileThatCannotBeCheckedSaysWhy()
{
    QFETCH(const QString, name);
    QFETCH(const std::function<void(TrackInfo &)>, change);
    QFETCH(const QString, error);
    CheckItem asked = item({ u"a.wav"_s, name, u"b.mp3"_s });
    change(asked.tracks[1]);
    const GroupCheck check = checkGroup(asked, {}, m_go);
    QVERIFY2(check.measures.value(11).error.contains(error), qUtf8Printable(check.measures.value(11).error));
    QCOMPARE(check.measures.size(), 3);
    QCOMPARE(check.pairs.size(), 1);
    QCOMPARE(check.pairs.first().second, 12);
    QVERIFY(check.pairs.first().isAligned && check.pairs.first().differences.isEmpty());
}

void TestWholeChecker::theSecondCheckDecodesNothing()
{
    const QString cachePath = m_home.filePath(u"cache.sqlite"_s);
    const CheckItem asked = item({ u"a.wav"_s, u"b.mp3"_s, u"other.wav"_s });
    int begun = 0;
    const auto check = [&](const CheckItem &group) {
        CheckCache cache(cachePath);
        begun = 0;
        return GroupChecker(group, m_go, [&begun](const QString &) { ++begun; }).run(cache);
    };
    const GroupCheck first = check(asked);
    QCOMPARE(begun, 3);
    QCOMPARE(first.pairs.size(), 3);
    QVERIFY(!first.pairs.at(1).isAligned);
    QCOMPARE(check(asked), first);
    QCOMPARE(begun, 0);
    CheckItem turned = item({ u"b.mp3"_s, u"a.wav"_s });
    QCOMPARE(check(turned).pairs.first().offsetMs, -first.pairs.first().offsetMs);
    QCOMPARE(begun, 0);
    QFile file(m_home.filePath(u"b.mp3"_s));
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime::currentDateTime().addSecs(-100), QFile::FileModificationTime);
    file.close();
    static_cast<void>(check(item({ u"a.wav"_s, u"b.mp3"_s })));
    QCOMPARE(begun, 2);
}

void TestWholeChecker::anUnusableCacheIsNone()
{
    const QString path = m_home.filePath(u"damaged.sqlite"_s);
    const QByteArray content(8192, 'x');
    test::writeFile(path, content);
    QCOMPARE(checkGroup(item({ u"a.wav"_s, u"b.mp3"_s }), path, m_go).pairs.size(), 1);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

void TestWholeChecker::groupsAreCheckedBehindEachOther()
{
    WholeChecker checker({});
    QSignalSpy checked(&checker, &WholeChecker::checked);
    QSignalSpy finished(&checker, &WholeChecker::finished);
    QSignalSpy progress(&checker, &WholeChecker::progressChanged);
    checker.setPaused(true);
    checker.check({ item({ u"a.wav"_s, u"other.wav"_s }, 1), item({ u"a.wav"_s, u"b.mp3"_s }, 2) });
    checker.check({ item({ u"other.wav"_s, u"b.mp3"_s, u"gone.wav"_s }, 1) });
    QVERIFY(checker.isRunning());
    checker.setPaused(false);
    QVERIFY(finished.wait(60000));
    QCOMPARE(finished.takeFirst().first().toBool(), false);
    QCOMPARE(checked.size(), 2);
    for (const QList<QVariant> &signal : checked)
        QCOMPARE(signal.at(1).value<GroupCheck>().measures.size(), signal.at(0).toInt() == 1 ? 3 : 2);
    const auto last = progress.last().first().value<CheckProgress>();
    QCOMPARE(last.groupsDone, 2);
    QCOMPARE(last.groups, 2);
    QCOMPARE(last.filesDone, 5);
    QCOMPARE(last.files, 5);
}

void TestWholeChecker::stoppedAtAnyTime_data()
{
    const test::Rows<int, bool> row("after", "paused");
    row("at once", 0, false);
    row("at work", 200, false);
    row("paused", 200, true);
}

void TestWholeChecker::stoppedAtAnyTime()
{
    QFETCH(const int, after);
    QFETCH(const bool, paused);
    QList<CheckItem> items;
    for (qint32 group = 0; group < 50; ++group)
        items.append(item({ u"a.wav"_s, u"b.mp3"_s }, group));
    WholeChecker checker({});
    QSignalSpy finished(&checker, &WholeChecker::finished);
    checker.check(items);
    QTest::qWait(after);
    QVERIFY(checker.release({ items.first().tracks.first().path }));
    checker.setPaused(paused);
    checker.stop();
    QVERIFY(finished.wait(5000));
    QCOMPARE(finished.first().first().toBool(), true);
    QVERIFY(!checker.isRunning());
    checker.setPaused(false);
    checker.check({ items.last() });
    QVERIFY(finished.wait(60000));
    QCOMPARE(finished.last().first().toBool(), false);
}

QTEST_GUILESS_MAIN(TestWholeChecker)
#include "tst_wholechecker.moc"
