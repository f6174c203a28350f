// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "acousticmatch.h"
#include "acousticrules.h"
#include "bitkernel.h"
#include "candidaterows.h"
#include "checkpoint.h"
#include "matchunion.h"
#include "scanoptions.h"

#include <QRandomGenerator>
#include <QTest>

#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <set>

using namespace Qt::StringLiterals;
using epr::MatchUnion;
using epr::ScanOptions;
using epr::TrackInfo;
using List = QList<quint32>;
using Pairs = QList<std::pair<qint32, qint32>>;

namespace {

constexpr qint32 smallestInt = std::numeric_limits<qint32>::min();
constexpr qint32 largestInt = std::numeric_limits<qint32>::max();
constexpr qint64 longest = std::numeric_limits<qint64>::max();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::atomic<qint32> notCancelled { 0 };

ScanOptions optionsFor(qint32 engine, double threshold, qint32 durationTolerance = 5)
{
    ScanOptions options;
    options.fingerprintEngine = engine;
    options.threshold = options.chromaprintThreshold = threshold;
    options.durationTolerance = durationTolerance;
    return options;
}

// Acoustic matching in its plainest form: every offset, every pair, nothing given up early.

struct Sums {
    qint64 words = 0;
    qint64 differing = 0;
    epr::MaskedBits masked;
};

Sums sumsAt(const List &a, const List &maskA, const List &b, const List &maskB, qsizetype offset)
{
    Sums sums;
    for (qsizetype i = std::max<qsizetype>(0, -offset); i < a.size() && i + offset < b.size(); ++i) {
        const quint32 valid = maskA.value(i) & maskB.value(i + offset);
        ++sums.words;
        sums.differing += std::popcount(a[i] ^ b[i + offset]);
        sums.masked.differing += std::popcount((a[i] ^ b[i + offset]) & valid);
        sums.masked.trusted += std::popcount(valid);
    }
    return sums;
}

double plainBer(const List &a, const List &b, qsizetype maxOffset, qsizetype minOverlap, qsizetype step = 1)
{
    double best = 1.0;
    for (qsizetype offset = -maxOffset; offset <= maxOffset; offset += step)
        if (const Sums sums = sumsAt(a, {}, b, {}, offset); sums.words >= minOverlap)
            best = std::min(best, static_cast<double>(sums.differing) / (32.0 * static_cast<double>(sums.words)));
    return best;
}

double plainAligned(const List &a, const List &b)
{
    return std::min(a.size(), b.size()) >= 80 ? plainBer(a, b, 40, 80) : plainBer(a, b, 0, 8);
}

double plainMasked(const List &a, const List &maskA, const List &b, const List &maskB)
{
    double best = 2.0;
    for (qsizetype offset = -48; offset <= 48 && a.size() == maskA.size() && b.size() == maskB.size(); ++offset)
        if (const auto [words, all, bits] = sumsAt(a, maskA, b, maskB, offset);
            words >= 40 && bits.trusted >= 4 * words)
            best = std::min(best, static_cast<double>(bits.differing) / static_cast<double>(bits.trusted));
    return best < 2.0 ? best : plainBer(a, b, 48, 40);
}

bool plainPrefilter(const List &a, const List &b, double threshold, bool chromaprint)
{
    const qsizetype prefix = std::min({ a.size(), b.size(), qsizetype(chromaprint ? 160 : 200) });
    if (prefix < 40)
        return prefix > 0;
    const qsizetype step = chromaprint ? 20 : 24;
    return plainBer(a.first(prefix), b, 2 * step, 32, step) <= threshold + (chromaprint ? 0.12 : 0.18);
}

std::set<quint32> keysOf(const List &words, bool chromaprint)
{
    std::set<quint32> keys;
    const qsizetype step = chromaprint ? 1 : std::max<qsizetype>(1, words.size() / 400);
    for (qsizetype i = 0; i < words.size() && words.size() >= 40; i += step)
        chromaprint ? keys.insert({ words[i] }) : keys.insert({ words[i] & 0xFFFF, 0x10000 | words[i] >> 16 });
    return keys;
}

Pairs plainCandidates(const QList<TrackInfo> &tracks, bool chromaprint)
{
    std::map<quint32, QList<qint32>> index;
    for (qint32 track = 0; track < tracks.size(); ++track)
        for (const quint32 key : keysOf(tracks[track].fingerprint, chromaprint))
            index[key] << track;
    std::map<std::pair<qint32, qint32>, int> shared;
    for (const auto &[key, list] : index)
        for (qsizetype q = 0; q < list.size() && list.size() <= 64; ++q) // for up to 3,200 tracks
            for (qsizetype p = 0; p < q; ++p)
                ++shared[{ list[p], list[q] }];
    Pairs pairs;
    for (const auto &[pair, count] : shared)
        if (count >= (chromaprint ? 5 : 3))
            pairs << pair;
    return pairs;
}

/// Compares the first candidates, up to the given number of them.
void plainMatch(const QList<TrackInfo> &tracks, const ScanOptions &options, qsizetype limit, MatchUnion &sets)
{
    for (const auto &[a, b] : plainCandidates(tracks, options.fingerprintEngine == 1).mid(0, limit))
        if (sets.findRoot(a) != sets.findRoot(b)
            && epr::durationsAgree(tracks[a].durationMs, tracks[b].durationMs, options.durationTolerance)
            && epr::sameRecording(tracks[a], tracks[b], epr::acousticRules(options)))
            sets.link(a, b, epr::MatchType::SameRecording);
}

Pairs foundCandidates(const QList<TrackInfo> &tracks, bool chromaprint)
{
    const epr::ProgressFn none;
    const epr::Checkpoint checkpoint(notCancelled, none);
    auto lists = chromaprint ? epr::wordPostings(tracks, checkpoint) : epr::halfWordPostings(tracks, checkpoint);
    epr::CandidateRows rows(std::move(lists), tracks.size(), chromaprint ? 5 : 3);
    Pairs pairs;
    for (qint32 a = 0; a < tracks.size(); ++a)
        for (const qint32 b : rows.row(a))
            pairs << std::pair(a, b);
    return pairs;
}

Pairs rootsAndMethods(MatchUnion &sets)
{
    Pairs all;
    for (qint32 track = 0; track < sets.trackCount(); ++track)
        all << std::pair(sets.findRoot(track), static_cast<qint32>(sets.method(track)));
    return all;
}

List randomWords(QRandomGenerator &random, qsizetype length)
{
    List words(length);
    for (quint32 &word : words)
        word = random.generate();
    return words;
}

/// As another encoding would give it that starts some words earlier or later: shifted, with some bits flipped.
List copyOf(QRandomGenerator &random, const List &words, qsizetype length, int noise)
{
    List copy = randomWords(random, length);
    const qsizetype shift = random.bounded(-50, 51);
    for (qsizetype i = std::max<qsizetype>(0, -shift); i < std::min(length, words.size() - shift); ++i) {
        copy[i] = words[i + shift];
        for (int flip = 0; flip < noise; ++flip)
            copy[i] ^= 1U << random.bounded(32);
    }
    return copy;
}

enum Mask { None, AllZero, Sparse, Dense, OneShort };

/// Two sparse masks have about the four bits per word in common that make them count.
List maskFor(QRandomGenerator &random, qsizetype length, Mask kind)
{
    List mask = randomWords(random, kind == None ? 0 : kind == OneShort ? std::max<qsizetype>(0, length - 1) : length);
    const quint32 more = random.bounded(2) == 0 ? 0 : 0xFFFFFFFFU;
    for (quint32 &word : mask)
        word = kind == AllZero ? 0
            : kind == Sparse   ? word & (random.generate() | (random.generate() & (random.generate() | more)))
                               : word;
    return mask;
}

/// Tracks that share keys by chance, some of them known to most of the library, and noisy copies of earlier tracks.
QList<TrackInfo> randomLibrary(QRandomGenerator &random, qsizetype trackCount)
{
    constexpr qsizetype lengths[] { 0, 39, 40, 41, 90, 120, 399, 400, 799, 800, 810 };
    constexpr qint64 durations[] { 0, -5, 180000, 180000, 180001, 189000, 190000 };
    QList<TrackInfo> tracks(trackCount);
    for (qsizetype number = 0; number < trackCount; ++number) {
        TrackInfo &track = tracks[number];
        if (number > 0 && random.bounded(3) == 0) {
            track = tracks[random.bounded(number)];
            for (quint32 &word : track.fingerprint)
                word ^= random.bounded(4) == 0 ? 1U << random.bounded(32) : 0;
            track.fingerprintAlt = random.bounded(2) == 0 ? track.fingerprint : List();
            for (quint32 &word : track.fingerprint)
                word ^= track.fingerprintAlt.isEmpty() ? 0 : 0x1F; // too much for the usual threshold
        } else {
            track.fingerprint.resize(lengths[random.bounded(random.bounded(4) == 0 ? 11 : 6)]);
            for (quint32 &word : track.fingerprint)
                word = random.bounded(100) < 12 ? random.bounded(20) * 0x01010101U : random.bounded(4000) * 2654435761U;
        }
        track.fingerprintMask = random.bounded(3) == 0 ? List() : List(track.fingerprint.size(), random.generate());
        track.durationMs = durations[random.bounded(7)];
    }
    return tracks;
}

/// The same recording over and over. Two of three have a duration that keeps them apart from all the rest.
QList<TrackInfo> copies(qsizetype trackCount)
{
    QRandomGenerator random(3);
    QList<TrackInfo> tracks(trackCount);
    tracks.first().fingerprint = randomWords(random, 200); // more shared keys than a count of 8 bits holds
    for (qsizetype number = 0; number < trackCount; ++number) {
        tracks[number].fingerprint = tracks.first().fingerprint;
        tracks[number].durationMs = 100000 * (1 + number % 3 * number);
    }
    return tracks;
}

} // namespace

