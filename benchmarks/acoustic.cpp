// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// What acoustic matching costs. Without arguments: one pair of fingerprints, as ratios to the plain loops. With "pass",
// an engine, a number of tracks and one of threads: the whole pass over a synthetic library, in seconds by the clock
// and of processor time, and its peak memory, which is why each library has a run of its own. With "index" instead of
// "pass": how alike the library's unrelated tracks are.
#include "acousticcomparison.h"
#include "candidates.h"
#include "matching.h"
#include "matchunion.h"
#include "stopwatch.h"
#include "syntheticlibrary.h"

#include <QElapsedTimer>
#include <QFile>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

using namespace Qt::StringLiterals;
using epr::MaskedWords;
using epr::MatchUnion;
using epr::OffsetSearch;
using epr::ScanOptions;
using epr::TrackInfo;
using epr::Words;

namespace {

constexpr qsizetype builtinWords = 480;
constexpr qsizetype fpcalcWords = 460;
constexpr OffsetSearch alignedSearch { 40, 80 };
constexpr OffsetSearch maskedSearch { 48, 40 };

/// In MiB, by the kernel's name for the figure; 0 where there is no such kernel.
double memoryMiB(const char *field)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return static_cast<double>(
                       line.mid(static_cast<qsizetype>(std::strlen(field)) + 1).trimmed().split(' ')[0].toLongLong())
                / 1024;
    return 0;
}

template <typename Score> double smallestOverOffsets(Words a, Words b, const OffsetSearch &search, Score score)
{
    double best = 1.0;
    for (qsizetype offset = -search.maxOffset; offset <= search.maxOffset; ++offset) {
        const qsizetype start = std::max<qsizetype>(0, -offset);
        const qsizetype end = std::min(epr::lengthOf(a), epr::lengthOf(b) - offset);
        if (end - start >= search.minOverlap)
            best = std::min(best, score(start, end, offset));
    }
    return best;
}

double plainAligned(Words a, Words b)
{
    return smallestOverOffsets(a, b, alignedSearch, [&](qsizetype start, qsizetype end, qsizetype offset) {
        int bits = 0;
        for (qsizetype i = start; i < end; ++i)
            bits += std::popcount(a[static_cast<std::size_t>(i)] ^ b[static_cast<std::size_t>(i + offset)]);
        return bits / (32.0 * static_cast<double>(end - start));
    });
}

double plainMasked(const MaskedWords &a, const MaskedWords &b)
{
    return smallestOverOffsets(a.words, b.words, maskedSearch, [&](qsizetype start, qsizetype end, qsizetype offset) {
        int differing = 0;
        int trusted = 0;
        for (qsizetype i = start; i < end; ++i) {
            const auto inA = static_cast<std::size_t>(i);
            const auto inB = static_cast<std::size_t>(i + offset);
            const quint32 valid = a.mask[inA] & b.mask[inB];
            trusted += std::popcount(valid);
            differing += std::popcount((a.words[inA] ^ b.words[inB]) & valid);
        }
        return trusted < 4 * (end - start) ? 1.0 : static_cast<double>(differing) / trusted;
    });
}

/// Shortest time of one call in microseconds, for each of two tasks.
template <typename First, typename Second> std::array<double, 2> microseconds(int calls, First first, Second second)
{
    const auto repeat = [calls](auto &task) {
        return [calls, &task] {
            for (int i = 0; i < calls; ++i)
                task();
        };
    };
    auto times = epr::bench::shortestTimes(200, repeat(first), repeat(second)); // short ones, between other work
    for (double &time : times)
        time *= 1e6 / calls;
    return times;
}

volatile double sink = 0;

template <typename Plain, typename Ours> bool comparePair(const char *what, Plain plain, Ours ours)
{
    const double expected = plain();
    const double got = ours();
    const auto [plainTime, ourTime] = microseconds(
        200, [&] { sink = plain(); }, [&] { sink = ours(); });
    std::printf("%-38s %8.2f us plain %8.2f us %6.1f x   distance %.4f, %s double\n", what, plainTime, ourTime,
                plainTime / ourTime, got, expected == got ? "same" : "DIFFERENT");
    return expected == got;
}

