// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparisontext.h"

#include "displaytext.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cmath>
#include <cstdlib>

namespace epr::comparisontext {

using namespace Qt::StringLiterals;

namespace {

constexpr QChar emDash(0x2014);
constexpr QChar minusSign(0x2212);

QChar signOf(qint64 difference)
{
    return difference >= 0 ? u'+' : minusSign;
}

QString withTenths(const QString &pattern, double difference)
{
    const qint64 tenths = std::llround(10 * difference);
    return pattern.arg(signOf(tenths)).arg(static_cast<double>(std::abs(tenths)) / 10.0, 0, 'f', 1);
}

} // namespace

QString deckName(Deck deck)
{
    return deck == Deck::A ? u"A"_s : u"B"_s;
}

QString title(const TrackInfo &track)
{
    if (track.path.isEmpty())
        return QCoreApplication::translate("epr::ComparePlayer", "\u2014 no file loaded \u2014");
    return (track.tags.title.isEmpty() ? fileName(track) : track.tags.title).toUpper();
}

QString fileName(const TrackInfo &track)
{
    return track.fileName.isEmpty() ? QFileInfo(track.path).fileName() : track.fileName;
}

QString folder(const TrackInfo &track)
{
    return track.path.isEmpty() ? QString() : nativePath(folderOf(track));
}

QString format(const TrackInfo &track)
{
    if (track.path.isEmpty())
        return {};
    const QString quality = qualityText(track);
    const QString size = sizeText(track.size).toUpper();
    return quality.isEmpty() ? size : u"%1, %2"_s.arg(size, quality);
}

QString duration(qint64 durationMs)
{
    return u"/ %1"_s.arg(positionText(durationMs));
}

QString durationDelta(const TrackInfo &a, const TrackInfo &b)
{
    if (a.path.isEmpty() || b.path.isEmpty())
        return emDash;
    const qint64 difference = b.stream.durationMs - a.stream.durationMs;
    const double seconds = static_cast<double>(std::abs(difference)) / 1000.0;
    return QCoreApplication::translate("epr::ComparePlayer", "%1%2 s").arg(signOf(difference)).arg(seconds, 0, 'f', 2);
}

QString bitrateDelta(const TrackInfo &a, const TrackInfo &b)
{
    if (a.path.isEmpty() || b.path.isEmpty())
        return emDash;
    const qint64 difference = qint64 { b.stream.bitrateKbps } - a.stream.bitrateKbps;
    return QCoreApplication::translate("epr::ComparePlayer", "%1%2 k")
        .arg(signOf(difference))
        .arg(std::abs(difference));
}

QString levelDelta(float peakOfA, float peakOfB)
{
    if (peakOfA <= 0 || peakOfB <= 0)
        return emDash;
    return decibelDelta(0, 20 * std::log10(double { peakOfB } / double { peakOfA }));
}

QString decibelDelta(double levelOfA, double levelOfB)
{
    return withTenths(QCoreApplication::translate("epr::ComparePlayer", "%1%2 dB"), levelOfB - levelOfA);
}

QString startDelta(qint64 bLaterMs)
{
    constexpr qint64 leastMs = 5; // what is shown as more than nothing
    if (std::abs(bLaterMs) < leastMs)
        return {};
    return QCoreApplication::translate("epr::ComparePlayer", "start %1%2 s")
        .arg(signOf(bLaterMs))
        .arg(static_cast<double>(std::abs(bLaterMs)) / 1000.0, 0, 'f', 2);
}

QString loudnessDelta(double loudnessOfA, double loudnessOfB)
{
    if (!std::isfinite(loudnessOfA) || !std::isfinite(loudnessOfB))
        return {};
    return withTenths(QCoreApplication::translate("epr::ComparePlayer", "%1%2 LU"), loudnessOfB - loudnessOfA);
}

QString bandwidthDelta(qint32 bandwidthOfA, qint32 bandwidthOfB)
{
    if (bandwidthOfA <= 0 || bandwidthOfB <= 0)
        return {};
    return withTenths(QCoreApplication::translate("epr::ComparePlayer", "%1%2 kHz"),
                      (bandwidthOfB - bandwidthOfA) / 1000.0);
}

QString deckProblem(Deck deck, const QString &problem)
{
    return QCoreApplication::translate("epr::DeckPair", "Deck %1: %2").arg(deckName(deck), problem);
}

QString previewProblem(const QString &problem)
{
    return QCoreApplication::translate("epr::DeckPair", "Preview: %1").arg(problem);
}

QString differenceProblem(const QString &problem)
{
    return QCoreApplication::translate("epr::DeckPair", "Difference: %1").arg(problem);
}

} // namespace epr::comparisontext