class TestAcoustic final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void kernelsCountAlike();
    void distances();
    void prefilter();
    void durations();
    void sameRecording();
    void candidates();
    void tooCommonKeysArePruned();
    void links_data();
    void links();
    void cancelling();
    void progress();
};

void TestAcoustic::kernelsCountAlike()
{
    QRandomGenerator random(7);
    List words = randomWords(random, 400);
    for (quint32 &word : words)
        word = random.bounded(2) == 0 ? word : random.bounded(2) == 0 ? 0 : 0xFFFFFFFFU;
    for (const qsizetype count : { 0, 1, 2, 3, 4, 5, 7, 8, 63, 64, 65, 199, 200 }) {
        const List a = words.mid(random.bounded(3), count);
        const List b = words.last(count);
        const Sums plain = sumsAt(a, b, b, a, 0);
        for (const epr::BitKernel &kernel : epr::bitKernels()) {
            QCOMPARE(kernel.differing(a.data(), b.data(), count), plain.differing);
            QVERIFY(kernel.masked({ a.data(), b.data() }, { b.data(), a.data() }, count) == plain.masked);
        }
    }
}

// Copies and strangers of all lengths around every limit. A ceiling changes nothing below it, and brings nothing there.
void TestAcoustic::distances()
{
    constexpr qsizetype lengths[] { 0, 7, 8, 39, 40, 41, 79, 80, 81, 130, 300 };
    constexpr std::pair<Mask, Mask> masks[] { { None, None },     { AllZero, AllZero }, { Dense, Dense },
                                              { Sparse, Sparse }, { Dense, None },      { OneShort, Dense } };
    QRandomGenerator random(11);
    for (int round = 0; round < 11 * 11 * 6; ++round) {
        const List a = randomWords(random, lengths[round % 11]);
        const List b = copyOf(random, a, lengths[round / 11 % 11], random.bounded(20));
        const List maskA = maskFor(random, a.size(), masks[round / 121].first);
        const List maskB = maskFor(random, b.size(), masks[round / 121].second);
        const double aligned = plainAligned(a, b);
        const double masked = plainMasked(a, maskA, b, maskB);
        for (const double ceiling : { 1.0, aligned, masked, 0.1, 0.25, 0.45, -1.0, notANumber }) {
            const double lowAligned = epr::berAligned(a, b, { 40, 80, ceiling });
            const double lowMasked = epr::berMasked({ a, maskA }, { b, maskB }, { 48, 40, ceiling });
            QVERIFY(aligned <= ceiling ? lowAligned == aligned : !(lowAligned <= ceiling));
            QVERIFY(masked <= ceiling ? lowMasked == masked : !(lowMasked <= ceiling));
        }
    }
}

