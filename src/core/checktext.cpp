// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checktext.h"

#include "displaytext.h"
#include "groupcheck.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

using Kind = SoundDifference::Kind;

struct Words {
    Q_DECLARE_TR_FUNCTIONS(epr::GroupCheck)
};

// A whole second holds what begins or ends within it, so that nobody looks beside it.
QString rangeText(qint64 startMs, qint64 endMs)
{
    return u"%1-%2"_s.arg(durationText(std::max<qint64>(startMs, 1)), durationText(endMs + 999));
}

QString clockText(qint64 ms)
{
    return durationText(std::max<qint64>(ms, 1));
}

struct DifferenceText {
    const char *own; ///< said of the copy
    const char *kept; ///< said of the one to keep
};

// In the order of the kinds; %1 is a time or a range, %2 a length.
constexpr std::array<DifferenceText, 8> differenceTexts { {
    { QT_TRANSLATE_NOOP("epr::GroupCheck", "differs %1"), QT_TRANSLATE_NOOP("epr::GroupCheck", "differs %1") },
    { QT_TRANSLATE_NOOP("epr::GroupCheck", "silent %1"),
      QT_TRANSLATE_NOOP("epr::GroupCheck", "the kept copy is silent %1") },
    { QT_TRANSLATE_NOOP("epr::GroupCheck", "starts %2 later"),
      QT_TRANSLATE_NOOP("epr::GroupCheck", "the kept copy starts %2 later") },
    { QT_TRANSLATE_NOOP("epr::GroupCheck", "stops at %1"),
      QT_TRANSLATE_NOOP("epr::GroupCheck", "the kept copy stops at %1") },
    { QT_TRANSLATE_NOOP("epr::GroupCheck", "other ending from %1"),
      QT_TRANSLATE_NOOP("epr::GroupCheck", "other ending from %1") },
    { QT_TRANSLATE_NOOP("epr::GroupCheck", "skips %2 at %1"),
      QT_TRANSLATE_NOOP("epr::GroupCheck", "the kept copy skips %2 at %1") },
    { QT_TRANSLATE_NOOP("epr::GroupCheck", "repeats %2 at %1"),
      QT_TRANSLATE_NOOP("epr::GroupCheck", "the kept copy repeats %2 at %1") },
    { QT_TRANSLATE_NOOP("epr::GroupCheck", "silent from %1"),
      QT_TRANSLATE_NOOP("epr::GroupCheck", "the kept copy is silent from %1") },
} };
constexpr std::size_t silentToTheEnd = 7; // beyond the kinds

// The kept copy is the first of the two. What differs or ends otherwise does so in both: it is told of the copy.
QString differenceText(const SoundDifference &difference, const MatchGroup &group, qint32 member)
{
    const bool isOfBoth = difference.kind == Kind::Differs || difference.kind == Kind::OtherEnding;
    const bool isOwn = difference.isInSecond || isOfBoth;
    const qint64 startMs = isOwn ? difference.secondStartMs : difference.firstStartMs;
    const qint64 endMs = isOwn ? difference.secondEndMs : difference.firstEndMs;
    const qint64 lengthMs = std::abs((difference.firstEndMs - difference.firstStartMs)
                                     - (difference.secondEndMs - difference.secondStartMs));
    const qint64 durationMs = group.check.measures.value(isOwn ? member : group.keep).durationMs;
    constexpr qint64 almostMs = 500; // of a fade nobody hears where it ends
    const bool isToTheEnd = difference.kind == Kind::Silent && durationMs > 0 && endMs + almostMs >= durationMs;
    const bool hasRange = !isToTheEnd && (difference.kind == Kind::Differs || difference.kind == Kind::Silent);
    const DifferenceText &texts =
        differenceTexts.at(isToTheEnd ? silentToTheEnd : static_cast<std::size_t>(difference.kind));
    return Words::tr(isOwn ? texts.own : texts.kept)
        .replace("%1"_L1, hasRange ? rangeText(startMs, endMs) : clockText(startMs))
        .replace("%2"_L1, lengthText(lengthMs));
}

QString failureText(const MatchGroup &group, qint32 member)
{
    const QString error = group.check.measures.value(member).error;
    return error.isEmpty() ? QString() : Words::tr("could not be checked: %1").arg(error);
}

QString decibels(double value)
{
    return QLocale().toString(value, 'f', 1);
}

QString kilohertz(qint32 hertz)
{
    return QString::number(std::lround(hertz / 1000.0));
}

QString countOrNone(qint64 count)
{
    return count > 0 ? countText(count) : Words::tr("none");
}

} // namespace

QStringList checkTexts(const MatchGroup &group, qint32 member)
{
    const CheckState state = checkState(group, member);
    if (const QString failure = failureText(group, member); !failure.isEmpty())
        return { failure };
    if (state == CheckState::Unchecked)
        return {};
    if (state == CheckState::Alike)
        return { Words::tr("alike to the end") };
    if (state == CheckState::Failed)
        return { Words::tr("the kept copy could not be checked") };
    const PairCheck pair = pairCheck(group, group.keep, member).value_or(PairCheck());
    if (!pair.isAligned)
        return { Words::tr("not comparable with the kept copy") };
    QStringList texts;
    for (const SoundDifference &difference : pair.differences)
        texts << differenceText(difference, group, member);
    return texts;
}

