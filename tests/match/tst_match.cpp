// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "copyrelation.h"
#include "keeperpolicy.h"
#include "keeperrules.h"
#include "matching.h"
#include "matchunion.h"
#include "rows.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;
using namespace epr;

namespace {

constexpr qint32 smallestInt = std::numeric_limits<qint32>::min();
constexpr qint32 largestInt = std::numeric_limits<qint32>::max();

std::atomic<qint32> notCancelled { 0 };

template <typename T> T anyOf(QRandomGenerator &random, const QList<T> &values)
{
    return values[random.bounded(static_cast<int>(values.size()))];
}

QList<TrackInfo> randomTracks(QRandomGenerator &random)
{
    QList<TrackInfo> tracks(random.bounded(2, 14));
    for (TrackInfo &track : tracks) {
        track.path = u"/m/%1"_s.arg(random.bounded(12)); // some paths are equal
        track.size = random.bounded(3);
        track.stream.durationMs = anyOf<qint64>(random, { -5, 0, 1000, 2000, 3000, 4001, 9000, 12000, 60000 });
        track.tags.title = anyOf<QString>(random, { u"Jingle"_s, u"Jingle (Edit)"_s, u"(Remix)"_s, {} });
        track.tags.artist = anyOf<QString>(random, { u"abc"_s, u"The ABC"_s, u"ab"_s, {} });
        track.fullHash = anyOf<QString>(random, { {}, {}, u"f1"_s, u"f2"_s, u"F1"_s });
        track.audioHash = anyOf<QString>(random, { {}, {}, {}, u"a1"_s, u"a2"_s });
    }
    return tracks;
}

/// What each pass means, for one pair of tracks.
bool agree(const TrackInfo &a, const TrackInfo &b, MatchType type, qint32 toleranceMs)
{
    if (type == MatchType::IdenticalFile)
        return !a.fullHash.isEmpty() && a.fullHash == b.fullHash;
    if (type == MatchType::SameAudio)
        return !a.audioHash.isEmpty() && a.audioHash == b.audioHash;
    if (a.tags.title.isEmpty() || a.tags.artist.isEmpty() || b.tags.title.isEmpty() || b.tags.artist.isEmpty())
        return false;
    if (metadataKey(a) != metadataKey(b) || metadataKey(a).size() <= 3)
        return false;
    return a.stream.durationMs <= 0 || b.stream.durationMs <= 0
        || qAbs(a.stream.durationMs - b.stream.durationMs) <= toleranceMs;
}

/// Other pairs may join the same sets.
QList<MatchGroup> withoutLinks(QList<MatchGroup> groups)
{
    for (MatchGroup &group : groups)
        group.links.clear();
    return groups;
}

/// Whether the links reach every copy from the kept one, and say what is so.
bool linksExplain(const MatchGroup &group, const QList<TrackInfo> &tracks, qint32 toleranceMs)
{
    const auto isTrue = [&](const MatchLink &link) {
        return agree(tracks[link.first], tracks[link.second], link.type, toleranceMs);
    };
    const auto isReached = [relations = relationsToKept(group, tracks)](qint32 member) {
        return relations.value(member).type != MatchType::Unmatched;
    };
    return std::ranges::all_of(group.links, isTrue)
        && std::ranges::count_if(group.members, isReached) == group.members.size() - 1;
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
            ScanOptions options;
            options.detectIdentical = random.bounded(3) > 0;
            options.detectSameAudio = random.bounded(3) > 0;
            options.detectMetadata = random.bounded(3) > 0;
            options.metadataTolerance = anyOf<qint32>(random, { 0, 1000, 1001, 3000, -1, smallestInt, largestInt });
            MatchUnion slow(tracks.size());
            for (const auto &[enabled, type] : { std::pair(options.detectIdentical, MatchType::IdenticalFile),
                                                 { options.detectSameAudio, MatchType::SameAudio },
                                                 { options.detectMetadata, MatchType::SameSong } })
                for (qint32 a = 0; enabled && a < tracks.size(); ++a)
                    for (qint32 b = a + 1; b < tracks.size(); ++b)
                        if (agree(tracks[a], tracks[b], type, options.metadataTolerance))
                            slow.link(a, b, type);
            const QList<MatchGroup> groups = buildMatchGroups(tracks, options, notCancelled);
            QCOMPARE(withoutLinks(groups), withoutLinks(groupSets(slow, tracks, options)));
            for (const MatchGroup &group : groups)
                QVERIFY2(linksExplain(group, tracks, options.metadataTolerance), qPrintable(u"round %1"_s.arg(round)));
        }
    }

    void weakestLinkNamesTheGroupAndLargestSavingLeads()
    {
        QList<TrackInfo> tracks;
        tracks << track(u"g"_s, 2, u"file"_s, u"too"_s) << track(u"h"_s, 2, u"file"_s, u"too"_s)
               << track(u"d2"_s, 5, {}, u"large"_s) << track(u"d1"_s, 6, {}, u"large"_s)
               << track(u"c1"_s, 5, {}, u"equal"_s) << track(u"c0"_s, 5, {}, u"equal"_s) << track(u"a"_s, 1, u"tiny"_s)
               << track(u"b"_s, 1, u"tiny"_s) << track(u"z"_s, 9, u"pair"_s) << track(u"y"_s, 9, u"pair"_s)
               << track(u"x"_s, 9);
        tracks[8].tags.artist = tracks[10].tags.artist = u"Abba"_s;
        tracks[8].tags.title = tracks[10].tags.title = u"Waterloo"_s;
        ScanOptions options;
        options.keeperPolicy = static_cast<qint32>(KeeperPolicy::LargestFile);
        options.detectMetadata = true;
        const QList<MatchGroup> expected {
            { 1, MatchType::IdenticalFile, { 6, 7 }, 6, 1.0, 1 },
            { 2, MatchType::SameAudio, { 3, 2 }, 3, 0.99, 5 }, // saves as much as the next, but is found earlier
            { 3, MatchType::SameAudio, { 5, 4 }, 5, 0.99, 5 },
            { 4, MatchType::SameAudio, { 0, 1 }, 0, 0.99, 2 }, // identical files, too, but that is more certain
            { 5, MatchType::SameSong, { 10, 9, 8 }, 10, 0.65, 18 }, // an identical pair and a song
        };
        QCOMPARE(withoutLinks(buildMatchGroups(tracks, options, notCancelled)), expected);
    }

    void cancelledScanKeepsItsExactMatches()
    {
        const QList<TrackInfo> tracks(2, track(u"a"_s, 1, u"f"_s));
        ScanOptions options;
        options.detectMetadata = true;
        QString calls;
        const auto note = [&calls](int step, int, const QString &text) { calls += QString::number(step) + text; };
        QCOMPARE(buildMatchGroups(tracks, options, std::atomic<qint32>(1), note).size(), 1);
        QCOMPARE(calls, u"0Matching identical files1Matching audio payloads4Grouping complete"_s);
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
            QCOMPARE(normaliseForMatch(text), slowNormalise(text));
        }
    }

    void betterCopyIsKept_data()
    {
        QTest::addColumn<KeeperPolicy>("policy");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<TrackInfo>("worse");
        QTest::addColumn<TrackInfo>("better");
        const auto row = [](const char *name, KeeperPolicy policy, const char *reason, auto change) {
            TrackInfo worse = track(u"C:/m/x.mp3"_s, 10);
            TrackInfo better = worse;
            change(worse, better);
            QTest::newRow(name) << policy << QString::fromLatin1(reason) << worse << better;
        };
        const auto time = [](qint64 ms) { return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC); };
        row("bit rate before size", KeeperPolicy::HighestBitrate, "highest bit rate",
            [](auto &a, auto &b) { a.size = 11, b.stream.bitrateKbps = 320; });
        row("equal bit rates keep the larger file", KeeperPolicy::HighestBitrate, "larger file of one bit rate",
            [](auto &, auto &b) { b.size = 11; });
        row("a known duration beats none", KeeperPolicy::LongestDuration, "longest",
            [](auto &a, auto &b) { a.size = 11, b.stream.durationMs = 1; });
        row("the last listed format", KeeperPolicy::PreferredFormat, "preferred format",
            [](auto &a, auto &b) { a.suffix = u"aif"_s, b.suffix = u"wma"_s; });
        row("the shallower folder", KeeperPolicy::ShallowestFolder, "shallowest folder",
            [](auto &a, auto &b) { a.path = u"C:\\a\\b\\x"_s, b.path = u"C:/a/longer"_s; });
        row("equal depth keeps the shorter path", KeeperPolicy::ShallowestFolder, "shortest path",
            [](auto &a, auto &b) { a.path = u"C:/aa"_s, b.path = u"C:/b"_s; });
        row("the older file", KeeperPolicy::OldestFile, "oldest file",
            [&](auto &a, auto &b) { a.mtime = time(0), b.mtime = time(-1); });
        row("an unknown time is not the oldest", KeeperPolicy::OldestFile, "oldest file",
            [&](auto &, auto &b) { b.mtime = time(99); });
        row("the newer file", KeeperPolicy::NewestFile, "newest file",
            [&](auto &a, auto &b) { a.mtime = time(-1), b.mtime = time(0); });
        row("tags are weighed", KeeperPolicy::MostCompleteTags, "most complete tags", [](auto &a, auto &b) {
            a.tags.title = a.tags.artist = a.tags.comment = u"x"_s, a.tags.trackNo = 1;
            b.tags.title = b.tags.album = b.tags.albumArtist = b.tags.genre = b.tags.year = u"x"_s;
        });
    }

    void betterCopyIsKept()
    {
        QFETCH(const KeeperPolicy, policy);
        QFETCH(const TrackInfo, worse);
        QFETCH(const TrackInfo, better);
        QFETCH(const QString, reason);
        ScanOptions options;
        options.keeperPolicy = static_cast<qint32>(policy);
        QCOMPARE(chooseKeeper({ 0, 1 }, { worse, better }, options), 1);
        QCOMPARE(chooseKeeper({ 0, 1 }, { better, worse }, options), 0);
        QCOMPARE(chooseKeeper({ 1, 0 }, { worse, worse }, options), 1); // of equals the first
        const MatchGroup group { 1, MatchType::SameAudio, { 0, 1 }, 1 };
        QCOMPARE(keepText(group, { worse, better }, options), u"kept: "_s + reason);
        QCOMPARE(keepText(group, { better, worse }, options), QString());
        QCOMPARE(keepText({ 1, MatchType::SameAudio, { 1, 0 }, 1 }, { worse, worse }, options),
                 u"kept: first of equal copies"_s);
    }

    // Copies are written "path kbit/s".
    void ownRulesDecideInTheirOrder_data()
    {
        const test::Rows<QString, QString, QString, QString> row("rules", "copies", "kept", "reason");
        row("lossless", u"lossless bitrate"_s, u"/a.wma 900|/b.mp3 320|/c.flac 700"_s, u"/a.wma"_s,
            u"highest bit rate"_s);
        row("one lossless", u"lossless bitrate"_s, u"/a.mp3 320|/b.mp3 128|/c.flac 700"_s, u"/c.flac"_s, u"lossless"_s);
        row("first rule first", u"bitrate lossless"_s, u"/a.flac 300|/b.mp3 320"_s, u"/b.mp3"_s, u"highest bit rate"_s);
        row("off", u"-bitrate -lossless"_s, u"/a.mp3 128|/b.flac 900"_s, u"/a.mp3"_s, u"first of equal copies"_s);
        row("unknown stays", u"bitrate format"_s, u"/a.mp3 128|/b.mp3 320|/c.flac 0"_s, u"/c.flac"_s,
            u"preferred format"_s);
        row("unknown does not win", u"bitrate"_s, u"/a.mp3 320|/b.flac 0"_s, u"/a.mp3"_s, u"first of equal copies"_s);
        row("folders", u"folders folder:/Playout folder:/Ar"_s, u"/Archive/a.mp3 320|/Ar/b.mp3 128"_s, u"/Ar/b.mp3"_s,
            u"in /Ar"_s);
        row("order of folders", u"folders folder:/P folder:/A"_s, u"/A/a.mp3 320|/P/b.mp3 128"_s, u"/P/b.mp3"_s,
            u"in /P"_s);
        row("protected", u"protected bitrate"_s, u"/a.mp3 320|/Safe/b.mp3 128"_s, u"/Safe/b.mp3"_s,
            u"in a protected folder"_s);
        row("unreadable", u"bitrate"_s, u"/damaged.mp3 320|/b.mp3 128"_s, u"/b.mp3"_s,
            u"other copies could not be read"_s);
        row("all unreadable", u"bitrate"_s, u"/damaged.mp3 128|/damaged/b.mp3 320"_s, u"/damaged/b.mp3"_s,
            u"highest bit rate"_s);
        row("of a later version", u"aura bitrate"_s, u"/a.mp3 128|/b.mp3 320"_s, u"/b.mp3"_s, u"highest bit rate"_s);
        row("standard", {}, u"/a.mp3 320|/b.mp3 320|/c.flac 100"_s, u"/c.flac"_s, u"lossless"_s);
    }

    void ownRulesDecideInTheirOrder()
    {
        QFETCH(const QString, rules);
        QFETCH(const QString, copies);
        ScanOptions options;
        options.keeperPolicy = static_cast<qint32>(KeeperPolicy::OwnRules);
        options.keeperRules = rules.split(u' ', Qt::SkipEmptyParts);
        options.protectedFolders = { u"/Safe"_s };
        QList<TrackInfo> tracks;
        MatchGroup group;
        for (const QString &copy : copies.split(u'|')) {
            group.members << static_cast<qint32>(tracks.size());
            TrackInfo each = track(copy.section(u' ', 0, 0));
            each.suffix = each.path.section(u'.', 1);
            each.error = each.path.contains(u"damaged"_s) ? u"damaged"_s : QString();
            each.stream.bitrateKbps = copy.section(u' ', 1).toInt();
            tracks << each;
        }
        group.keep = chooseKeeper(group.members, tracks, options);
        QTEST(tracks.value(group.keep).path, "kept");
        QTEST(keepText(group, tracks, options).remove(u"kept: "_s), "reason");
    }

    void whatWasMeasuredDecidesOnlyLater()
    {
        ScanOptions options;
        options.keeperPolicy = static_cast<qint32>(KeeperPolicy::OwnRules);
        const QList<TrackInfo> tracks(3);
        MatchGroup group { 1, MatchType::SameRecording, { 0, 1, 2 }, 0 };
        group.check.measures[0].bandwidthHz = 15000;
        group.check.measures[1].bandwidthHz = group.check.measures[2].bandwidthHz = 20000;
        group.check.measures[1].error = u"damaged"_s;
        QCOMPARE(chooseKeeper(group.members, tracks, options), 0);
        QCOMPARE(chooseKeeperAgain(group, tracks, options), 2);
        group.check.measures[2].decodingErrors = 1;
        QCOMPARE(chooseKeeperAgain(group, tracks, options), 0);
        group.check.measures[0].decodingErrors = 1; // both have errors: the next rule decides
        QCOMPARE(chooseKeeperAgain(group, tracks, options), 2);
        group.check.measures[0].decodingErrors = group.check.measures[2].decodingErrors = 0;
        group.keep = 2;
        QCOMPARE(keepText(group, tracks, options), u"kept: highest true bandwidth"_s);
    }

    void storedRulesKeepWhatIsNotKnown()
    {
        const QStringList words { u"older"_s, u"-aura"_s, u"older"_s, u"folder:/a b"_s };
        const KeeperRules rules(words);
        QCOMPARE(rules.words().first(2), words.first(2));
        QCOMPARE(rules.words().size(), 14); // with the known ones, off, and the folder
        QCOMPARE(rules.words().filter(u"-"_s).size(), 12);
        QCOMPARE(KeeperRules(rules.words()).words(), rules.words());
        QCOMPARE(KeeperRules().words().filter(u"-"_s), QStringList({ u"-format"_s, u"-shallower"_s, u"-newer"_s }));
    }
};

QTEST_GUILESS_MAIN(TestMatch)
#include "tst_match.moc"
