// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "temporarylibrary.h"

#include <QProcess>

#include <algorithm>
#include <bit>

namespace epr {

/// Has ffmpeg encode pink noise, the same every time, into a file as the file's suffix and the options say.
inline bool makeAudioFile(const QString &path, int seconds, const QString &options = {}, int rate = 44100)
{
    const QString source = QStringLiteral("-nostdin -v error -y -f lavfi -i anoisesrc=c=pink:seed=7:a=0.5:d=%1:r=%2 ");
    const QString arguments = source.arg(seconds).arg(rate) + options;
    return QProcess::execute(QStringLiteral("ffmpeg"), arguments.split(u' ', Qt::SkipEmptyParts) << path) == 0;
}

/// Share of differing bits over the words that both have; 1 when their lengths differ by more than two words.
inline double bitErrorRate(const QList<quint32> &a, const QList<quint32> &b)
{
    const qsizetype count = std::min(a.size(), b.size());
    int errors = 0;
    for (qsizetype i = 0; i < count; ++i)
        errors += std::popcount(a.at(i) ^ b.at(i));
    return count > 0 && qAbs(a.size() - b.size()) <= 2 ? errors / (32.0 * static_cast<double>(count)) : 1.0;
}

/// An executable shell script that takes the part of a tool.
inline QString makeStandIn(const QString &path, const QByteArray &body)
{
    test::writeFile(path, "#!/bin/sh\n" + body + "\n");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

} // namespace epr