QString checkText(const MatchGroup &group, qint32 member)
{
    const QStringList texts = checkTexts(group, member);
    if (texts.size() < 2)
        return texts.join(QString());
    return Words::tr("%1 and %Ln more", nullptr, static_cast<int>(texts.size() - 1)).arg(texts.first());
}

QString damageText(const MatchGroup &group, qint32 member)
{
    const auto found = group.check.measures.constFind(member);
    if (found == group.check.measures.cend() || (found->error.isEmpty() && found->decodingErrors == 0))
        return {};
    return found->error.isEmpty() ? Words::tr("%Ln decoding error(s)", nullptr, static_cast<int>(found->decodingErrors))
                                  : failureText(group, member);
}

QStringList measureTexts(const MatchGroup &group, qint32 member)
{
    const SoundMeasures own = group.check.measures.value(member);
    const SoundMeasures kept = group.check.measures.value(group.keep);
    if (member == group.keep || !own.error.isEmpty() || !kept.error.isEmpty())
        return {};
    QStringList texts;
    if (hasMoreTreble(kept, own))
        texts << Words::tr("nothing above %1 kHz; the kept copy has").arg(kilohertz(own.bandwidthHz));
    constexpr double leastDecibels = 1; // what a listener might notice
    if (const double louder = own.loudness - kept.loudness; std::isfinite(louder) && std::abs(louder) >= leastDecibels)
        texts << (louder > 0 ? Words::tr("%1 dB louder than the kept copy")
                             : Words::tr("%1 dB quieter than the kept copy"))
                     .arg(decibels(std::abs(louder)));
    if (own.clippedSamples > kept.clippedSamples)
        texts << Words::tr("%Ln clipped sample(s), the kept copy %1", nullptr, static_cast<int>(own.clippedSamples))
                     .arg(countOrNone(kept.clippedSamples));
    if (own.decodingErrors > kept.decodingErrors)
        texts << Words::tr("%Ln decoding error(s), the kept copy %1", nullptr, static_cast<int>(own.decodingErrors))
                     .arg(countOrNone(kept.decodingErrors));
    return texts;
}

QString groupCheckText(const MatchGroup &group)
{
    if (!group.check.isDone() || !isChecked(group))
        return {};
    const auto differing = std::ranges::count_if(
        group.members, [&](qint32 member) { return checkState(group, member) == CheckState::Differs; });
    const auto failed =
        std::ranges::count_if(group.members, [&](qint32 member) { return !failureText(group, member).isEmpty(); });
    QStringList texts;
    if (differing > 0)
        texts << Words::tr("%Ln copy(s) differ", nullptr, static_cast<int>(differing));
    if (failed > 0)
        texts << Words::tr("%Ln copy(s) could not be checked", nullptr, static_cast<int>(failed));
    if (texts.isEmpty())
        texts << Words::tr("alike to the end");
    return Words::tr("checked: %1").arg(texts.join(", "_L1));
}

QString betterCopyText(const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    const qint32 better = betterCopy(group);
    const TrackInfo own = tracks.value(better);
    const TrackInfo kept = tracks.value(group.keep);
    const SoundMeasures measures = group.check.measures.value(group.keep);
    switch (advantage(group, better)) {
    case Advantage::None:
        break;
    case Advantage::CanBeDecoded:
        return Words::tr("the kept copy could not be checked, %1 could").arg(own.fileName);
    case Advantage::NoErrors:
        return Words::tr("the kept copy has %Ln decoding error(s), %1 none", nullptr,
                         static_cast<int>(measures.decodingErrors))
            .arg(own.fileName);
    case Advantage::Complete:
        return Words::tr("%1, unlike %2").arg(checkText(group, better), own.fileName);
    case Advantage::Treble:
        if (own.suffix != kept.suffix)
            return Words::tr("the %1 has more above %3 kHz than the kept %2")
                .arg(own.suffix.toUpper(), kept.suffix.toUpper(), kilohertz(measures.bandwidthHz));
        return Words::tr("%1 has more above %2 kHz than the kept copy")
            .arg(own.fileName, kilohertz(measures.bandwidthHz));
    }
    return {};
}

QString loudnessText(double loudness)
{
    return std::isfinite(loudness) ? Words::tr("%1 LUFS").arg(decibels(loudness)) : QString();
}

QString truePeakText(double truePeak)
{
    return std::isfinite(truePeak) ? Words::tr("%1 dBTP").arg(decibels(truePeak)) : QString();
}

QString bandwidthText(qint32 hertz)
{
    return hertz > 0 ? Words::tr("%1 kHz").arg(QLocale().toString(hertz / 1000.0, 'f', 1)) : QString();
}

} // namespace epr
