// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "displaytext.h"
#include "reportcontent.h"

#include <QTextStream>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

/// The value in double quotes, those inside it doubled (RFC 4180).
QString quoted(const QString &value)
{
    QString field = value;
    field.replace(u'"', "\"\""_L1);
    return u'"' + field + u'"';
}

struct CsvColumn {
    QLatin1StringView heading;
    QString (*field)(const ReportMember &member);
};

constexpr std::array csvColumns {
    CsvColumn { "Group"_L1, [](const ReportMember &m) { return QString::number(m.group.id); } },
    CsvColumn { "Match type"_L1, [](const ReportMember &m) { return quoted(matchTypeLabel(m.group.matchType)); } },
    CsvColumn { "Confidence"_L1, [](const ReportMember &m) { return QString::number(m.group.confidence, 'f', 2); } },
    CsvColumn { "Keep"_L1, [](const ReportMember &m) { return m.keep ? u"KEEP"_s : u"duplicate"_s; } },
    CsvColumn { "File"_L1, [](const ReportMember &m) { return quoted(m.track.fileName); } },
    CsvColumn { "Folder"_L1, [](const ReportMember &m) { return quoted(nativePath(folderOf(m.track))); } },
    CsvColumn { "Artist"_L1, [](const ReportMember &m) { return quoted(m.track.tags.artist); } },
    CsvColumn { "Title"_L1, [](const ReportMember &m) { return quoted(m.track.tags.title); } },
    CsvColumn { "Album"_L1, [](const ReportMember &m) { return quoted(m.track.tags.album); } },
    CsvColumn { "Duration"_L1,
                [](const ReportMember &m) { return quoted(reportDurationText(m.track.stream.durationMs)); } },
    CsvColumn { "Bitrate (kbps)"_L1,
                [](const ReportMember &m) { return QString::number(m.track.stream.bitrateKbps); } },
    CsvColumn { "Sample rate"_L1, [](const ReportMember &m) { return QString::number(m.track.stream.sampleRate); } },
    CsvColumn { "Channels"_L1, [](const ReportMember &m) { return QString::number(m.track.stream.channels); } },
    CsvColumn { "Format"_L1, [](const ReportMember &m) { return quoted(m.track.suffix.toUpper()); } },
    CsvColumn { "Size (bytes)"_L1, [](const ReportMember &m) { return QString::number(m.track.size); } },
    CsvColumn { "Modified"_L1,
                [](const ReportMember &m) { return quoted(m.track.mtime.toLocalTime().toString(Qt::ISODate)); } },
};

/// What was measured of a copy while it was checked; the empty record when it was not.
SoundMeasures measuresOf(const ReportMember &member)
{
    return member.group.check.measures.value(member.index);
}

QString levelField(double level)
{
    return std::isfinite(level) ? QString::number(level, 'f', 1) : QString();
}

QString countField(qint64 count)
{
    return count > 0 ? QString::number(count) : QString();
}

// Only there where one of them has something to say.
constexpr std::array furtherColumns {
    CsvColumn { "Missing"_L1, [](const ReportMember &m) { return quoted(m.missing()); } },
    CsvColumn { "Remark"_L1, [](const ReportMember &m) { return quoted(m.edit().join(QString())); } },
    CsvColumn { "Duration is a guess"_L1,
                [](const ReportMember &m) { return quoted(m.track.stream.durationIsGuess ? u"yes"_s : QString()); } },
    CsvColumn { "Check"_L1, [](const ReportMember &m) { return quoted(m.checked().join("; "_L1)); } },
    CsvColumn { "Loudness (LUFS)"_L1, [](const ReportMember &m) { return levelField(measuresOf(m).loudness); } },
    CsvColumn { "True peak (dBTP)"_L1, [](const ReportMember &m) { return levelField(measuresOf(m).truePeak); } },
    CsvColumn { "Bandwidth (Hz)"_L1, [](const ReportMember &m) { return countField(measuresOf(m).bandwidthHz); } },
    CsvColumn { "Clipped samples"_L1, [](const ReportMember &m) { return countField(measuresOf(m).clippedSamples); } },
    CsvColumn { "Decoding errors"_L1, [](const ReportMember &m) { return countField(measuresOf(m).decodingErrors); } },
};

std::vector<CsvColumn> columnsFor(const ReportContent &content)
{
    std::vector<CsvColumn> columns(csvColumns.begin(), csvColumns.end());
    for (const CsvColumn &column : furtherColumns) {
        const auto isTold = [&](const MatchGroup &group) {
            return std::ranges::any_of(membersOf(group, content.tracks), [&](const ReportMember &member) {
                const QString field = column.field(member);
                return !field.isEmpty() && field != quoted({});
            });
        };
        if (std::ranges::any_of(content.groups, isTold))
            columns.push_back(column);
    }
    return columns;
}

template <typename CellOf> void writeCsvLine(QTextStream &out, const std::vector<CsvColumn> &columns, CellOf cellOf)
{
    for (const CsvColumn &column : columns)
        out << (&column == columns.data() ? ""_L1 : ","_L1) << cellOf(column);
    out << '\n';
}

bool isLineBreak(QChar character)
{
    return character == u'\n' || character == u'\r';
}

QString onOneLine(QString text)
{
    std::replace_if(text.begin(), text.end(), isLineBreak, u' ');
    return text;
}

void writePlaylistEntry(QTextStream &out, const TrackInfo &track)
{
    // A playlist has one path on each line and no way to escape. Half a path might be another file's, and the list may
    // be used to remove files, so such a file is only mentioned.
    if (std::any_of(track.path.cbegin(), track.path.cend(), isLineBreak)) {
        out << "# Left out, its path contains a line break: "_L1 << onOneLine(nativePath(track.path)) << '\n';
        return;
    }
    out << "#EXTINF:"_L1 << track.stream.durationMs / 1000 << ',' << onOneLine(displayArtist(track)) << " - "_L1
        << onOneLine(displayTitle(track)) << '\n'
        << nativePath(track.path) << '\n';
}

} // namespace

void writeCsvReport(QTextStream &out, const ReportContent &content)
{
    const std::vector<CsvColumn> columns = columnsFor(content);
    writeCsvLine(out, columns, [](const CsvColumn &column) { return column.heading; });
    for (const MatchGroup &group : content.groups) {
        for (const ReportMember &member : membersOf(group, content.tracks))
            writeCsvLine(out, columns, [&member](const CsvColumn &column) { return column.field(member); });
    }
}

void writeMarkedCsvReport(QTextStream &out, const ReportContent &content)
{
    out.setGenerateByteOrderMark(true);
    writeCsvReport(out, content);
}

void writeCsvProblems(QTextStream &out, const QList<FileProblem> &problems)
{
    out << "File,Attempt,Reason,When\n"_L1;
    for (const FileProblem &problem : problems) {
        out << quoted(nativePath(problem.path)) << ',' << quoted(attemptText(problem.attempt)) << ','
            << quoted(problem.reason) << ',' << quoted(problem.when.toLocalTime().toString(Qt::ISODate)) << '\n';
    }
}

void writePlaylistReport(QTextStream &out, const ReportContent &content)
{
    out << "#EXTM3U\n"_L1
        << "# "_L1 << metadata::applicationName() << ' ' << metadata::version() << " - proposed duplicates, "_L1
        << generatedText(content) << '\n';
    for (const MatchGroup &group : content.groups) {
        for (const ReportMember &member : membersOf(group, content.tracks)) {
            if (isProposed(group, member.index))
                writePlaylistEntry(out, member.track);
        }
    }
}

} // namespace epr