void TestAcoustic::prefilter()
{
    constexpr qsizetype lengths[] { 0, 1, 39, 40, 41, 55, 56, 71, 72, 73, 159, 160, 161, 199, 200, 201, 260 };
    constexpr double thresholds[] { 0.25, 0.12, 0.3, -1.0, -0.18, 1e300, notANumber };
    QRandomGenerator random(13);
    int passed = 0;
    for (int round = 0; round < 2000; ++round) {
        const ScanOptions options = optionsFor(random.bounded(2), thresholds[random.bounded(7)]);
        const List a = randomWords(random, lengths[random.bounded(17)]);
        const List b = copyOf(random, a, lengths[random.bounded(17)], random.bounded(20));
        const bool expected = plainPrefilter(a, b, options.threshold, options.fingerprintEngine == 1);
        QCOMPARE(epr::acousticPrefilter(a, b, epr::acousticRules(options)), expected);
        passed += expected ? 1 : 0;
    }
    QVERIFY(passed > 400 && passed < 1600);
    // A quarter of the bits is the limit here, and what comes behind the beginning does not count.
    QVERIFY(epr::acousticPrefilter(List(160) + List(9, ~0U), List(300, 0xFF), epr::acousticRules(optionsFor(1, 0.13))));
    QVERIFY(epr::acousticPrefilter(List(200) + List(9, ~0U), List(300, 0xFF), epr::acousticRules(optionsFor(0, 0.07))));
}

