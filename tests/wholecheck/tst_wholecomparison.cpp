// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparison.h"
#include "rows.h"

#include <QTest>

#include <array>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>

using namespace epr;
using Kind = SoundDifference::Kind;

Q_DECLARE_METATYPE(Kind)

namespace {

constexpr int rate = 11025;
using Sound = std::vector<float>;

/// Notes of chance, a few a second, in some voices: never the same twice.
Sound music(int seconds, unsigned seed = 1)
{
    std::mt19937 random(seed);
    Sound sound(static_cast<std::size_t>(seconds * rate));
    for (int voice = 0; voice < 4; ++voice) {
        for (std::size_t begin = 0; begin < sound.size();) {
            const auto length = rate / 8 + random() % (rate / 2);
            const double pitch = 150 * std::pow(2.0, static_cast<double>(random() % 55) / 12);
            for (std::size_t i = 0; i < length && begin + i < sound.size(); ++i) {
                const double time = static_cast<double>(i) / rate;
                const double tone = std::sin(2 * std::numbers::pi * pitch * time)
                    + 0.4 * std::sin(4 * std::numbers::pi * pitch * time)
                    + 0.1 * (static_cast<double>(random() % 1000) / 500 - 1);
                sound[begin + i] += static_cast<float>(0.15 * std::exp(-3 * time) * tone);
            }
            begin += length;
        }
    }
    return sound;
}

SoundProfile profileOf(const Sound &sound)
{
    SoundProfiler profiler(1, rate);
    profiler.feed(sound);
    return profiler.finish();
}

const SoundProfile &original()
{
    static const SoundProfile profile = profileOf(music(30));
    return profile;
}

auto at(Sound &sound, double seconds)
{
    return sound.begin() + std::lround(seconds * rate);
}

} // namespace

Q_DECLARE_METATYPE(Sound)

class TestWholeComparison : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void harmlessChangesAreNone_data();
    void harmlessChangesAreNone();
    void faultsAreFound_data();
    void faultsAreFound();
    void musicThatRepeatsItselfIsNoExcuse_data();
    void musicThatRepeatsItselfIsNoExcuse();
    void endOfTheSpectrumIsFound_data();
    void endOfTheSpectrumIsFound();
};

void TestWholeComparison::harmlessChangesAreNone_data()
{
    const test::Rows<Sound> row("copy");
    const Sound sound = music(30);
    row("the same", sound);
    Sound copy = sound;
    copy.insert(copy.begin(), 3 * rate, 0.0F);
    row("silence before", copy);
    copy = sound;
    copy.resize(copy.size() + 5 * rate);
    row("silence behind", copy);
    copy = sound;
    for (float &sample : copy)
        sample *= 0.2F;
    row("quieter", copy);
    copy.clear();
    for (double place = 0; place < static_cast<double>(sound.size()) - 1; place += 1.003)
        copy.push_back(sound[static_cast<std::size_t>(place)]);
    row("0.3 % faster", copy);
}

void TestWholeComparison::harmlessChangesAreNone()
{
    QFETCH(const Sound, copy);
    const PairCheck check = compareWhole(original(), profileOf(copy));
    QVERIFY(check.isAligned);
    QVERIFY2(check.differences.isEmpty(), qPrintable(QString::number(check.differences.size())));
}

void TestWholeComparison::faultsAreFound_data()
{
    const test::Rows<Sound, Kind, double, double> row("copy", "kind", "from", "to");
    const Sound sound = music(30);
    const Sound stranger = music(30, 2);
    Sound copy = sound;
    std::fill(at(copy, 12), at(copy, 12.5), 0.0F);
    row("muted", copy, Kind::Silent, 12, 12.5);
    copy = sound;
    for (qsizetype i = 0; i < rate / 2; ++i) // one band of many
        *(at(copy, 12) + i) +=
            static_cast<float>(0.25 * std::sin(2 * std::numbers::pi * 1000 * static_cast<double>(i) / rate));
    row("a tone over the music", copy, Kind::Differs, 12, 12.5);
    copy = sound;
    std::fill(at(copy, 12), at(copy, 12.1), 0.0F);
    row("a drop-out", copy, Kind::Silent, 12, 12.1);
    copy = sound;
    std::fill(at(copy, 18), copy.end(), 0.0F);
    row("silent to the end", copy, Kind::Silent, 18, 30);
    copy = sound;
    std::copy(stranger.begin(), stranger.begin() + 12 * rate, at(copy, 18));
    row("another ending", copy, Kind::OtherEnding, 18, 30);
    copy = sound;
    copy.erase(at(copy, 25), copy.end());
    row("stops earlier", copy, Kind::StopsEarlier, 25, 30);
    copy = sound;
    copy.erase(copy.begin(), at(copy, 4));
    row("starts later", copy, Kind::StartsLater, 0, 4);
    copy = sound;
    copy.erase(at(copy, 12), at(copy, 14));
    row("a jump", copy, Kind::Skips, 12, 14);
    copy = sound;
    copy.insert(at(copy, 12), sound.begin() + 11 * rate, sound.begin() + 12 * rate);
    row("a second repeated", copy, Kind::Repeats, 11.5, 11.5);
}