MaskedWords primary(const TrackInfo &track)
{
    return { track.fingerprint.words, track.fingerprint.mask };
}

MaskedWords alternative(const TrackInfo &track)
{
    return { track.fingerprint.alternative, track.fingerprint.alternativeMask };
}

bool measureDistances(const char *kind, const TrackInfo &a, const TrackInfo &b)
{
    const QByteArray aligned = QByteArray("all bits, 81 offsets, ") + kind;
    const QByteArray masked = QByteArray("masked, 97 offsets, ") + kind;
    const bool same = comparePair(
        aligned.constData(), [&] { return plainAligned(a.fingerprint.words, b.fingerprint.words); },
        [&] { return epr::berAligned(a.fingerprint.words, b.fingerprint.words, alignedSearch); });
    return comparePair(
               masked.constData(), [&] { return plainMasked(primary(a), primary(b)); },
               [&] { return epr::berMasked(primary(a), primary(b), maskedSearch); })
        && same;
}

ScanOptions optionsFor(bool fpcalc)
{
    ScanOptions options;
    options.fingerprintEngine = fpcalc ? epr::FingerprintEngine::Fpcalc : epr::FingerprintEngine::BuiltIn;
    return options;
}

/// As the pass does it: what is above the threshold need not be exact.
void measurePair(const char *kind, const TrackInfo &a, const TrackInfo &b)
{
    const epr::AcousticRules rules = epr::acousticRules(optionsFor(false));
    const auto [prefilter, full] = microseconds(
        20, [&] { sink = epr::acousticPrefilter(a.fingerprint.words, b.fingerprint.words, rules) ? 1 : 0; },
        [&] {
            sink = epr::berMasked(primary(a), primary(b), rules.search)
                + epr::berMasked(primary(a), alternative(b), rules.search);
        });
    std::printf("%-38s %8.2f us prefilter %4.2f us comparison with both alternatives\n", kind, prefilter, full);
}

int measurePairs()
{
    const TrackInfo a = epr::bench::builtinTrack(1, 0, builtinWords);
    const TrackInfo copy = epr::bench::builtinTrack(1, 1, builtinWords);
    const TrackInfo other = epr::bench::builtinTrack(2, 0, builtinWords);
    const bool same = measureDistances("copies", a, copy) && measureDistances("strangers", a, other);
    measurePair("one built-in pair, copies", a, copy);
    measurePair("one built-in pair, strangers", a, other);
    return same ? EXIT_SUCCESS : EXIT_FAILURE;
}

struct Library {
    bool fpcalc = false;
    qsizetype originals = 0;
    QList<TrackInfo> tracks; ///< the originals, and behind them a copy of every tenth
};

Library makeLibrary(bool fpcalc, qsizetype trackCount)
{
    Library library { fpcalc, trackCount - trackCount / 11, {} };
    library.tracks.reserve(trackCount);
    for (qsizetype number = 0; number < trackCount; ++number) {
        const bool copy = number >= library.originals;
        const auto recording = static_cast<quint64>(copy ? 10 * (number - library.originals) : number);
        library.tracks << (fpcalc ? epr::bench::fpcalcTrack(recording, copy ? 1 : 0, fpcalcWords)
                                  : epr::bench::builtinTrack(recording, copy ? 1 : 0, builtinWords));
    }
    return library;
}

void printLinks(const Library &library, MatchUnion &sets)
{
    qsizetype found = 0;
    qsizetype sizeOfSets = 0;
    for (qsizetype number = library.originals; number < library.tracks.size(); ++number)
        if (sets.findRoot(static_cast<qint32>(number))
            == sets.findRoot(static_cast<qint32>(10 * (number - library.originals))))
            ++found;
    for (qint32 track = 0; track < sets.trackCount(); ++track)
        sizeOfSets += sets.method(track) != epr::MatchType::Unmatched ? 1 : 0;
    const qsizetype copies = library.tracks.size() - library.originals;
    std::printf("  found %lld of %lld copies, %lld other tracks linked\n", static_cast<long long>(found),
                static_cast<long long>(copies), static_cast<long long>(sizeOfSets - 2 * found));
}

using Pass = decltype(&epr::matchAcoustic);

