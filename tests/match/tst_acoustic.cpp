// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "acousticcomparison.h"
#include "bitkernel.h"
#include "candidates.h"
#include "matching.h"
#include "matchunion.h"

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <bit>
#include <limits>
#include <map>
#include <ranges>
#include <set>

using epr::TrackInfo;
using List = QList<quint32>;
using namespace Qt::StringLiterals;
using Pairs = QList<std::pair<qint32, qint32>>;

namespace {

constexpr qint64 longest = std::numeric_limits<qint64>::max();

std::atomic<qint32> notCancelled { 0 };

epr::ScanOptions optionsFor(bool chromaprint, double threshold, qint32 durationTolerance = 5)
{
    epr::ScanOptions options;
    options.fingerprintEngine = chromaprint ? epr::FingerprintEngine::Fpcalc : epr::FingerprintEngine::BuiltIn;
    options.threshold = options.chromaprintThreshold = threshold;
    options.durationTolerance = durationTolerance;
    return options;
}

// Acoustic matching in its plainest form: every offset, every pair, nothing given up early.

struct Print {
    List words;
    List mask = {}; ///< none trusts all bits
};

epr::MaskedBits bitsAt(const Print &a, const Print &b, qsizetype offset, qsizetype minOverlap = 0)
{
    epr::MaskedBits bits;
    const qsizetype begin = std::max<qsizetype>(0, -offset);
    const qsizetype end = std::min(a.words.size(), b.words.size() - offset);
    for (qsizetype i = begin; i < end && end - begin >= minOverlap; ++i) {
        const quint32 valid = a.mask.value(i, ~0U) & b.mask.value(i + offset, ~0U);
        bits.differing += std::popcount((a.words[i] ^ b.words[i + offset]) & valid);
        bits.trusted += std::popcount(valid);
    }
    return bits.trusted >= 4 * (end - begin) ? bits : epr::MaskedBits();
}

double plainBer(const Print &a, const Print &b, qsizetype maxOffset, qsizetype minOverlap, qsizetype step = 1,
                double none = 1.0)
{
    for (qsizetype offset = -maxOffset; offset <= maxOffset; offset += step)
        if (const auto [differing, trusted] = bitsAt(a, b, offset, minOverlap); trusted > 0)
            none = std::min(none, static_cast<double>(differing) / static_cast<double>(trusted));
    return none;
}

double plainMasked(const Print &a, const Print &b)
{
    const bool masks = a.words.size() == a.mask.size() && b.words.size() == b.mask.size();
    const double masked = masks ? plainBer(a, b, 48, 40, 1, 2.0) : 2.0;
    return masked < 2.0 ? masked : plainBer({ a.words }, { b.words }, 48, 40);
}

bool plainPrefilter(const List &a, const List &b, double threshold, bool chromaprint)
{
    const qsizetype prefix = std::min({ a.size(), b.size(), qsizetype(chromaprint ? 160 : 200) });
    const qsizetype step = chromaprint ? 20 : 24;
    return prefix < 40
        ? prefix > 0
        : plainBer({ a.first(prefix) }, { b }, 2 * step, 32, step) <= threshold + (chromaprint ? 0.12 : 0.18);
}

using Index = std::map<quint32, std::set<qint32>>;

Index plainIndex(const QList<TrackInfo> &tracks, bool chromaprint)
{
    Index known;
    for (qint32 track = 0; track < tracks.size(); ++track) {
        const List &words = tracks[track].fingerprint.words;
        const qsizetype step = chromaprint ? 1 : std::max<qsizetype>(1, words.size() / 400);
        for (qsizetype i = 0; i < words.size() && words.size() >= 40; i += step)
            for (const quint32 key :
                 chromaprint ? List { words[i] } : List { words[i] & 0xFFFF, 0x10000 | words[i] >> 16 })
                known[key].insert(track);
    }
    std::erase_if(known, [&](const auto &entry) {
        return entry.second.size() > 64 // for up to 3,200 tracks
            || (chromaprint && entry.second.size() < 2);
    });
    return known;
}

Pairs plainCandidates(const Index &known, bool chromaprint)
{
    std::map<std::pair<qint32, qint32>, int> shared;
    for (const auto &[key, list] : known)
        for (const qint32 a : list)
            for (auto b = list.upper_bound(a); b != list.end(); ++b)
                ++shared[{ a, *b }];
    std::erase_if(shared, [&](const auto &pair) { return pair.second < (chromaprint ? 5 : 3); });
    const auto pairs = std::views::keys(shared);
    return Pairs(pairs.begin(), pairs.end());
}

Pairs foundCandidates(const QList<TrackInfo> &tracks, bool chromaprint)
{
    const epr::ProgressFn none;
    const epr::Checkpoint checkpoint(notCancelled, none);
    auto lists = chromaprint ? epr::wordPostings(tracks, checkpoint, { .threads = 3, .entriesAtOnce = 5000 })
                             : epr::halfWordPostings(tracks, checkpoint);
    const epr::CandidateRows rows(std::move(lists), tracks.size(), chromaprint ? 5 : 3);
    epr::RowCounter counter(rows);
    Pairs pairs;
    for (qint32 a = 0; a < tracks.size(); ++a)
        for (const qint32 b : counter.row(a))
            pairs << std::pair(a, b);
    return pairs;
}

/// The steps of the pass's own scale that it reports: every so many tracks, keys and candidates.
QList<int> plainReports(qsizetype tracks, qsizetype keys, qsizetype candidates, bool chromaprint)
{
    QList<int> reports;
    const auto add = [&reports](double base, double span, qsizetype count, qsizetype step) {
        for (qsizetype done = 0; done < count; done += step)
            reports << static_cast<int>((base + span * static_cast<double>(done) / static_cast<double>(count)) * 1000);
    };
    add(0, chromaprint ? 0.35 : 0.7, tracks, 2048);
    add(0.35, 0.35, chromaprint ? tracks : 0, 2048);
    add(0.7, 0.2, keys, 4096);
    add(0.9, 0.1, candidates, 1024);
    return reports;
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

/// Tracks that share keys by chance, some of them known to most of the library, and noisy copies of earlier tracks.
QList<TrackInfo> randomLibrary(QRandomGenerator &random, qsizetype trackCount)
{
    constexpr qsizetype lengths[] { 0, 39, 40, 90, 120, 799, 800, 810 };
    QList<TrackInfo> tracks(trackCount);
    for (qsizetype number = 0; number < trackCount; ++number) {
        TrackInfo &track = tracks[number];
        track.fingerprint.words.resize(lengths[random.bounded(random.bounded(4) == 0 ? 8 : 5)]);
        for (quint32 &word : track.fingerprint.words)
            word = random.bounded(100) < 12 ? random.bounded(20) * 0x01010101U : random.bounded(4000) * 2654435761U;
        if (number > 0 && random.bounded(3) == 0) {
            track = tracks[random.bounded(number)];
            for (quint32 &word : track.fingerprint.words)
                word ^= random.generate() & random.generate() & 0x11;
        }
        track.stream.durationMs = 180000 + 5000 * random.bounded(3);
    }
    return tracks;
}

} // namespace

class TestAcoustic final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void kernelsCountAlike();
    void pairs();
    void durations();
    void candidatesAndLinks();
};

