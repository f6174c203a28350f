// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "buildmatchgroups.h"
#include "grouping.h"
#include "keeperpolicy.h"
#include "matchunion.h"
#include "metadatamatch.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;
using epr::MatchGroup;
using epr::MatchType;
using epr::MatchUnion;
using epr::ScanOptions;
using epr::TrackInfo;

namespace {

constexpr qint32 smallestInt = std::numeric_limits<qint32>::min();
constexpr qint32 largestInt = std::numeric_limits<qint32>::max();

std::atomic<qint32> notCancelled { 0 };

template <typename T, std::size_t N> T anyOf(QRandomGenerator &random, const T (&values)[N])
{
    return values[random.bounded(static_cast<int>(N))];
}

QList<TrackInfo> randomTracks(QRandomGenerator &random)
{
    QList<TrackInfo> tracks(random.bounded(2, 14));
    for (TrackInfo &track : tracks) {
        track.path = u"/m/%1"_s.arg(random.bounded(12)); // some paths are equal
        track.size = random.bounded(3);
        track.durationMs = anyOf<qint64>(random, { -5, 0, 1000, 2000, 3000, 4001, 9000, 12000, 60000 });
        track.title = anyOf(random, { u"Jingle"_s, u"Jingle (Edit)"_s, u"(Remix)"_s, QString() });
        track.artist = anyOf(random, { u"abc"_s, u"The ABC"_s, u"ab"_s, QString() });
        track.albumArtist = u"never compared"_s;
        track.fullHash = anyOf(random, { QString(), QString(), u"f1"_s, u"f2"_s, u"F1"_s });
        track.audioHash = anyOf(random, { QString(), QString(), QString(), u"a1"_s, u"a2"_s });
    }
    return tracks;
}

ScanOptions randomOptions(QRandomGenerator &random)
{
    ScanOptions options;
    options.detectIdentical = random.bounded(3) > 0;
    options.detectSameAudio = random.bounded(3) > 0;
    options.detectMetadata = random.bounded(3) > 0;
    options.metadataTolerance = anyOf(random, { 0, 1000, 1001, 3000, -1, smallestInt, largestInt });
    return options;
}

/// What each pass means, for one pair of tracks.
bool agree(const TrackInfo &a, const TrackInfo &b, MatchType type, qint32 toleranceMs)
{
    if (type == MatchType::IdenticalFile)
        return !a.fullHash.isEmpty() && a.fullHash == b.fullHash;
    if (type == MatchType::SameAudio)
        return !a.audioHash.isEmpty() && a.audioHash == b.audioHash;
    if (a.title.isEmpty() || a.artist.isEmpty() || b.title.isEmpty() || b.artist.isEmpty())
        return false;
    if (epr::metadataKey(a) != epr::metadataKey(b) || epr::metadataKey(a).size() <= 3)
        return false;
    return a.durationMs <= 0 || b.durationMs <= 0 || qAbs(a.durationMs - b.durationMs) <= toleranceMs;
}

void linkPairs(const QList<TrackInfo> &tracks, MatchType type, qint32 toleranceMs, MatchUnion &sets)
{
    for (qint32 a = 0; a < tracks.size(); ++a)
        for (qint32 b = a + 1; b < tracks.size(); ++b)
            if (agree(tracks[a], tracks[b], type, toleranceMs))
                sets.link(a, b, type);
}

/// What the title clean-up means, as three substitutions.
QString slowNormalise(const QString &text)
{
    static const QRegularExpression version(
        uR"(\s*[\(\[\{][^\)\]\}]*(remaster|remix|version|edit|mono|stereo|live|explicit|clean|deluxe|bonus)[^\)\]\}]*[\)\]\}])"_s,
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression other(u"[^a-z0-9 ]"_s);
    static const QRegularExpression space(u"\\s+"_s);
    const QString words = text.toLower().remove(version).remove(other).replace(space, u" "_s).trimmed();
    return words.startsWith(u"the "_s) ? words.mid(4) : words;
}

TrackInfo track(const QString &path, qint64 size = 0, const QString &fullHash = {}, const QString &audioHash = {})
{
    TrackInfo track;
    track.path = path;
    track.size = size;
    track.fullHash = fullHash;
    track.audioHash = audioHash;
    return track;
}

} // namespace

class TestMatch final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void groupsEqualThePairwiseDefinition()
    {
        QRandomGenerator random(20261121);
        for (int round = 0; round < 4000; ++round) {
            const QList<TrackInfo> tracks = randomTracks(random);
            const ScanOptions options = randomOptions(random);
            const qint32 tolerance = options.metadataTolerance;
            MatchUnion slow(tracks.size());
            if (options.detectIdentical)
                linkPairs(tracks, MatchType::IdenticalFile, tolerance, slow);
            if (options.detectSameAudio)
                linkPairs(tracks, MatchType::SameAudio, tolerance, slow);
            MatchUnion fast = slow;
            if (options.detectMetadata) {
                linkPairs(tracks, MatchType::SameSong, tolerance, slow);
                epr::linkEqualSongs(tracks, tolerance, fast);
            }
            QCOMPARE(epr::buildMatchGroups(tracks, options, notCancelled), epr::groupSets(slow, tracks, options));
            for (qint32 a = 0; a < tracks.size(); ++a) {
                QCOMPARE(fast.method(fast.findRoot(a)), slow.method(slow.findRoot(a)));
                for (qint32 b = 0; options.detectMetadata && b < a; ++b)
                    if (agree(tracks[a], tracks[b], MatchType::SameSong, tolerance))
                        QVERIFY(fast.method(a) == MatchType::SameSong && fast.method(b) == MatchType::SameSong);
            }
        }
    }