int measurePass(Pass pass, bool fpcalc, qsizetype trackCount, int threads)
{
    const Library library = makeLibrary(fpcalc, trackCount);
    const double tracksMiB = memoryMiB("VmRSS:");
    ScanOptions options = optionsFor(fpcalc);
    options.decoderThreads = threads;
    const std::atomic<qint32> notCancelled { 0 };
    MatchUnion sets(trackCount);
    QElapsedTimer clock;
    clock.start();
    const std::clock_t start = std::clock();
    const auto printTime = [&](const char *what) {
        std::printf("  %7.2f s, %7.2f s processor  %s\n", static_cast<double>(clock.elapsed()) / 1e3,
                    static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, what);
    };
    QString phase;
    pass(
        library.tracks, options, notCancelled,
        [&](int, int, const QString &text) {
            if (text != phase)
                printTime(qPrintable(text));
            phase = text;
        },
        sets);
    printTime("done");
    const double peakMiB = memoryMiB("VmHWM:");
    std::printf("  peak %.0f MiB, of which the tracks %.0f, the pass %.0f\n", peakMiB, tracksMiB, peakMiB - tracksMiB);
    printLinks(library, sets);
    return EXIT_SUCCESS;
}

double bitsBetweenNeighbours(const QList<TrackInfo> &tracks)
{
    qint64 bits = 0;
    qint64 words = 0;
    for (const TrackInfo &track : tracks) {
        for (qsizetype i = 1; i < track.fingerprint.words.size(); ++i)
            bits += std::popcount(track.fingerprint.words[i] ^ track.fingerprint.words[i - 1]);
        words += track.fingerprint.words.size() - 1;
    }
    return static_cast<double>(bits) / static_cast<double>(words);
}

int describeIndex(bool fpcalc, qsizetype trackCount)
{
    const Library library = makeLibrary(fpcalc, trackCount);
    const std::atomic<qint32> notCancelled { 0 };
    const epr::ProgressFn noProgress;
    epr::Checkpoint checkpoint(notCancelled, noProgress);
    epr::PostingLists lists =
        fpcalc ? epr::wordPostings(library.tracks, checkpoint, {}) : epr::halfWordPostings(library.tracks, checkpoint);
    qint64 increments = 0;
    qint64 length = 0;
    for (const quint32 entry : lists.entries) {
        increments += length++;
        length = entry < epr::PostingLists::endFlag ? length : 0;
    }
    const auto entries = static_cast<double>(lists.entries.size());
    const epr::CandidateRows rows(std::move(lists), trackCount, fpcalc ? 5 : 3);
    epr::RowCounter counter(rows);
    qint64 candidates = 0;
    for (qint32 track = 0; track < rows.trackCount(); ++track)
        candidates += static_cast<qint64>(counter.row(track).size());
    const double pairs = static_cast<double>(trackCount) * static_cast<double>(trackCount - 1) / 2;
    std::printf("  neighbouring words differ in %.1f bits; %.1f million entries, %.0f million increments, "
                "%.2f million candidates, %.2f %% of all pairs\n",
                bitsBetweenNeighbours(library.tracks), entries / 1e6, static_cast<double>(increments) / 1e6,
                static_cast<double>(candidates) / 1e6, 100 * static_cast<double>(candidates) / pairs);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 1)
        return measurePairs();
    const long long trackCount = argc >= 4 ? std::atoll(argv[3]) : 0;
    const int threads = argc >= 5 ? std::atoi(argv[4]) : 1;
    if (trackCount < 2) {
        std::fprintf(stderr, "usage: bench_acoustic [pass|thorough|index builtin|fpcalc TRACKS [THREADS]]\n");
        return EXIT_FAILURE;
    }
    const bool fpcalc = std::strcmp(argv[2], "fpcalc") == 0;
    std::printf("%s, %lld tracks, %d threads\n", fpcalc ? "fpcalc" : "built-in", trackCount, threads);
    if (std::strcmp(argv[1], "index") == 0)
        return describeIndex(fpcalc, trackCount);
    const bool thorough = std::strcmp(argv[1], "thorough") == 0;
    return measurePass(thorough ? epr::matchThoroughly : epr::matchAcoustic, fpcalc, trackCount, threads);
}