void TestAcoustic::durations()
{
    constexpr qint64 fivePercent = 461168601842738790; // of the longest, rounded down
    const struct {
        qint64 a, b;
        qint32 tolerance;
        bool agree;
    } rows[] {
        { 180000, 189000, 5, true },
        { 180000, 190000, 5, false },
        { 133, 126, 5, false }, // by a fraction of a millisecond
        { 7, 7, 0, true },
        { 200000, 200001, 0, false },
        { longest, -1, smallestInt, true }, // negative is unknown
        { longest, longest, smallestInt, false },
        { 1, longest, 100, true },
        { 1, longest, 99, false },
        { 1, longest, largestInt, true },
        { longest, longest - fivePercent, 5, true },
        { longest, longest - fivePercent - 1, 5, false },
    };
    for (const auto &[a, b, tolerance, agree] : rows) {
        QCOMPARE(epr::durationsAgree(a, b, tolerance), agree);
        QCOMPARE(epr::durationsAgree(b, a, tolerance), agree);
    }
}

void TestAcoustic::sameRecording()
{
    QRandomGenerator random(17);
    TrackInfo a;
    a.fingerprint = randomWords(random, 100);
    TrackInfo near = a;
    near.fingerprint[3] ^= 7; // 3 bits of 3200
    TrackInfo nearByAlternative = a;
    nearByAlternative.fingerprintAlt = near.fingerprint;
    for (quint32 &word : nearByAlternative.fingerprint)
        word ^= 0x1F; // passes the prefilter, but is no match
    TrackInfo late = a; // aligns between the offsets of the prefilter
    late.fingerprint = randomWords(random, 10) + a.fingerprint;
    for (const qint32 engine : { 0, 1 }) {
        const epr::AcousticRules rules = epr::acousticRules(optionsFor(engine, 3.0 / 3200));
        const epr::AcousticRules stricter = epr::acousticRules(optionsFor(engine, std::nextafter(3.0 / 3200, 0.0)));
        QVERIFY(epr::sameRecording(a, near, rules) && !epr::sameRecording(a, near, stricter));
        QCOMPARE(epr::sameRecording(a, nearByAlternative, rules), engine == 0);
        QVERIFY(!epr::sameRecording(a, late, rules));
        TrackInfo latest = a;
        latest.fingerprint = randomWords(random, engine == 0 ? 48 : 40) + a.fingerprint;
        QVERIFY(epr::sameRecording(a, latest, rules));
        QVERIFY(!epr::sameRecording(nearByAlternative, a, rules)); // only the second track's alternative is tried
    }
}

void TestAcoustic::candidates()
{
    QRandomGenerator random(23);
    for (const qsizetype trackCount : { 2, 3, 64, 65, 66, 130, 180 }) {
        const QList<TrackInfo> tracks = randomLibrary(random, trackCount);
        for (const bool chromaprint : { false, true }) {
            const Pairs expected = plainCandidates(tracks, chromaprint);
            QVERIFY(trackCount < 64 || expected.size() > trackCount / 8);
            QCOMPARE(foundCandidates(tracks, chromaprint), expected);
        }
    }
    for (const qsizetype length : { 799, 800 }) { // from 800 words on, only every other one is looked at
        QList<TrackInfo> tracks(2);
        for (qsizetype i = 0; i < length; ++i) {
            const auto half = static_cast<quint32>(i);
            tracks[0].fingerprint << (half << 16 | half);
            tracks[1].fingerprint << (i == 5 || i == 7 ? half << 16 | half : (half + 1000) * 0x10001U);
        }
        QCOMPARE(foundCandidates(tracks, false).size(), length == 799 ? 1 : 0);
    }
}

