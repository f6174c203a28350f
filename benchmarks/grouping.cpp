// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later

// What grouping costs in a large library with the shapes that invite quadratic work: thousands of identical files, and
// thousands of tracks under one artist and title.
#include "matching.h"
#include "stopwatch.h"

#include <QLocale>

#include <cstdio>

using namespace Qt::StringLiterals;
using epr::MatchGroup;
using epr::ScanOptions;
using epr::TrackInfo;

namespace {

TrackInfo ordinaryTrack(int number)
{
    TrackInfo track;
    track.path = u"/library/Artists/%1/Album %2/%3 Title.flac"_s.arg(number % 977).arg(number % 7919).arg(number);
    track.size = 4000000 + number;
    track.stream.durationMs = 180000 + number % 60000;
    track.tags.artist = u"The Artist No. %1"_s.arg(number / 2);
    track.tags.title = u"Title %1 (Remastered %2)"_s.arg(number / 2).arg(1960 + number % 60);
    track.fullHash = u"%1"_s.arg(number, 64, 16, QLatin1Char('0'));
    track.audioHash = u"%1"_s.arg(number / 3, 64, 16, QLatin1Char('0')); // every three share their audio
    return track;
}

/// The first bulk tracks are jingles of one artist and title, the next bulk are the same file.
QList<TrackInfo> library(int trackCount, int bulk)
{
    QList<TrackInfo> tracks;
    tracks.reserve(trackCount);
    for (int number = 0; number < trackCount; ++number) {
        TrackInfo track = ordinaryTrack(number);
        if (number < bulk) {
            track.tags.artist = u"Station"_s;
            track.tags.title = u"News jingle"_s;
            track.audioHash.clear();
        } else if (number < 2 * bulk) {
            track.fullHash = QString(64, u'f');
        }
        tracks << track;
    }
    return tracks;
}

void measure(const char *what, const QList<TrackInfo> &tracks, const ScanOptions &options)
{
    const std::atomic<qint32> notCancelled { 0 };
    QList<MatchGroup> groups;
    const auto [seconds] =
        epr::bench::shortestTimes(3, [&] { groups = epr::buildMatchGroups(tracks, options, notCancelled); });
    qsizetype largest = 0;
    for (const MatchGroup &group : groups)
        largest = std::max(largest, group.members.size());
    std::printf("%-44s %8lld tracks %8.3f s %7lld groups, largest %lld\n", what, static_cast<long long>(tracks.size()),
                seconds, static_cast<long long>(groups.size()), static_cast<long long>(largest));
}

} // namespace

int main()
{
    QLocale::setDefault(QLocale(QLocale::German)); // the C locale compares paths far more cheaply
    ScanOptions exact;
    ScanOptions all;
    all.detectMetadata = true;
    const QList<TrackInfo> plain = library(200000, 0);
    const QList<TrackInfo> bulky = library(200000, 10000);
    const QList<TrackInfo> half = library(100000, 5000);
    measure("exact passes, small groups", plain, exact);
    measure("exact passes, 10,000 identical files", bulky, exact);
    measure("metadata too, small groups", plain, all);
    measure("metadata too, 10,000 of one title", bulky, all);
    measure("the same at half the size", half, all);
}
