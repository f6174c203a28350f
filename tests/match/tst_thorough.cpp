// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "alignment.h"
#include "matching.h"
#include "matchunion.h"
#include "missingpart.h"
#include "rows.h"

#include <QRandomGenerator>
#include <QTest>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr quint32 silence = 0; ///< as a number of a recording
constexpr int noiseOfCopies = 10; ///< percent of the bits

/// A part of a recording in half hops, of which there are 16 in a second.
struct Part {
    quint32 recording = 0;
    int begin = 0;
    int end = 0;
    int noise = 0; ///< percent of the bits that differ from the recording's
};
using Parts = QList<Part>;

/// A random word, the same each time; a seeded generator for each would take minutes.
quint32 wordAt(quint32 recording, int place)
{
    quint64 bits = (quint64(recording) << 32 | static_cast<quint32>(place)) * 0x9E3779B97F4A7C15U;
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9U;
    return static_cast<quint32>((bits ^ bits >> 27) * 0x94D049BB133111EBU >> 32);
}

/// What an engine would make of a file that consists of such parts.
Fingerprint fingerprintOf(const Parts &parts, FingerprintEngine engine)
{
    Fingerprint print;
    QRandomGenerator random(static_cast<quint32>(parts.first().begin + parts.first().noise));
    int half = 0;
    for (const Part &part : parts) {
        for (int place = part.begin; place < part.end; ++place, ++half) {
            const bool silent = part.recording == silence;
            quint32 word = silent ? 0 : wordAt(part.recording, place);
            for (int bit = 0; bit < 32 && part.noise > 0; ++bit)
                word ^= random.bounded(100) < part.noise ? 1U << bit : 0;
            if (engine == FingerprintEngine::Fpcalc) {
                if (half % 2 != 0)
                    print.words << (silent ? 627964279 : word);
                continue;
            }
            (half % 2 == 0 ? print.alternative : print.words) << word;
            (half % 2 == 0 ? print.alternativeMask : print.mask) << (silent ? 0 : ~0U);
        }
    }
    return print;
}

TrackInfo trackOf(const Parts &parts, FingerprintEngine engine, qint64 durationMs)
{
    TrackInfo track;
    track.fingerprint = fingerprintOf(parts, engine);
    track.stream.durationMs = durationMs;
    return track;
}

ScanOptions optionsFor(FingerprintEngine engine, int threads = 1)
{
    ScanOptions options;
    options.fingerprintEngine = engine;
    options.decoderThreads = threads;
    options.compareThoroughly = true;
    return options;
}

/// Of three files each: a recording, a copy that starts elsewhere, and one of another recording with the same opening.
QList<TrackInfo> library(FingerprintEngine engine)
{
    QList<TrackInfo> tracks;
    for (quint32 number = 1; number < 400; number += 2) {
        const int shift = 16 + static_cast<int>(number) % 8 * 8;
        tracks << trackOf({ { number, 0, 320 } }, engine, 200000)
               << trackOf({ { number, shift, shift + 320, noiseOfCopies } }, engine, 100000)
               << trackOf({ { number, 0, 120 }, { number + 1, 0, 200 } }, engine, 200000);
    }
    return tracks;
}

} // namespace

