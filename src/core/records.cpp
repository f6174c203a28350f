// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "records.h"

#include "fileproblem.h"

namespace epr {

using namespace Qt::StringLiterals;

QStringList ScanOptions::defaultExtensions()
{
    return { u"mp3"_s,  u"flac"_s, u"wav"_s, u"m4a"_s, u"aac"_s, u"ogg"_s,
             u"opus"_s, u"aiff"_s, u"aif"_s, u"wma"_s, u"mp2"_s };
}

QStringList ScanOptions::defaultExcludes()
{
    return { u"*/.Trash/*"_s, u"*/#recycle/*"_s, u"*/Echoprune Quarantine/*"_s };
}

// "aac", "aif" and "mp2" are scanned but take no place in the order of preference.
QStringList ScanOptions::defaultFormatPreference()
{
    return { u"flac"_s, u"wav"_s, u"aiff"_s, u"mp3"_s, u"m4a"_s, u"ogg"_s, u"opus"_s, u"wma"_s };
}

void registerMetaTypes()
{
    qRegisterMetaType<TrackInfo>("epr::TrackInfo");
    qRegisterMetaType<MatchGroup>("epr::MatchGroup");
    qRegisterMetaType<QList<TrackInfo>>("QVector<epr::TrackInfo>");
    qRegisterMetaType<QList<MatchGroup>>("QVector<epr::MatchGroup>");
    qRegisterMetaType<QList<quint32>>("QVector<quint32>");
    qRegisterMetaType<ScanOptions>("epr::ScanOptions");
    qRegisterMetaType<FingerprintResult>("epr::FingerprintResult");
    qRegisterMetaType<Envelope>("epr::Envelope");
    qRegisterMetaType<GroupCheck>("epr::GroupCheck");
    qRegisterMetaType<QList<FileProblem>>("QList<epr::FileProblem>");
}

} // namespace epr
