// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlistreport.h"

#include "displaytext.h"
#include "metadata.h"
#include "reportdata.h"

#include <QTextStream>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

bool isLineBreak(QChar character)
{
    return character == u'\n' || character == u'\r';
}

QString onOneLine(QString text)
{
    std::replace_if(text.begin(), text.end(), isLineBreak, u' ');
    return text;
}

bool isOnOneLine(const QString &text)
{
    return std::none_of(text.cbegin(), text.cend(), isLineBreak);
}

void writeEntry(QTextStream &out, const TrackInfo &track)
{
    // A playlist has one path on each line and no way to escape. Half a path might be another file's, and the list may
    // be used to remove files, so such a file is only mentioned.
    if (!isOnOneLine(track.path)) {
        out << "# Left out, its path contains a line break: "_L1 << onOneLine(track.path) << '\n';
        return;
    }
    out << "#EXTINF:"_L1 << track.stream.durationMs / 1000 << ',' << onOneLine(displayArtist(track)) << " - "_L1
        << onOneLine(displayTitle(track)) << '\n'
        << track.path << '\n';
}

} // namespace

void writePlaylistReport(QTextStream &out, const ReportData &data)
{
    out << "#EXTM3U\n"_L1
        << "# "_L1 << metadata::applicationName() << ' ' << metadata::version() << " - proposed duplicates, "_L1
        << data.generated.toString(Qt::RFC2822Date) << '\n';
    for (const MatchGroup &group : data.groups) {
        for (const ReportMember &member : membersOf(group, data.tracks)) {
            if (!member.keep)
                writeEntry(out, member.track);
        }
    }
}

} // namespace epr
