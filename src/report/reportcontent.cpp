// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reportcontent.h"

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

std::vector<ReportMember> membersOf(const MatchGroup &group, const QList<TrackInfo> &tracks)
{
    std::vector<ReportMember> members;
    for (const qint32 member : group.members) {
        if (member >= 0 && member < tracks.size())
            members.push_back({ group, tracks.at(member), member == group.keep });
    }
    return members;
}

QString generatedText(const ReportContent &content)
{
    return content.generated.toString(Qt::RFC2822Date);
}

QString reportDurationText(qint64 durationMs)
{
    if (durationMs < 1)
        return u"-"_s;
    const qint64 seconds = durationMs / 1000;
    return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace epr