    void weakestLinkNamesTheGroupAndLargestSavingLeads()
    {
        QList<TrackInfo> tracks {
            track(u"d2"_s, 5, {}, u"small"_s),
            track(u"d1"_s, 5, {}, u"small"_s),
            track(u"e"_s, 8, {}, u"large"_s),
            track(u"f"_s, 9, {}, u"large"_s),
            track(u"a"_s, 1, u"tiny"_s),
            track(u"b"_s, 1, u"tiny"_s),
            track(u"c1"_s, 5, {}, u"equal"_s),
            track(u"c0"_s, 5, {}, u"equal"_s),
            track(u"g"_s, 2, u"file"_s, u"too"_s),
            track(u"h"_s, 2, u"file"_s, u"too"_s),
            track(u"z"_s, 9, u"pair"_s),
            track(u"y"_s, 9, u"pair"_s),
            track(u"x"_s, 9),
        };
        tracks[10].artist = tracks[12].artist = u"Abba"_s;
        tracks[10].title = tracks[12].title = u"Waterloo"_s;
        ScanOptions options;
        options.keeperPolicy = static_cast<qint32>(epr::KeeperPolicy::LargestFile);
        options.detectMetadata = true;
        const QList<MatchGroup> expected {
            { 1, MatchType::IdenticalFile, { 4, 5 }, 4, 1.0, 1 },
            { 2, MatchType::SameAudio, { 2, 3 }, 3, 0.99, 8 },
            { 3, MatchType::SameAudio, { 1, 0 }, 1, 0.99, 5 }, // as large as the next, but earlier in the track list
            { 4, MatchType::SameAudio, { 7, 6 }, 7, 0.99, 5 },
            { 5, MatchType::SameAudio, { 8, 9 }, 8, 0.99, 2 }, // identical files, too, but that is more certain
            { 6, MatchType::SameSong, { 12, 11, 10 }, 12, 0.65, 18 }, // an identical pair and a song
        };
        QCOMPARE(epr::buildMatchGroups(tracks, options, notCancelled), expected);
    }

