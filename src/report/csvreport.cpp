// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "csvreport.h"

#include "displaytext.h"
#include "reportdata.h"
#include "reporttext.h"

#include <QTextStream>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QString line(const MatchGroup &group, const TrackInfo &track, bool keep)
{
    const QStringList fields {
        QString::number(group.id),
        csvField(matchTypeLabel(group.matchType)),
        QString::number(group.confidence, 'f', 2),
        keep ? u"KEEP"_s : u"duplicate"_s,
        csvField(track.fileName),
        csvField(folderOf(track)),
        csvField(track.tags.artist),
        csvField(track.tags.title),
        csvField(track.tags.album),
        csvField(reportDurationText(track.stream.durationMs)),
        QString::number(track.stream.bitrateKbps),
        QString::number(track.stream.sampleRate),
        QString::number(track.stream.channels),
        csvField(track.suffix.toUpper()),
        QString::number(track.size),
        csvField(track.mtime.toLocalTime().toString(Qt::ISODate)),
    };
    return fields.join(u',') + u'\n';
}

} // namespace

void writeCsvReport(QTextStream &out, const ReportData &data)
{
    out << "Group,Match type,Confidence,Keep,File,Folder,Artist,Title,Album,Duration,Bitrate (kbps),Sample rate,"
           "Channels,Format,Size (bytes),Modified\n"_L1;
    for (const MatchGroup &group : data.groups) {
        for (const ReportMember &member : membersOf(group, data.tracks))
            out << line(group, member.track, member.keep);
    }
}

} // namespace epr
