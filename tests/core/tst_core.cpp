// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checktext.h"
#include "copyrelation.h"
#include "missingpart.h"
#include "progress.h"
#include "rows.h"
#include "systempaths.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Kind = epr::SoundDifference::Kind;

/// Copy 0 is kept and copy 1 compared with it; each second of the kept one comes five seconds later in the other.
epr::MatchGroup checkedGroup(const QList<epr::SoundDifference> &differences)
{
    epr::MatchGroup group { 1, epr::MatchType::SameRecording, { 0, 1 }, 0 };
    group.check.measures[0].durationMs = 60000;
    group.check.measures[1].durationMs = 65000;
    group.check.pairs = { { 1, 0, true, -5000, differences } };
    return group;
}

/// The record has the pair the other way round, so that its first is the copy.
epr::SoundDifference difference(Kind kind, bool isInKept, qint64 keptMs, qint64 keptEndMs, qint64 ownMs,
                                qint64 ownEndMs)
{
    return { kind, isInKept, ownMs, ownEndMs, keptMs, keptEndMs };
}

} // namespace

using Change = std::function<void(epr::SoundMeasures &kept, epr::SoundMeasures &own)>;
Q_DECLARE_METATYPE(Change)

class TestCore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void timeLeftOfAScanIsToldOnlyWhenKnown()
    {
        const auto left = [](bool hasUnknownPace, qint64 toCompare, std::optional<qint64> ownMs) {
            const epr::ScanStep step { 4, 5, hasUnknownPace, toCompare };
            return step.timeLeftMs(ownMs).value_or(-1);
        };
        QCOMPARE(left(false, 20000, 600000), 620000);
        QCOMPARE(left(true, 20000, 600000), -1); // decoding is still to come
        QCOMPARE(left(false, 20000, 19999), -1); // most of it would be a guess
        QCOMPARE(left(false, 20000, std::nullopt), -1);
        QCOMPARE(epr::ScanStep({ 4, 5 }).text(), u"step 4 of 5"_s);
    }

    // Links are written "0-1:3", a type behind the colon, those by sound with 2.5 % of unlike bits; copy 0 is kept.
    void relationsAreToldInWords_data()
    {
        const epr::test::Rows<QString, qint64, QString> row("links", "durationMs", "text");
        row("equal file", u"0-3:0"_s, 60000, u"identical to the kept copy"_s);
        row("equal audio", u"3-0:1"_s, 60000, u"same audio, other tags"_s);
        row("by sound", u"0-3:2"_s, 60000, u"same recording, 97 % alike"_s);
        row("equal audio sounds the same", u"0-1:1 1-2:0 2-3:2"_s, 60000, u"same recording, 97 % alike"_s);
        row("likeness does not add up", u"0-2:2 1-3:2 1-2:0"_s, 60000, u"same recording, through 1.mp3"_s);
        row("longer", u"0-3:3"_s, 60800, u"same artist and title, 0.8 s longer"_s);
        row("shorter", u"0-3:3"_s, 48000, u"same artist and title, 12 s shorter"_s);
        row("hardly longer", u"0-3:3"_s, 60049, u"same artist and title, as long"_s);
        row("of unknown length", u"0-3:3"_s, 0, u"same artist and title"_s);
        row("of guessed length", u"0-3:3"_s, -50000, u"same artist and title"_s);
        row("tags are the same along songs", u"0-1:3 1-2:0 2-3:3"_s, 60800, u"same artist and title, 0.8 s longer"_s);
        row("tags may change", u"0-1:1 1-3:3"_s, 60800, u"same artist and title, through 1.mp3"_s);
        row("least certain on the way", u"0-1:3 1-3:2"_s, 60000, u"same artist and title, through 1.mp3"_s);
        row("a copy without a name", u"0-2:2 2-3:2"_s, 60000, u"same recording, through another copy"_s);
        row("what digests tell", u"0-3:9"_s, 60000, u"identical to the kept copy"_s);
        row("unlinked", u"1-2:0"_s, 60000, QString());
    }

    void relationsAreToldInWords()
    {
        QFETCH(const QString, links);
        QFETCH(const qint64, durationMs);
        QList<epr::TrackInfo> tracks(4);
        tracks[1].fileName = u"1.mp3"_s;
        tracks[0].stream.durationMs = 60000;
        tracks[3].stream.durationMs = std::abs(durationMs);
        tracks[3].stream.durationIsGuess = durationMs < 0;
        epr::MatchGroup group { 1, epr::MatchType::SameSong, { 0, 1, 2, 3 }, 0 };
        for (const QString &link : links.split(u' ')) {
            const auto number = [&link](qsizetype at) { return link.at(at).digitValue(); };
            if (number(4) == 9)
                tracks[0].fullHash = tracks[3].fullHash = u"digest"_s;
            group.links.append({ number(0), number(2), static_cast<epr::MatchType>(number(4) % 9), 0.025 });
        }
        QTEST(epr::relationText(epr::relationToKept(group, 3, tracks), tracks), "text");
        QCOMPARE(epr::relationsToKept(group, tracks).value(3), epr::relationToKept(group, 3, tracks));
        QCOMPARE(epr::relationText(epr::relationToKept(group, 0, tracks), tracks), QString());
    }

    void likenessIsRoundedDown()
    {
        for (const auto &[rate, percent] : { std::pair(0.0, 100), { 0.00001, 99 }, { 0.07, 93 }, { 0.0701, 92 } })
            QCOMPARE(epr::percentAlike(rate), percent);
    }

    void checkIsToldInWords_data()
    {
        const epr::test::Rows<QList<epr::SoundDifference>, QString> row("differences", "text");
        const auto one = difference(Kind::Differs, false, 15300, 15700, 20300, 20700);
        row("none", {}, u"alike to the end"_s);
        row("one", { one }, u"differs 0:20-0:21"_s);
        row("three", { one, one, one }, u"differs 0:20-0:21 and 2 more"_s);
        row("silence", { difference(Kind::Silent, false, 0, 999, 0, 1000) }, u"silent 0:00-0:01"_s);
        row("to the end", { difference(Kind::Silent, false, 5000, 60000, 10000, 64800) }, u"silent from 0:10"_s);
        row("of the kept copy", { difference(Kind::Silent, true, 59000, 60000, 64000, 65000) },
            u"the kept copy is silent from 0:59"_s);
        row("start", { difference(Kind::StartsLater, false, 0, 5000, 0, 0) }, u"starts 5.0 s later"_s);
        row("end", { difference(Kind::StopsEarlier, true, 50000, 50000, 55000, 65000) },
            u"the kept copy stops at 0:50"_s);
        row("ending", { difference(Kind::OtherEnding, true, 40000, 60000, 45000, 65000) }, u"other ending from 0:45"_s);
        row("jump", { difference(Kind::Skips, false, 30000, 32300, 35000, 35000) }, u"skips 2.3 s at 0:35"_s);
        row("again", { difference(Kind::Repeats, false, 30000, 30000, 35000, 36000) }, u"repeats 1.0 s at 0:35"_s);
    }

    void checkIsToldInWords()
    {
        QFETCH(const QList<epr::SoundDifference>, differences);
        const epr::MatchGroup group = checkedGroup(differences);
        QTEST(epr::checkText(group, 1), "text");
        QCOMPARE(epr::isProposed(group, 1), differences.isEmpty());
        QCOMPARE(epr::groupCheckText(group),
                 u"checked: "_s + (differences.isEmpty() ? u"alike to the end"_s : u"1 copy(s) differ"_s));
    }

    void worseCopyIsTold_data()
    {
        const epr::test::Rows<Change, QList<epr::SoundDifference>, QString, QString> row("change", "differences",
                                                                                         "ofKept", "ofOther");
        const auto nothing = [](auto &, auto &) {};
        const auto keptIsDull = [](auto &kept, auto &own) { kept.bandwidthHz = 11025, own.clearTrebleHz = 16000; };
        row("neither", nothing, {}, {}, {});
        row("treble", keptIsDull, {}, u"the FLAC has more above 11 kHz than the kept MP3"_s, {});
        row("treble of another piece", keptIsDull, { difference(Kind::Differs, false, 0, 9, 0, 9) }, {}, {});
        row("hardly more treble", [](auto &kept, auto &own) { kept.bandwidthHz = 20000, own.clearTrebleHz = 22050; },
            {}, {}, {});
        row("hiss above",
            [](auto &kept, auto &own) { kept.bandwidthHz = own.clearTrebleHz = 17000, own.bandwidthHz = 20000; }, {},
            {}, {});
        row(
            "duller", [](auto &kept, auto &own) { kept.clearTrebleHz = 20000, own.bandwidthHz = 15800; }, {}, {},
            u"nothing above 16 kHz; the kept copy has"_s);
        row(
            "louder", [](auto &kept, auto &own) { kept.loudness = -14, own.loudness = -11.9; }, {}, {},
            u"2.1 dB louder than the kept copy"_s);
        row("hardly quieter", [](auto &kept, auto &own) { kept.loudness = -14, own.loudness = -14.9; }, {}, {}, {});
        row(
            "clipped", [](auto &, auto &own) { own.clippedSamples = 312; }, {}, {},
            u"312 clipped sample(s), the kept copy none"_s);
        row("errors, heard", [](auto &kept, auto &) { kept.decodingErrors = 14; },
            { difference(Kind::Differs, false, 0, 9, 0, 9) }, u"the kept copy has 14 decoding error(s), b.flac none"_s,
            {});
        row("kept is silent", nothing, { difference(Kind::Silent, true, 1000, 2000, 6000, 7000) },
            u"the kept copy is silent 0:01-0:02, unlike b.flac"_s, {});
        row("both have gaps", nothing,
            { difference(Kind::Silent, true, 1000, 2000, 6000, 7000),
              difference(Kind::Skips, false, 9000, 9900, 0, 0) },
            {}, {});
        row("kept is unreadable", [](auto &kept, auto &) { kept.error = u"broken"_s; }, {},
            u"the kept copy could not be checked, b.flac could"_s, {});
        row("other is unreadable", [](auto &, auto &own) { own.error = u"broken"_s; }, {}, {}, {});
    }

    void worseCopyIsTold()
    {
        QFETCH(const Change, change);
        QFETCH(const QList<epr::SoundDifference>, differences);
        QFETCH(const QString, ofKept);
        epr::MatchGroup group = checkedGroup(differences);
        change(group.check.measures[0], group.check.measures[1]);
        QList<epr::TrackInfo> tracks(2);
        tracks[0].suffix = u"mp3"_s;
        tracks[1].suffix = u"flac"_s;
        tracks[1].fileName = u"b.flac"_s;
        QCOMPARE(epr::betterCopyText(group, tracks), ofKept);
        QCOMPARE(epr::isProposed(group, 1), ofKept.isEmpty() && differences.isEmpty());
        QTEST(epr::measureTexts(group, 1).join(u'|'), "ofOther");
    }

    void folderIsKnownByPathOrNumbers()
    {
        const epr::FolderIdentity drive { u"D:/Music"_s, 1, 2, 3, true };
        const auto isDrive = [&](const epr::FolderIdentity &other) { return drive.isSameAs(other); };
        QVERIFY2(isDrive({ u"D:/Music"_s, 1, 9, 3, true }), "some drivers number a folder anew at every look");
        QVERIFY2(isDrive({ u"//studio/Music"_s, 1, 2, 3, false }), "its own share");
        QVERIFY2(!isDrive({ u"E:/Music"_s, 1, 2, 3, true }), "a copy of the whole disk");
        QVERIFY2(!isDrive({ u"//nas/all/disk2"_s, 1, 2, 4, false }), "another disk of a share");
        QVERIFY2(!epr::FolderIdentity({ u"//nas/a"_s }).isSameAs({ u"//nas/b"_s }), "without numbers");
        QVERIFY2(!epr::FolderIdentity().isSameAs({}), "neither is there");
    }
};

QTEST_GUILESS_MAIN(TestCore)
#include "tst_core.moc"