class TestThorough final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordingsAreAligned_data()
    {
        constexpr int none = -100000;
        const test::Rows<Parts, Parts, int> row("first", "second", "halfHops");
        const Parts minute { { 1, 0, 960 } };
        row("a copy", minute, { { 1, 0, 960, noiseOfCopies } }, 0);
        row("starts a second later", minute, { { 1, 16, 976, noiseOfCopies } }, -16);
        row("starts ten seconds earlier", { { 1, 160, 1120 } }, { { 1, 0, 960, noiseOfCopies } }, 160);
        row("silence before it", minute, { { silence, 0, 160 }, { 1, 0, 800, noiseOfCopies } }, 160);
        row("ends a third earlier", minute, { { 1, 0, 620, noiseOfCopies } }, 0);
        row("too short to vote and as long", { { 1, 0, 80 } }, { { 1, 0, 80, 3 } }, 0);
        row("another recording", minute, { { 2, 0, 960 } }, none);
        row("silence in common", { { silence, 0, 560 }, { 1, 0, 400 } }, { { silence, 0, 560 }, { 2, 0, 400 } }, none);
        row("an opening in common", { { 3, 0, 720 }, { 1, 0, 240 } }, { { 3, 0, 720 }, { 2, 0, 240 } }, none);
        row("silent for a fifth of the time", minute, { { 1, 0, 300 }, { silence, 0, 192 }, { 1, 492, 960 } }, none);
        row("a jingle that a programme begins with", { { 3, 0, 320 } }, { { 3, 0, 320 }, { 1, 0, 640 } }, none);
        row("too different", minute, { { 1, 0, 960, 27 } }, none);
        row("nothing", minute, { { 1, 0, 0 } }, none);
    }

    void recordingsAreAligned()
    {
        QFETCH(const Parts, first);
        QFETCH(const Parts, second);
        QFETCH(const int, halfHops);
        for (const FingerprintEngine engine : { FingerprintEngine::BuiltIn, FingerprintEngine::Fpcalc }) {
            Aligner aligner(alignmentRules(optionsFor(engine)));
            for (const bool swapped : { false, true }) {
                aligner.setFirst(fingerprintOf(swapped ? second : first, engine));
                const auto found = aligner.alignWith(fingerprintOf(swapped ? first : second, engine));
                QCOMPARE(found.has_value(), halfHops > -100000);
                const double expectedMs = (swapped ? -1 : 1) * halfHops * 1365 * 500.0 / 11025;
                QVERIFY(!found || qAbs(static_cast<double>(found->offsetMs) - expectedMs) <= 1);
            }
        }
    }

    void editsAreNoticed_data()
    {
        const test::Rows<Parts, Parts, bool> row("first", "second", "isEdit");
        const Parts minute { { 1, 0, 960 } };
        constexpr int n = noiseOfCopies;
        row("a part is left out", minute, { { 1, 0, 320, n }, { 1, 480, 1120, n } }, true);
        row("a part is repeated", minute, { { 1, 0, 400, n }, { 1, 304, 864, n } }, true);
        row("two parts are left out", minute, { { 1, 0, 240, n }, { 1, 320, 560, n }, { 1, 720, 1200, n } }, true);
        row("silence is left out", { { 1, 0, 480 }, { silence, 0, 200 }, { 1, 480, 760 } }, minute, true);
        row("another ending", minute, { { 1, 0, 600, n }, { 2, 0, 360 } }, false);
        row("much else in between", { { 1, 0, 240 }, { 2, 0, 480 }, { 1, 240, 480 } },
            { { 1, 0, 240, n }, { 3, 0, 400 }, { 1, 240, 480, n } }, false);
        row("a jingle here and there", minute, { { 1, 0, 80 }, { 2, 0, 400 }, { 1, 160, 240 }, { 3, 0, 400 } }, false);
        row("another recording", minute, { { 2, 0, 960 } }, false);
    }

    void editsAreNoticed()
    {
        QFETCH(const Parts, first);
        QFETCH(const Parts, second);
        QFETCH(const bool, isEdit);
        for (const FingerprintEngine engine : { FingerprintEngine::BuiltIn, FingerprintEngine::Fpcalc }) {
            Aligner aligner(alignmentRules(optionsFor(engine)));
            for (const bool swapped : { false, true }) {
                aligner.setFirst(fingerprintOf(swapped ? second : first, engine));
                QVERIFY(!aligner.alignWith(fingerprintOf(swapped ? first : second, engine)));
                QCOMPARE(aligner.mayBeEdit(), isEdit);
            }
        }
    }

    void editsAreTold()
    {
        const ScanOptions options = optionsFor(FingerprintEngine::Fpcalc, 2);
        QList<TrackInfo> tracks;
        for (const quint32 recording : { 1U, 2U })
            tracks << trackOf({ { recording, 0, 960 } }, options.fingerprintEngine, 200000)
                   << trackOf({ { recording, 0, 320, 3 }, { recording, 480, 1120, 3 } }, options.fingerprintEngine,
                              190000);
        tracks << trackOf({ { 2, 4, 964, noiseOfCopies } }, options.fingerprintEngine, 200000);
        tracks[3].fileName = u"edit.mp3"_s;
        EditPairs single;
        const QList<MatchGroup> groups = buildMatchGroups(tracks, options, std::atomic<qint32>(0), {}, &single);
        QCOMPARE(single, EditPairs({ { 0, 1 } }));
        QCOMPARE(groups.size(), 1);
        QCOMPARE(groups.first().members, QList<qint32>({ 2, 4 }));
        QCOMPARE(editText(groups.first(), 4, tracks), u"may be an edit of edit.mp3"_s);
    }

    void linksAreThoseOfCopiesWhateverTheThreads()
    {
        for (const FingerprintEngine engine : { FingerprintEngine::BuiltIn, FingerprintEngine::Fpcalc }) {
            const QList<TrackInfo> tracks = library(engine);
            for (const int threads : { 1, 3 }) {
                MatchUnion sets(tracks.size());
                matchThoroughly(tracks, optionsFor(engine, threads), std::atomic<qint32>(0), {}, sets);
                for (qint32 track = 0; track < tracks.size(); ++track) {
                    QCOMPARE(sets.findRoot(track), track % 3 == 1 ? track - 1 : track);
                    QCOMPARE(sets.isAligned(track), track % 3 != 2);
                }
            }
            int reports = 0;
            std::atomic<qint32> cancelFlag { 0 };
            MatchUnion sets(tracks.size());
            matchThoroughly(
                tracks, optionsFor(engine, 3), cancelFlag,
                [&](int, int, const QString &) { cancelFlag = ++reports == 2 ? 1 : 0; }, sets);
            QCOMPARE(reports, 2);
            for (qint32 track = 0; track < tracks.size(); ++track)
                QCOMPARE(sets.method(track), MatchType::Unmatched);
        }
    }

    void lengthsDecideWhatIsKept_data()
    {
        // Three copies: the first is 200 s of a recording, the second another one of the highest bit rate.
        // Below zero stands a guess.
        const test::Rows<Part, qint64, qint32, QString> row("second", "durationMs", "keep", "missing");
        row("silence before it is not missed", { silence, 0, 80 }, 205000, 1, u""_s);
        row("ends earlier", { 1, 0, 80 }, 158000, 0, u"ends 42 s earlier"_s);
        row("starts later", { 1, 80, 160 }, 195000, 0, u"starts 5.0 s later"_s);
        row("both", { 1, 80, 160 }, 125000, 0, u"starts 5.0 s later, ends 1:10 earlier"_s);
        row("hardly shorter", { 1, 4, 80 }, 191000, 1, u""_s);
        row("longer", { 1, 0, 80 }, 240000, 1, u""_s);
        row("of unknown length", { 1, 0, 80 }, 0, 1, u""_s);
        row("a longer guess", { 1, 0, 80 }, -240000, 0, u"length uncertain"_s);
        row("a shorter guess", { 1, 80, 160 }, -125000, 0, u"starts 5.0 s later, length uncertain"_s);
        row("a guess that may be right", { 1, 0, 80 }, -204000, 1, u""_s);
    }

    void lengthsDecideWhatIsKept()
    {
        QFETCH(const Part, second);
        QFETCH(const qint64, durationMs);
        QFETCH(const qint32, keep);
        QFETCH(const QString, missing);
        for (const FingerprintEngine engine : { FingerprintEngine::BuiltIn, FingerprintEngine::Fpcalc }) {
            const int next = second.recording == silence ? 0 : second.end;
            QList<TrackInfo> tracks { trackOf({ { 1, 0, 960 } }, engine, 200000),
                                      trackOf({ second, { 1, next, next + 880 } }, engine, qAbs(durationMs)) };
            tracks[1].stream.bitrateKbps = 320;
            tracks[1].stream.durationIsGuess = durationMs < 0;
            ScanOptions options = optionsFor(engine);
            MatchUnion sets(2);
            sets.linkAligned(0, 1);
            const MatchGroup group = groupSets(sets, tracks, options).value(0);
            QCOMPARE(group.keep, keep);
            QCOMPARE(missingText(group, 1), missing);
            const QString ofOther = missingText(group, 1 - keep);
            QCOMPARE(isProposed(group, 1 - keep), ofOther.isEmpty());
            QCOMPARE(groupLabel(group).endsWith("other length"_L1),
                     ofOther.contains(u"later"_s) || ofOther.contains(u"earlier"_s));
        }
    }

    void withoutTheOptionNothingIsLinked()
    {
        const QList<TrackInfo> tracks = library(FingerprintEngine::BuiltIn);
        ScanOptions options = optionsFor(FingerprintEngine::BuiltIn, 2);
        QCOMPARE(buildMatchGroups(tracks, options, std::atomic<qint32>(0)).size(), tracks.size() / 3);
        options.compareThoroughly = false;
        QCOMPARE(buildMatchGroups(tracks, options, std::atomic<qint32>(0)).size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestThorough)
#include "tst_thorough.moc"
