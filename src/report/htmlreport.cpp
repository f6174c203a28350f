// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "htmlreport.h"

#include "displaytext.h"
#include "metadata.h"
#include "reportdata.h"
#include "reporttext.h"

#include <QTextStream>

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

void writeSummary(QTextStream &out, const ReportData &data)
{
    out << "<h1>Echo<span>prune</span> duplicate report</h1>\n"_L1
        << "<div class=\"meta\">Generated "_L1 << data.generated.toString(Qt::RFC2822Date).toHtmlEscaped()
        << " &middot; scanned "_L1 << data.roots.join(", "_L1).toHtmlEscaped() << "</div>\n"_L1
        << "<div class=\"summary\">"_L1;
    writeCard(out, QString::number(data.tracks.size()), u"Files scanned"_s);
    writeCard(out, QString::number(data.groups.size()), u"Duplicate groups"_s);
    writeCard(out, QString::number(redundantFiles(data.groups)), u"Redundant files"_s);
    writeCard(out, sizeText(reclaimableBytes(data.groups)), u"Reclaimable"_s);
    out << "</div>\n"_L1;
}

void writeMember(QTextStream &out, const TrackInfo &track, bool keep)
{
    out << "<tr><td class=\""_L1 << (keep ? "keep\">KEEP"_L1 : "dupe\">remove"_L1) << "</td><td>"_L1
        << track.fileName.toHtmlEscaped() << "<div class=\"path\">"_L1 << track.path.toHtmlEscaped()
        << "</div></td><td>"_L1 << displayArtist(track).toHtmlEscaped() << " &ndash; "_L1
        << displayTitle(track).toHtmlEscaped() << "</td><td>"_L1 << reportDurationText(track.stream.durationMs)
        << "</td><td>"_L1 << qualityText(track).toHtmlEscaped() << "</td><td>"_L1 << sizeText(track.size)
        << "</td></tr>\n"_L1;
}

void writeGroup(QTextStream &out, const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    out << "<div class=\"group\"><h2>Group "_L1 << group.id << " &middot; "_L1
        << matchTypeLabel(group.matchType).toHtmlEscaped() << " <em>&middot; "_L1 << sizeText(group.reclaimableBytes)
        << " reclaimable</em></h2>\n"_L1
        << "<table><tr><th>Action</th><th>File</th><th>Artist / Title</th><th>Duration</th><th>Quality</th>"
           "<th>Size</th></tr>\n"_L1;
    for (const ReportMember &member : membersOf(group, tracks))
        writeMember(out, member.track, member.keep);
    out << "</table></div>\n"_L1;
}

} // namespace

void writeHtmlReport(QTextStream &out, const ReportData &data)
{
    writeHead(out);
    writeSummary(out, data);
    for (const MatchGroup &group : data.groups)
        writeGroup(out, group, data.tracks);
    out << "<footer>"_L1 << metadata::applicationName() << ' ' << metadata::version() << " &middot; "_L1
        << metadata::rightsNotice() << "</footer>\n</body></html>\n"_L1;
}

} // namespace epr
