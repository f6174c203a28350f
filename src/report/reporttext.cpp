// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "reporttext.h"

namespace epr {

using namespace Qt::StringLiterals;

QString reportDurationText(qint64 durationMs)
{
    if (durationMs < 1)
        return u"-"_s;
    const qint64 seconds = durationMs / 1000;
    return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString csvField(const QString &value)
{
    QString field = value;
    field.replace(u'"', "\"\""_L1);
    return u'"' + field + u'"';
}

} // namespace epr
