// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "jsonreport.h"

#include "metadata.h"
#include "reportdata.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QJsonObject fileObject(const TrackInfo &track, bool keep)
{
    return {
        { u"path"_s, track.path },
        { u"keep"_s, keep },
        { u"artist"_s, track.tags.artist },
        { u"title"_s, track.tags.title },
        { u"album"_s, track.tags.album },
        { u"durationMs"_s, track.stream.durationMs },
        { u"bitrateKbps"_s, track.stream.bitrateKbps },
        { u"sampleRate"_s, track.stream.sampleRate },
        { u"channels"_s, track.stream.channels },
        { u"sizeBytes"_s, track.size },
        { u"sha256"_s, track.fullHash },
        { u"audioSha256"_s, track.audioHash },
    };
}

QJsonObject groupObject(const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    QJsonArray files;
    for (const ReportMember &member : membersOf(group, tracks))
        files.append(fileObject(member.track, member.keep));
    return {
        { u"id"_s, group.id },
        { u"matchType"_s, matchTypeLabel(group.matchType) },
        { u"confidence"_s, group.confidence },
        { u"reclaimableBytes"_s, group.reclaimableBytes },
        { u"files"_s, files },
    };
}

/// Everything but the groups, whose list is empty.
QJsonObject frameObject(const ReportData &data)
{
    return {
        { u"application"_s, metadata::applicationName() },
        { u"version"_s, metadata::version() },
        { u"generated"_s, data.generated.toString(Qt::ISODate) },
        { u"roots"_s, QJsonArray::fromStringList(data.roots) },
        { u"filesScanned"_s, data.tracks.size() },
        { u"groups"_s, data.groups.size() },
        { u"duplicateFiles"_s, redundantFiles(data.groups) },
        { u"reclaimableBytes"_s, reclaimableBytes(data.groups) },
        { u"duplicateGroups"_s, QJsonArray() },
    };
}

QString indentedText(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Indented));
}

/// The group as it stands in the list: two levels deep. No text in it spans lines, JSON escapes line breaks.
QString listedText(const QJsonObject &group)
{
    QString text = indentedText(group).trimmed();
    text.replace(u'\n', "\n        "_L1);
    return "        "_L1 + text;
}

} // namespace

// A document of all groups would take a multiple of the scan's own memory, so each group is a document of its own and
// is set into the empty list of the frame, with the result that one document would have had.
void writeJsonReport(QTextStream &out, const ReportData &data)
{
    const QString frame = indentedText(frameObject(data));
    constexpr auto listStart = "\"duplicateGroups\": [\n"_L1;
    const qsizetype split = frame.indexOf(listStart) + listStart.size();
    out << QStringView(frame).left(split);
    const auto separator = ",\n"_L1;
    bool first = true;
    for (const MatchGroup &group : data.groups) {
        if (!first)
            out << separator;
        first = false;
        out << listedText(groupObject(group, data.tracks));
    }
    if (!first)
        out << '\n';
    out << QStringView(frame).mid(split);
}

} // namespace epr