void TestWholeComparison::faultsAreFound()
{
    QFETCH(const Sound, copy);
    QFETCH(const Kind, kind);
    QFETCH(const double, from);
    QFETCH(const double, to);
    const PairCheck check = compareWhole(original(), profileOf(copy));
    QVERIFY(check.isAligned);
    QCOMPARE(check.differences.size(), 1);
    const SoundDifference &difference = check.differences.first();
    QCOMPARE(difference.kind, kind);
    QVERIFY(difference.isInSecond);
    QVERIFY2(std::abs(static_cast<double>(difference.firstStartMs) / 1000 - from) < 0.6,
             qPrintable(QString::number(difference.firstStartMs)));
    QVERIFY2(std::abs(static_cast<double>(difference.firstEndMs) / 1000 - to) < 0.6,
             qPrintable(QString::number(difference.firstEndMs)));
}

// What follows a silence is like what went before it, or like a part after it.
void TestWholeComparison::musicThatRepeatsItselfIsNoExcuse_data()
{
    const test::Rows<double, double> row("from", "to");
    row("silent to the end", 20, 30);
    row("a second muted", 13, 14);
}

void TestWholeComparison::musicThatRepeatsItselfIsNoExcuse()
{
    QFETCH(const double, from);
    QFETCH(const double, to);
    Sound sound = music(10);
    for (int i = 0; i < 2; ++i)
        sound.insert(sound.end(), sound.begin(), sound.begin() + 10 * rate);
    Sound copy = sound;
    std::fill(at(copy, from), at(copy, to), 0.0F);
    const PairCheck check = compareWhole(profileOf(sound), profileOf(copy));
    QVERIFY(check.isAligned);
    QCOMPARE(check.differences.size(), 1);
    QCOMPARE(check.differences.first().kind, Kind::Silent);
    QVERIFY(std::abs(static_cast<double>(check.differences.first().secondStartMs) - 1000 * from) < 500);
}

void TestWholeComparison::endOfTheSpectrumIsFound_data()
{
    const test::Rows<double, double, bool, int, int> row("loudness", "treble", "is16Bit", "bandwidth", "clear");
    row("dull", 0.3, 0, false, 5000, 5000);
    row("dull, of 16 bits", 0.3, 0, true, 5000, 5000);
    row("dull and quiet, of 16 bits", 0.003, 0, true, 5000, 5000);
    row("with treble", 0.3, 0.1, true, 22050, 22050);
    row("with some hiss above", 1, 0.0004, true, 22050, 5000);
    row("too quiet to tell", 0.0000001, 0, false, 0, 0);
}

// Noise up to 5 kHz, and more noise with all frequencies.
void TestWholeComparison::endOfTheSpectrumIsFound()
{
    QFETCH(const double, loudness);
    QFETCH(const double, treble);
    QFETCH(const bool, is16Bit);
    constexpr int fullRate = 44100;
    std::array<double, 400> lowPass {}; // a windowed sinc; its flank is 400 Hz wide
    for (std::size_t tap = 0; tap < lowPass.size(); ++tap) {
        const double time = static_cast<double>(tap) - 199.5;
        lowPass[tap] = std::sin(2 * std::numbers::pi * 5000 / fullRate * time) / (std::numbers::pi * time)
            * (0.5 + 0.5 * std::cos(2 * std::numbers::pi * time / 400));
    }
    std::mt19937 random(5);
    std::uniform_real_distribution<double> chance(-1, 1);
    std::vector<double> noise(fullRate);
    std::ranges::generate(noise, [&] { return chance(random); });
    Sound sound;
    for (auto begin = noise.cbegin(); noise.cend() - begin > 400; ++begin) {
        const double sum =
            loudness * (treble * chance(random) + std::inner_product(lowPass.begin(), lowPass.end(), begin, 0.0));
        sound.push_back(static_cast<float>(is16Bit ? std::round(sum * 32768) / 32768 : sum));
    }
    SoundProfiler profiler(1, fullRate);
    profiler.feed(sound);
    const SoundMeasures measures = profiler.finish().measures;
    const auto isAbout = [](int hertz, int wanted) { return std::abs(hertz - wanted) <= 500; };
    QFETCH(const int, bandwidth);
    QFETCH(const int, clear);
    QVERIFY2(isAbout(measures.bandwidthHz, bandwidth), qPrintable(QString::number(measures.bandwidthHz)));
    QVERIFY2(isAbout(measures.clearTrebleHz, clear), qPrintable(QString::number(measures.clearTrebleHz)));
}

QTEST_GUILESS_MAIN(TestWholeComparison)
#include "tst_wholecomparison.moc"
