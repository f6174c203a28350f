// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "timetext.h"

#include <QCoreApplication>

namespace epr::vfd {

using namespace Qt::StringLiterals;

namespace {

QString twoDigits(qint64 value)
{
    return u"%1"_s.arg(value, 2, 10, QLatin1Char('0'));
}

} // namespace

QString timeText(qint64 timeMs)
{
    const qint64 seconds = qMax<qint64>(timeMs, 0) / 1000;
    return QCoreApplication::translate("epr::vfd", "%1:%2:%3")
        .arg(QString::number(seconds / 3600), twoDigits(seconds / 60 % 60), twoDigits(seconds % 60));
}

} // namespace epr::vfd
