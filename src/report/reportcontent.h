// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checktext.h"
#include "copyrelation.h"
#include "fileproblem.h"
#include "missingpart.h"
#include "records.h"

#include <vector>

class QTextStream;

namespace epr {

/// What a report tells about, by reference: the lists of a scan are large.
struct ReportContent {
    const QList<TrackInfo> &tracks;
    const QList<MatchGroup> &groups;
    const QStringList &roots;
    QDateTime generated;
};

/// One copy as a report lists it.
struct ReportMember {
    const MatchGroup &group;
    const TrackInfo &track;
    bool keep;
    qint32 index; ///< of the track
    const QList<TrackInfo> &tracks;
    CopyRelation relation; ///< to the copy to keep, where the scan noted links

    QString missing() const { return missingText(group, index); } ///< of the copy to keep; mostly nothing
    QStringList checked() const { return checkTexts(group, index) + measureTexts(group, index); } ///< as mostly
    QStringList edit() const ///< mostly nothing
    {
        const QString text = editText(group, index, tracks);
        return text.isEmpty() ? QStringList() : QStringList(text);
    }
};

/// In the group's order, without members that refer to no track.
inline std::vector<ReportMember> membersOf(const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    std::vector<ReportMember> members;
    const bool hasLinks = !group.links.isEmpty();
    const QHash<qint32, CopyRelation> relations =
        hasLinks ? relationsToKept(group, tracks) : QHash<qint32, CopyRelation>();
    for (const qint32 member : group.members) {
        if (member >= 0 && member < tracks.size())
            members.push_back(
                { group, tracks.at(member), member == group.keep, member, tracks, relations.value(member) });
    }
    return members;
}

/// When the report was made, for people.
inline QString generatedText(const ReportContent &content)
{
    return content.generated.toString(Qt::RFC2822Date);
}

/// Minutes and seconds without hours, "60:00" for an hour, so that a column of a report has one form; "-" below 1 ms.
inline QString reportDurationText(qint64 durationMs)
{
    if (durationMs < 1)
        return QStringLiteral("-");
    const qint64 seconds = durationMs / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

/// The writers of the formats. They write as they go: a report put together first would take a multiple of the memory
/// that the scan's lists take.
void writeCsvReport(QTextStream &out, const ReportContent &content);
void writeMarkedCsvReport(QTextStream &out, const ReportContent &content);
void writeCsvProblems(QTextStream &out, const QList<FileProblem> &problems);
void writeHtmlReport(QTextStream &out, const ReportContent &content);
void writeJsonReport(QTextStream &out, const ReportContent &content);
void writePlaylistReport(QTextStream &out, const ReportContent &content);

} // namespace epr