    void membersStandInTheLocalesOrder()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        QList<TrackInfo> tracks;
        for (const auto &name : { u"z"_s, u"\u00e4b"_s, u"B"_s, u"a"_s, u"a\u0308b"_s, u"A"_s, u"a"_s })
            tracks << track(name, 1, u"f"_s);
        const QList<qint32> members = epr::buildMatchGroups(tracks, {}, notCancelled).first().members;
        for (qsizetype i = 1; i < members.size(); ++i)
            QVERIFY(QString::localeAwareCompare(tracks[members[i - 1]].path, tracks[members[i]].path) <= 0);
        QVERIFY(members.indexOf(3) < members.indexOf(6)); // equal paths keep the order of the track list
        QLocale::setDefault(QLocale::c());
    }

    void progressFollowsThePasses_data()
    {
        QTest::addColumn<int>("trackCount");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("cancel");
        QTest::addColumn<QString>("calls");
        QTest::addColumn<int>("groupCount");
        const QString exact = u"0/4 Matching identical files, 1/4 Matching audio payloads, "_s;
        const QString metadata = u"3/4 Comparing metadata, "_s;
        const QString complete = u"4/4 Grouping complete, "_s;
        QTest::newRow("nothing to compare") << 1 << true << 0 << QString() << 0;
        QTest::newRow("every pass") << 2 << true << 0 << exact + metadata + complete << 1;
        QTest::newRow("no pass") << 2 << false << 0 << complete << 0;
        QTest::newRow("a cancelled scan keeps exact matches") << 2 << true << 1 << exact + complete << 1;
    }

    void progressFollowsThePasses()
    {
        QFETCH(int, trackCount);
        QFETCH(bool, enabled);
        QFETCH(int, cancel);
        ScanOptions options;
        options.detectAcoustic = false;
        options.detectIdentical = options.detectSameAudio = options.detectMetadata = enabled;
        const QList<TrackInfo> tracks(trackCount, track(u"a"_s, 1, u"f"_s));
        QString calls;
        const auto note = [&calls](int step, int total, const QString &text) {
            calls += u"%1/%2 %3, "_s.arg(step).arg(total).arg(text);
        };
        const std::atomic<qint32> cancelFlag { cancel };
        const QList<MatchGroup> groups = epr::buildMatchGroups(tracks, options, cancelFlag, note);
        QTEST(calls, "calls");
        QTEST(static_cast<int>(groups.size()), "groupCount");
    }

    void normalisedText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("normalised");
        QTest::newRow("a remaster is the same song") << u"Hey Jude (Remastered 2009)"_s << u"hey jude"_s;
        QTest::newRow("brackets need not agree") << u"Song [Live at Wembley) x"_s << u"song x"_s;
        QTest::newRow("only the passage up to the next bracket counts")
            << u"A (one) two (live) b"_s << u"a one two b"_s;
        QTest::newRow("a leading article goes once") << u"The The Band"_s << u"the band"_s;
        QTest::newRow("an article that is all stays") << u" The "_s << u"the"_s;
    }

    void normalisedText()
    {
        QFETCH(QString, text);
        QTEST(epr::normaliseForMatch(text), "normalised");
    }

    void normalisationEqualsThePatterns()
    {
        const QStringList pieces =
            u"( [ { ) ] } \t \v \u00a0 \u0085 \u2003 Live rem IX ver\u017fion the \u212a \u0130 - 7 "
            u"\U0001d11e"_s.split(u' ')
            << u" "_s << u" "_s;
        QRandomGenerator random(3);
        for (int round = 0; round < 20000; ++round) {
            QString text;
            for (int count = random.bounded(14); count > 0; --count)
                text += pieces[random.bounded(static_cast<int>(pieces.size()))];
            QCOMPARE(epr::normaliseForMatch(text), slowNormalise(text));
        }
    }

    // The second copy is the one to keep, wherever it stands.
    void betterCopyIsKept_data()
    {
        QTest::addColumn<qint32>("policy");
        QTest::addColumn<QList<TrackInfo>>("tracks");
        const auto row = [](const char *name, qint32 policy, auto change) {
            QList<TrackInfo> tracks(2, track(u"C:/m/x.mp3"_s, 10));
            change(tracks[0], tracks[1]);
            QTest::newRow(name) << policy << tracks;
        };
        const auto time = [](qint64 ms) { return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC); };
        row("bit rate before size", 0, [](auto &a, auto &b) { a.size = 11, b.bitrateKbps = 320; });
        row("equal bit rates keep the larger file", 0, [](auto &, auto &b) { b.size = 11; });
        row("a known duration beats none", 1, [](auto &a, auto &b) { a.size = 11, b.durationMs = 1; });
        row("the larger file", 2, [](auto &a, auto &b) { a.bitrateKbps = 320, b.size = 11; });
        row("a preferred format before bit rate", 3,
            [](auto &a, auto &b) { a.suffix = u"mp3"_s, b.suffix = u"flac"_s, a.bitrateKbps = 320; });
        row("the last listed format beats one that is not", 3,
            [](auto &a, auto &b) { a.suffix = u"aif"_s, b.suffix = u"wma"_s; });
        row("formats in capitals are not listed", 3,
            [](auto &a, auto &b) { a.suffix = u"FLAC"_s, b.suffix = u"WMA"_s, b.bitrateKbps = 1; });
        row("the shallower folder", 4, [](auto &a, auto &b) { a.path = u"C:\\a\\b\\x"_s, b.path = u"C:/a/longer"_s; });
        row("equal depth keeps the shorter path", 4, [](auto &a, auto &b) { a.path = u"C:/aa"_s, b.path = u"C:/b"_s; });
        row("the older file", 5, [&](auto &a, auto &b) { a.mtime = time(0), b.mtime = time(-1); });
        row("an unknown time is not the oldest", 5, [&](auto &, auto &b) { b.mtime = time(99); });
        row("the newer file", 6, [&](auto &a, auto &b) { a.mtime = time(-1), b.mtime = time(0); });
        row("an unknown time is not the newest", 6, [&](auto &, auto &b) { b.mtime = time(-1); });
        row("tags are weighed", 7, [](auto &a, auto &b) {
            a.title = a.artist = a.comment = u"x"_s, a.trackNo = 1;
            b.title = b.album = b.albumArtist = b.genre = b.year = u"x"_s;
        });
        row("equal tags keep the higher bit rate", 7, [](auto &, auto &b) { b.bitrateKbps = 1; });
    }

    void betterCopyIsKept()
    {
        QFETCH(qint32, policy);
        QFETCH(QList<TrackInfo>, tracks);
        ScanOptions options;
        options.keeperPolicy = policy;
        QCOMPARE(epr::chooseKeeper({ 0, 1 }, tracks, options), 1);
        QCOMPARE(epr::chooseKeeper({ 1, 0 }, tracks, options), 1);
    }

    void equalCopiesKeepTheFirst()
    {
        QList<TrackInfo> tracks(2, track(u"C:/m/x.mp3"_s, 10));
        ScanOptions options;
        for (options.keeperPolicy = -1; options.keeperPolicy < 9; ++options.keeperPolicy)
            QCOMPARE(epr::chooseKeeper({ 1, 0 }, tracks, options), 1);
        tracks[0].bitrateKbps = 320;
        for (const qint32 unknownPolicy : { smallestInt, -1, 8, largestInt }) {
            options.keeperPolicy = unknownPolicy;
            QCOMPARE(epr::chooseKeeper({ 1, 0 }, tracks, options), 1);
        }
        QCOMPARE(epr::chooseKeeper({}, tracks, options), -1);
    }
};

QTEST_GUILESS_MAIN(TestMatch)
#include "tst_match.moc"
