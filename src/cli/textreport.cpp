// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "textreport.h"

#include "displaytext.h"
#include "terminal.h"

#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

struct Cli {
    Q_DECLARE_TR_FUNCTIONS(epr::Cli)
};

QString memberLine(const TrackInfo &track, bool keep)
{
    const QString action = keep ? Cli::tr("KEEP") : Cli::tr("duplicate");
    QStringList facts { durationText(track.stream.durationMs), qualityText(track), sizeText(track.size) };
    facts.removeAll(QString());
    return u"  %1  %2  (%3)\n"_s.arg(action.leftJustified(9), terminal::printable(QDir::toNativeSeparators(track.path)),
                                     facts.join("; "_L1));
}

void writeGroup(QTextStream &out, const QList<TrackInfo> &tracks, const MatchGroup &group)
{
    out << Cli::tr("Group %1 - %2 - %3 copies - %4 reclaimable")
               .arg(group.id)
               .arg(matchTypeLabel(group.matchType))
               .arg(group.members.size())
               .arg(sizeText(group.reclaimableBytes))
        << '\n';
    for (const qint32 member : group.members)
        out << memberLine(tracks.at(member), member == group.keep);
    out << '\n';
}

} // namespace

void writeTextReport(QTextStream &out, const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups)
{
    qint64 redundant = 0;
    qint64 reclaimable = 0;
    for (const MatchGroup &group : groups) {
        writeGroup(out, tracks, group);
        redundant += group.members.size() - 1;
        reclaimable += group.reclaimableBytes;
    }
    if (groups.isEmpty())
        out << Cli::tr("Scanned %1 files - no duplicates found.").arg(tracks.size());
    else
        out << Cli::tr("%1 files scanned - %2 duplicate groups - %3 redundant copies (%4).")
                   .arg(tracks.size())
                   .arg(groups.size())
                   .arg(redundant)
                   .arg(sizeText(reclaimable));
    out << '\n';
}

} // namespace epr