void TestAcoustic::kernelsCountAlike()
{
    QRandomGenerator random(7);
    for (const qsizetype count : { 0, 1, 2, 3, 4, 5, 7, 8, 63, 64, 65, 199, 200, 9001 }) {
        const Print a { randomWords(random, count), randomWords(random, count) };
        const Print b { randomWords(random, count), randomWords(random, count) };
        for (const epr::BitKernel &kernel : epr::bitKernels()) {
            const auto masked =
                kernel.masked({ a.words.data(), a.mask.data() }, { b.words.data(), b.mask.data() }, count);
            QCOMPARE(kernel.differing(a.words.data(), b.words.data(), count),
                     bitsAt({ a.words }, { b.words }, 0).differing);
            QVERIFY(masked == bitsAt(a, b, 0));
        }
    }
}

// Copies and strangers of all lengths around every limit. A ceiling changes nothing below it, and brings nothing there.
// Each distance is a threshold too, which it just reaches, and so do equal beginnings with the margin of the prefilter.
void TestAcoustic::pairs()
{
    constexpr qsizetype lengths[] { 0, 7, 8, 39, 40, 41, 71, 72, 79, 80, 81, 160, 161, 200, 201, 300 };
    enum { NoMasks, NoMaskOfB, OtherLength, AllZero, Sparse };
    QRandomGenerator random(11);
    int outcomes[2] {};
    for (int round = 0; round < 16 * 16 * 6; ++round) {
        const int kind = round / 256;
        Print a { randomWords(random, lengths[round % 16]) };
        Print b { copyOf(random, a.words, lengths[round / 16 % 16], random.bounded(20)) };
        for (Print *print : { &a, &b }) {
            const bool none = kind == NoMasks || (kind == NoMaskOfB && print == &b);
            print->mask = randomWords(random, none ? 0 : print->words.size() + (kind == OtherLength ? 1 : 0));
            for (quint32 &word : print->mask) // two sparse masks have about as many bits in common as make them count
                word &= kind == AllZero ? 0 : kind == Sparse ? random.generate() | random.generate() : ~0U;
        }
        const Print alternative { copyOf(random, a.words, round % 3 == 0 ? 90 : 0, 1), a.mask };
        TrackInfo trackA;
        TrackInfo trackB;
        std::tie(trackA.fingerprint.words, trackA.fingerprint.mask) = std::tie(a.words, a.mask);
        std::tie(trackB.fingerprint.words, trackB.fingerprint.mask) = std::tie(b.words, b.mask);
        std::tie(trackB.fingerprint.alternative, trackB.fingerprint.alternativeMask) =
            std::tie(alternative.words, alternative.mask);
        const bool search = std::min(a.words.size(), b.words.size()) >= 80;
        const double aligned = plainBer({ a.words }, { b.words }, search ? 40 : 0, search ? 80 : 8);
        const double masked = plainMasked(a, b);
        const double best = alternative.words.isEmpty() ? masked : std::min(masked, plainMasked(a, alternative));
        for (const double limit : { 1.0, aligned, masked, best, 0.1, 0.25, 0.45, -0.12, -0.18, -1.0, qQNaN() }) {
            const double foundAligned = epr::berAligned(a.words, b.words, { 40, 80, limit });
            const double foundMasked = epr::berMasked({ a.words, a.mask }, { b.words, b.mask }, { 48, 40, limit });
            QVERIFY(aligned <= limit ? foundAligned == aligned : !(foundAligned <= limit));
            QVERIFY(masked <= limit ? foundMasked == masked : !(foundMasked <= limit));
            for (const bool chromaprint : { false, true }) {
                const epr::AcousticRules rules = epr::acousticRules(optionsFor(chromaprint, limit));
                const bool passes = plainPrefilter(a.words, b.words, limit, chromaprint);
                const bool same = passes && (chromaprint ? aligned : best) <= limit;
                QCOMPARE(epr::acousticPrefilter(a.words, b.words, rules), passes);
                const std::optional<double> rate = epr::sameRecording(trackA, trackB, rules);
                QCOMPARE(rate.has_value(), same);
                QVERIFY(!rate || *rate >= (chromaprint ? aligned : best));
                ++outcomes[same ? 1 : 0];
            }
        }
    }
    QVERIFY(outcomes[0] > 4000 && outcomes[1] > 4000);
}

