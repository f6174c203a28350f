// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// Compares pairs of files over their whole length: reads lines of two paths with a tab between, and writes one for each
// pair: the paths, the offset, and the differences. At the end, what decoding and comparing cost.

#include "comparison.h"
#include "wholefile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHash>
#include <QTextStream>

#include <cstdio>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

struct Costs {
    double decodeSeconds = 0;
    double compareSeconds = 0;
    double minutes = 0; ///< of sound that was decoded
    double comparedMinutes = 0;
    double bytes = 0; ///< of profiles
};

double sizeOf(const SoundProfile &profile)
{
    return static_cast<double>(profile.levels.levels.size())
        + 16.0 * static_cast<double>(profile.fingerprint.words.size());
}

class Pairs final {
public:
    const SoundProfile &profile(const QString &path);
    QString compared(const QString &first, const QString &second);
    QString summary() const;

private:
    QHash<QString, SoundProfile> m_profiles;
    QStringList m_order; ///< as they were decoded
    Costs m_costs;
};

const SoundProfile &Pairs::profile(const QString &path)
{
    constexpr qsizetype mostKept = 200;
    const auto known = m_profiles.constFind(path);
    if (known != m_profiles.cend())
        return *known;
    if (m_order.size() > mostKept)
        m_profiles.remove(m_order.takeFirst());
    QElapsedTimer timer;
    timer.start();
    const std::atomic<bool> stop = false;
    Result<SoundProfile> made = profileOfFile(path, stop);
    SoundProfile profile;
    if (made)
        profile = std::move(*made);
    else
        profile.measures.error = made.error();
    m_costs.decodeSeconds += static_cast<double>(timer.nsecsElapsed()) / 1e9;
    m_costs.minutes += static_cast<double>(profile.measures.durationMs) / 60000;
    m_costs.bytes += sizeOf(profile);
    m_order.append(path);
    return *m_profiles.insert(path, profile);
}

QString measuresText(const SoundMeasures &measures)
{
    return u"%1 Hz, %2 Hz clear, %3 LUFS, %4 dBTP, %5 clipped, %6 errors%7"_s.arg(measures.bandwidthHz)
        .arg(measures.clearTrebleHz)
        .arg(measures.loudness, 0, 'f', 1)
        .arg(measures.truePeak, 0, 'f', 1)
        .arg(measures.clippedSamples)
        .arg(measures.decodingErrors)
        .arg(measures.error);
}

QString Pairs::compared(const QString &first, const QString &second)
{
    const SoundProfile a = profile(first);
    const SoundProfile b = profile(second);
    QElapsedTimer timer;
    timer.start();
    const PairCheck check = compareWhole(a, b);
    m_costs.compareSeconds += static_cast<double>(timer.nsecsElapsed()) / 1e9;
    m_costs.comparedMinutes += static_cast<double>(a.measures.durationMs) / 60000;
    QStringList texts;
    for (const SoundDifference &difference : check.differences)
        texts << u"%1%2:%3-%4:%5-%6"_s.arg(static_cast<int>(difference.kind))
                     .arg(difference.isInSecond ? QChar(u'b') : QChar(u'a'))
                     .arg(difference.firstStartMs)
                     .arg(difference.firstEndMs)
                     .arg(difference.secondStartMs)
                     .arg(difference.secondEndMs);
    return QStringList { first,
                         second,
                         check.isAligned ? QString::number(check.offsetMs) : u"none"_s,
                         texts.join(u' '),
                         measuresText(a.measures),
                         measuresText(b.measures) }
        .join(u'\t');
}

QString Pairs::summary() const
{
    return u"per minute of sound: decoding %1 ms, comparing %2 ms, %3 bytes"_s
        .arg(1000 * m_costs.decodeSeconds / m_costs.minutes, 0, 'f', 1)
        .arg(1000 * m_costs.compareSeconds / m_costs.comparedMinutes, 0, 'f', 2)
        .arg(m_costs.bytes / m_costs.minutes, 0, 'f', 0);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTextStream input(stdin);
    QTextStream output(stdout);
    Pairs pairs;
    for (QString line; input.readLineInto(&line);) {
        const QStringList paths = line.split(u'\t');
        if (paths.size() == 2)
            output << pairs.compared(paths.at(0), paths.at(1)) << '\n' << Qt::flush;
    }
    QTextStream(stderr) << pairs.summary() << '\n';
    return 0;
}
