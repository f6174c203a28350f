// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "missingpart.h"

#include "displaytext.h"

#include <QCoreApplication>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

// The start is known to an eighth of a second, and what is missing there was found to be sound; the end follows from
// the durations alone, and two encodings of one recording may differ in theirs.
MissingPart missingPart(const MatchGroup &group, qint32 member)
{
    constexpr qint64 mostAtStartMs = 1000;
    constexpr qint64 mostPercentAtEnd = 5;
    const auto span = group.spans.constFind(member);
    const auto kept = group.spans.constFind(group.keep);
    if (member == group.keep || span == group.spans.cend() || kept == group.spans.cend())
        return {};
    const qint64 atStart = span->soundMs - kept->soundMs;
    const qint64 atEnd = kept->endMs - span->endMs;
    const bool isGuess = span->isEndGuess || kept->isEndGuess;
    const qint64 most = (kept->endMs - kept->startMs) * mostPercentAtEnd;
    return { .atStartMs = span->isPlaced && kept->isPlaced && atStart > mostAtStartMs ? atStart : 0,
             .atEndMs = !isGuess && atEnd * 100 > most ? atEnd : 0,
             .isUncertain = isGuess && qAbs(atEnd) * 100 > most && checkState(group, member) != CheckState::Alike };
}

QString missingText(const MatchGroup &group, qint32 member)
{
    const MissingPart missing = missingPart(group, member);
    QStringList texts;
    if (missing.atStartMs > 0)
        texts << QCoreApplication::translate("epr::MatchType", "starts %1 later").arg(lengthText(missing.atStartMs));
    if (missing.atEndMs > 0) {
        const char *text = group.spans.value(member).isPlaced ? QT_TRANSLATE_NOOP("epr::MatchType", "ends %1 earlier")
                                                              : QT_TRANSLATE_NOOP("epr::MatchType", "%1 shorter");
        texts << QCoreApplication::translate("epr::MatchType", text).arg(lengthText(missing.atEndMs));
    }
    if (missing.isUncertain)
        texts << QCoreApplication::translate("epr::MatchType", "length uncertain");
    return texts.join(", "_L1);
}

QString editText(const MatchGroup &group, qint32 member, const QList<TrackInfo> &tracks)
{
    const qint32 other = group.edits.value(member, -1);
    return other >= 0 && other < tracks.size()
        ? QCoreApplication::translate("epr::MatchType", "may be an edit of %1").arg(tracks.at(other).fileName)
        : QString();
}

namespace {

// A group with a less certain link keeps the name of that.
bool isOtherLength(const MatchGroup &group)
{
    return group.matchType == MatchType::SameRecording
        && std::ranges::any_of(group.members, [&group](qint32 member) { return missingPart(group, member).isKnown(); });
}

} // namespace

QString groupLabel(const MatchGroup &group)
{
    return isOtherLength(group) ? QCoreApplication::translate("epr::MatchType", "Same recording, other length")
                                : matchTypeLabel(group.matchType);
}

QString groupExplanation(const MatchGroup &group)
{
    return isOtherLength(group)
        ? QCoreApplication::translate("epr::MatchType",
                                      "Acoustically the same recording, but copies that are not ticked lack a part of "
                                      "the one to keep, or may do so. Listen before removing them.")
        : matchTypeExplanation(group.matchType);
}

} // namespace epr