void TestAcoustic::durations()
{
    const auto agree = [](qint64 a, qint64 b, qint32 tolerance, bool expected) {
        return epr::durationsAgree(a, b, tolerance) == expected && epr::durationsAgree(b, a, tolerance) == expected;
    };
    QVERIFY2(agree(180000, 189000, 5, true), "just within");
    QVERIFY2(agree(133, 126, 5, false), "a fraction of a millisecond too much");
    QVERIFY2(agree(longest, -1, -5, true), "negative is unknown");
    QVERIFY2(agree(1, longest, 100, true), "all of the longest");
}

void TestAcoustic::candidatesAndLinks()
{
    QRandomGenerator random(29);
    // Copies of one recording share all their keys, so that these are pruned or kept together. The limit is two percent
    // of all tracks, unusable ones too, but 64 at least and 256 at most.
    TrackInfo copy;
    copy.fingerprint.words = randomWords(random, 200); // more shared keys than a count of 8 bits holds
    const std::tuple<qsizetype, qsizetype, bool> copies[] {
        { 64, 64, true }, { 3249, 65, false }, { 3250, 65, true }, { 20000, 256, true }, { 20000, 257, false }
    };
    for (const auto &[trackCount, copyCount, found] : copies) {
        const QList<TrackInfo> tracks = QList<TrackInfo>(copyCount, copy) + QList<TrackInfo>(trackCount - copyCount);
        for (const bool chromaprint : { false, true })
            QCOMPARE(foundCandidates(tracks, chromaprint).size(), found ? copyCount * (copyCount - 1) / 2 : 0);
    }

    // The last number is that of the report of the comparison at which it is stopped, which then still does its 1024.
    constexpr std::tuple<qsizetype, double, qint32, int, qsizetype> rows[] {
        { 2, 0.2, 9, 4, 99 },   { 65, 0.12, 5, 1, 99 },     { 180, 0.12, 5, 3, 99 }, { 180, 0.12, 100, 1, 2 },
        { 110, 0.2, 0, 2, 99 }, { 130, 1e300, 100, 5, 99 }, { 110, 0.0, 100, 1, 99 }
    };
    for (const auto &[trackCount, threshold, tolerance, threads, stopAt] : rows) {
        for (const bool chromaprint : { false, true }) {
            epr::ScanOptions options = optionsFor(chromaprint, threshold, tolerance);
            options.decoderThreads = threads;
            // The tracks without a fingerprint are gone through as well.
            const QList<TrackInfo> library = randomLibrary(random, trackCount);
            const QList<TrackInfo> tracks =
                library.first(trackCount / 2) + QList<TrackInfo>(3000) + library.sliced(trackCount / 2);
            const Index known = plainIndex(tracks, chromaprint);
            const Pairs candidates = plainCandidates(known, chromaprint);
            QVERIFY(trackCount < 64 || candidates.size() > trackCount / 8);
            QCOMPARE(foundCandidates(tracks, chromaprint), candidates);
            const Pairs compared = candidates.first(std::min(candidates.size(), 1024 * stopAt));
            epr::MatchUnion expected(tracks.size());
            for (qint32 track = 7; track < trackCount / 2; track += 7)
                expected.link(track - 5, track, epr::MatchType::IdenticalFile);
            epr::MatchUnion sets = expected;
            for (const auto &[a, b] : compared)
                if (const auto rate = epr::sameRecording(tracks[a], tracks[b], epr::acousticRules(options)); rate
                    && expected.findRoot(a) != expected.findRoot(b)
                    && epr::durationsAgree(tracks[a].stream.durationMs, tracks[b].stream.durationMs, tolerance))
                    expected.link(a, b, epr::MatchType::SameRecording, *rate);
            QList<int> reports;
            std::atomic<qint32> cancelFlag { 0 };
            const auto report = [&](int step, int, const QString &) {
                reports << step;
                cancelFlag = std::ranges::count_if(reports, [](int each) { return each >= 900; }) >= stopAt ? 1 : 0;
            };
            epr::matchAcoustic(tracks, options, cancelFlag, report, sets);
            QList<int> allReports =
                plainReports(tracks.size(), qsizetype(known.size()), candidates.size(), chromaprint);
            allReports.resize(allReports.size() - (candidates.size() + 1023) / 1024 + (compared.size() + 1023) / 1024);
            QCOMPARE(reports, allReports);
            QVERIFY(sets.links() == expected.links());
            for (qint32 track = 0; track < tracks.size(); ++track) {
                QCOMPARE(sets.findRoot(track), expected.findRoot(track));
                QCOMPARE(sets.method(track), expected.method(track));
            }
        }
    }
}

QTEST_GUILESS_MAIN(TestAcoustic)
#include "tst_acoustic.moc"
