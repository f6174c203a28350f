// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "checktext.h"
#include "displaytext.h"
#include "groupcheck.h"
#include "reportcontent.h"
#include "review.h"

#include <QTextStream>

#include <array>
#include <vector>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr auto style =
    "<style>\n"
    "body{font-family:'Segoe UI',Roboto,Helvetica,Arial,sans-serif;margin:32px;color:#0d2440;background:#f7f9fc}\n"
    "h1{color:#0d2440;margin-bottom:4px}h1 span{color:#ff5714}\n"
    ".meta{color:#5b6b80;margin-bottom:24px;font-size:14px}\n"
    ".summary{display:flex;gap:16px;flex-wrap:wrap;margin-bottom:28px}\n"
    ".card{background:#fff;border:1px solid #dde4ee;border-radius:8px;padding:14px 18px;min-width:150px}\n"
    ".card b{display:block;font-size:24px;color:#0d2440}\n"
    ".card span{font-size:12px;color:#5b6b80;text-transform:uppercase;letter-spacing:.04em}\n"
    ".group{background:#fff;border:1px solid #dde4ee;border-radius:8px;margin-bottom:16px;overflow:hidden}\n"
    ".group h2{font-size:14px;margin:0;padding:10px 14px;background:#0d2440;color:#fff;font-weight:600}\n"
    ".group h2 em{font-style:normal;color:#ffb59a;font-weight:400}\n"
    "table{border-collapse:collapse;width:100%;font-size:13px}\n"
    "th{background:#eef2f8;text-align:left;padding:7px 10px;color:#5b6b80;font-weight:600}\n"
    "td{padding:7px 10px;border-top:1px solid #eef2f8;vertical-align:top}\n"
    ".keep{color:#146c2e;font-weight:700}\n"
    ".dupe{color:#b3300f}\n"
    ".path{color:#5b6b80;font-size:11px;word-break:break-all}\n"
    "footer{margin-top:32px;color:#8394a8;font-size:12px}\n"
    "</style></head><body>\n"_L1;

void writeHead(QTextStream &out)
{
    out << "<!DOCTYPE html>\n<html lang=\"en-AU\"><head><meta charset=\"utf-8\">\n"_L1
        << "<title>"_L1 << metadata::applicationName() << " duplicate report</title>\n"_L1 << style;
}

void writeCard(QTextStream &out, const QString &value, const QString &caption)
{
    out << "<div class=\"card\"><b>"_L1 << value << "</b><span>"_L1 << caption << "</span></div>"_L1;
}

void writeSummary(QTextStream &out, const ReportContent &content)
{
    out << "<h1>Echo<span>prune</span> duplicate report</h1>\n"_L1
        << "<div class=\"meta\">Generated "_L1 << generatedText(content).toHtmlEscaped() << " &middot; scanned "_L1
        << nativePath(content.roots.join(", "_L1)).toHtmlEscaped() << "</div>\n"_L1
        << "<div class=\"summary\">"_L1;
    const ReviewTotals totals = totalsOf(content.tracks.size(), content.groups);
    writeCard(out, QString::number(totals.files), u"Files scanned"_s);
    writeCard(out, QString::number(totals.groups), u"Duplicate groups"_s);
    writeCard(out, QString::number(totals.redundantCopies), u"Redundant files"_s);
    writeCard(out, sizeText(totals.redundantBytes), u"Reclaimable"_s);
    out << "</div>\n"_L1;
}

void writeAction(QTextStream &out, const ReportMember &member)
{
    const QString missing = member.missing();
    if (member.keep)
        out << "<td class=\"keep\">KEEP"_L1;
    else if (isDoubted(member.group, member.index))
        out << "<td>"_L1;
    else if (!missing.isEmpty())
        out << "<td>"_L1 << missing.toHtmlEscaped();
    else
        out << "<td class=\"dupe\">remove"_L1;
    for (const QString &text : member.checked() + member.edit())
        out << "<div class=\"path\">"_L1 << text.toHtmlEscaped() << "</div>"_L1;
    out << "</td>"_L1;
}

void writeFile(QTextStream &out, const ReportMember &member)
{
    out << "<td>"_L1 << member.track.fileName.toHtmlEscaped() << "<div class=\"path\">"_L1
        << nativePath(member.track.path).toHtmlEscaped() << "</div></td>"_L1;
}

void writeMusic(QTextStream &out, const ReportMember &member)
{
    out << "<td>"_L1 << displayArtist(member.track).toHtmlEscaped() << " &ndash; "_L1
        << displayTitle(member.track).toHtmlEscaped() << "</td>"_L1;
}

void writeDuration(QTextStream &out, const ReportMember &member)
{
    out << (member.track.stream.durationIsGuess ? "<td>~"_L1 : "<td>"_L1)
        << reportDurationText(member.track.stream.durationMs) << "</td>"_L1;
}

void writeQuality(QTextStream &out, const ReportMember &member)
{
    out << "<td>"_L1 << qualityText(member.track).toHtmlEscaped() << "</td>"_L1;
}

void writeSize(QTextStream &out, const ReportMember &member)
{
    out << "<td>"_L1 << sizeText(member.track.size) << "</td>"_L1;
}

void writeRelation(QTextStream &out, const ReportMember &member)
{
    out << "<td>"_L1 << relationText(member.relation, member.tracks).toHtmlEscaped() << "</td>"_L1;
}

struct Column {
    QLatin1StringView heading;
    void (*write)(QTextStream &out, const ReportMember &member);
};

constexpr std::array columns {
    Column { "Action"_L1, writeAction },        Column { "File"_L1, writeFile },
    Column { "Artist / Title"_L1, writeMusic }, Column { "Duration"_L1, writeDuration },
    Column { "Quality"_L1, writeQuality },      Column { "Size"_L1, writeSize },
};

/// Behind the others, whose places readers may rely on; only where the scan noted links.
std::vector<Column> columnsFor(const MatchGroup &group)
{
    std::vector<Column> all(columns.begin(), columns.end());
    if (!group.links.isEmpty())
        all.push_back({ "Relation"_L1, writeRelation });
    return all;
}

void writeGroup(QTextStream &out, const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    const std::vector<Column> shown = columnsFor(group);
    out << "<div class=\"group\"><h2>Group "_L1 << group.id << " &middot; "_L1
        << matchTypeLabel(group.matchType).toHtmlEscaped() << " <em>&middot; "_L1 << sizeText(group.reclaimableBytes)
        << " reclaimable</em>"_L1;
    for (const QString &remark : { groupCheckText(group), betterCopyText(group, tracks) }) {
        if (!remark.isEmpty())
            out << "<br>"_L1 << remark.toHtmlEscaped();
    }
    out << "</h2>\n<table><tr>"_L1;
    for (const Column &column : shown)
        out << "<th>"_L1 << column.heading << "</th>"_L1;
    out << "</tr>\n"_L1;
    for (const ReportMember &member : membersOf(group, tracks)) {
        out << "<tr>"_L1;
        for (const Column &column : shown)
            column.write(out, member);
        out << "</tr>\n"_L1;
    }
    out << "</table></div>\n"_L1;
}

} // namespace

void writeHtmlReport(QTextStream &out, const ReportContent &content)
{
    writeHead(out);
    writeSummary(out, content);
    for (const MatchGroup &group : content.groups)
        writeGroup(out, group, content.tracks);
    out << "<footer>"_L1 << metadata::applicationName() << ' ' << metadata::version() << " &middot; "_L1
        << metadata::rightsNotice() << "</footer>\n</body></html>\n"_L1;
}

} // namespace epr
