// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "rows.h"
#include "subtraction.h"

#include <QTest>

#include <cmath>
#include <numbers>
#include <random>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

constexpr int rate = 8000;
constexpr int seconds = 26;
using Sound = std::vector<float>;

/// Tones without order, for any moment, so that a copy may have any lag and speed.
double soundAt(double time)
{
    static const QList<std::pair<double, double>> tones = [] {
        std::minstd_rand random(3);
        std::uniform_real_distribution<double> any(0, 1);
        QList<std::pair<double, double>> made;
        while (made.size() < 24)
            made << std::pair(200 + 2800 * any(random), any(random));
        return made;
    }();
    double sum = 0;
    for (const auto &[pitch, phase] : tones)
        sum += 25 / pitch * std::sin(2 * std::numbers::pi * (pitch * time + phase));
    return sum;
}

struct Copy {
    double lagFrames = 0;
    double gain = 1;
    double speed = 1;
    double cutAfter = 1000; ///< seconds, from where on a tenth of a second is missing
    double noise = 0;
};

Sound soundOf(const Copy &copy)
{
    std::minstd_rand random(5);
    std::uniform_real_distribution<double> noise(-copy.noise, copy.noise);
    Sound sound;
    for (int frame = 0; frame < seconds * rate; ++frame) {
        double at = (frame - copy.lagFrames) * copy.speed / rate;
        at += at > copy.cutAfter ? 0.1 : 0;
        const double value = copy.gain * soundAt(at);
        for (const double side : { 1.0, 0.7 })
            sound.push_back(static_cast<float>(side * value + noise(random)));
    }
    return sound;
}

} // namespace

class TestDifference : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void subtraction_data()
    {
        const test::Rows<Copy, double, QString> row("copy", "remainder", "error");
        row("the same", Copy {}, -90, {});
        row("late, softer", Copy { .lagFrames = 1200, .gain = 0.5 }, -90, {});
        row("early by a part of a sample", Copy { .lagFrames = -700.37 }, -45, {});
        row("of the other polarity", Copy { .lagFrames = 3.5, .gain = -1 }, -45, {});
        row("noisy", Copy { .noise = 0.01 }, -20, {});
        row("faster", Copy { .speed = 1.00003 }, 0, u"different speeds"_s);
        row("cut", Copy { .cutAfter = 13 }, 0, u"missing in one copy"_s);
        row("another sound", Copy { .gain = 0, .noise = 0.5 }, 0, u"too unlike"_s);
    }

    void subtraction()
    {
        QFETCH(const Copy, copy);
        QFETCH(const double, remainder);
        QFETCH(const QString, error);
        static const Sound a = soundOf({});
        const Sound b = soundOf(copy);
        const Result<Subtraction> how = findSubtraction(a, b, rate, 0, false);
        QVERIFY2(how ? error.isEmpty() : how.error().contains(error) && !error.isEmpty(),
                 qPrintable(how ? QString() : how.error()));
        if (!how)
            return;
        QVERIFY(std::abs(how->lagFrames - copy.lagFrames) < 0.02 && std::abs(how->gain * copy.gain - 1) < 0.02);
        const qsizetype inner = 10 * rate; // both have sound there
        Subtractor subtractor(a, b, *how);
        QCOMPARE(subtractor.difference(inner, rate).size(), std::size_t(2 * rate));
        QVERIFY2(subtractor.remainderDb() < remainder, qPrintable(QString::number(subtractor.remainderDb())));
        QVERIFY(subtractor.difference(seconds * rate - 1, rate).size() == 2);
    }
};

QTEST_APPLESS_MAIN(TestDifference)
#include "tst_difference.moc"