// Copies of one recording share all their keys, so that these are pruned or kept together. The limit is two percent of
// all tracks, unusable ones too, but 64 at least and 256 at most.
void TestAcoustic::tooCommonKeysArePruned()
{
    const struct {
        qsizetype trackCount, copyCount;
        bool found;
    } rows[] { { 64, 64, true }, { 3249, 65, false }, { 3250, 65, true }, { 20000, 256, true }, { 20000, 257, false } };
    for (const auto &[trackCount, copyCount, found] : rows) {
        const QList<TrackInfo> tracks = copies(copyCount) + QList<TrackInfo>(trackCount - copyCount);
        const qsizetype pairs = found ? copyCount * (copyCount - 1) / 2 : 0;
        QCOMPARE(foundCandidates(tracks, false).size(), pairs);
        QCOMPARE(foundCandidates(tracks, true).size(), pairs);
    }
}

void TestAcoustic::links_data()
{
    QTest::addColumn<double>("threshold");
    QTest::addColumn<qint32>("tolerance");
    QTest::addRow("usual") << 0.12 << 5;
    QTest::addRow("equal durations only") << 0.2 << 0;
    QTest::addRow("smallest tolerance") << 0.2 << smallestInt;
    QTest::addRow("largest tolerance") << 0.2 << largestInt;
    QTest::addRow("everything matches") << 1e300 << 100;
    QTest::addRow("equal words only") << 0.0 << 100;
    QTest::addRow("nothing matches") << -1.0 << 100;
    QTest::addRow("no number") << notANumber << 100;
}

void TestAcoustic::links()
{
    QFETCH(const double, threshold);
    QFETCH(const qint32, tolerance);
    QRandomGenerator random(29);
    for (const qint32 engine : { 0, 1, smallestInt }) {
        const ScanOptions options = optionsFor(engine, threshold, tolerance);
        const QList<TrackInfo> tracks = randomLibrary(random, 110);
        MatchUnion expected(tracks.size());
        for (qint32 track = 7; track < tracks.size(); track += 7)
            expected.link(track - 5, track, epr::MatchType::IdenticalFile);
        MatchUnion sets = expected;
        plainMatch(tracks, options, tracks.size() * tracks.size(), expected);
        epr::matchAcoustic(tracks, options, notCancelled, {}, sets);
        QCOMPARE(rootsAndMethods(sets), rootsAndMethods(expected));
    }
}

// At the first sign of a phase. The comparison looks again after 1024 candidates.
void TestAcoustic::cancelling()
{
    const QList<TrackInfo> tracks = copies(64);
    for (const auto &phase :
         { "Indexing fingerprints"_L1, "Finding candidate matches"_L1, "Comparing acoustic fingerprints"_L1 }) {
        for (const qint32 engine : { 0, 1 }) {
            std::atomic<qint32> cancelFlag { 0 };
            const auto cancel = [&](int, int, const QString &text) { cancelFlag = cancelFlag != 0 || text == phase; };
            MatchUnion sets(tracks.size());
            epr::matchAcoustic(tracks, optionsFor(engine, 0.1), cancelFlag, cancel, sets);
            MatchUnion expected(tracks.size());
            plainMatch(tracks, optionsFor(engine, 0.1), phase.startsWith('C'_L1) ? 1024 : 0, expected);
            QCOMPARE(rootsAndMethods(sets), rootsAndMethods(expected));
        }
    }
}

void TestAcoustic::progress()
{
    const QList<TrackInfo> tracks = copies(60) + QList<TrackInfo>(4940);
    for (const qint32 engine : { 0, 1 }) {
        QMap<QString, QList<int>> steps;
        QList<int> all;
        MatchUnion sets(tracks.size());
        const auto note = [&](int step, int total, const QString &text) {
            QCOMPARE(total, 1000);
            steps[text] << step;
            all << step;
        };
        epr::matchAcoustic(tracks, optionsFor(engine, 0.1), notCancelled, note, sets);
        QVERIFY(std::is_sorted(all.begin(), all.end()));
        const QList<int> indexing = engine == 1 ? QList<int> { 0, 143, 286, 350 } : QList<int> { 0, 286, 573 };
        QCOMPARE(steps[u"Indexing fingerprints"_s], indexing);
        QCOMPARE(steps[u"Finding candidate matches"_s], (QList<int> { 700, 740, 781, 822, 863 }));
        QCOMPARE(steps[u"Comparing acoustic fingerprints"_s], (QList<int> { 900, 957 })); // of 1770 candidates
    }
}

QTEST_GUILESS_MAIN(TestAcoustic)
#include "tst_acoustic.moc"
