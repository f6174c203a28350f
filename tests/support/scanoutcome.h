// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scancontroller.h"

#include <QHash>

#include <functional>

namespace epr::test {

// What a scan reported.
struct Outcome {
    QList<TrackInfo> tracks;
    QHash<QString, TrackInfo> byName;
    QList<MatchGroup> groups;
    bool cancelled = false;
    int finishes = 0;
    QStringList phases;
    QStringList log;
};

using Hook = std::function<void(const QString &now)>; // hears of each phase and of each step of its progress

inline Outcome scan(ScanController &controller, const ScanOptions &options, const Hook &hook = nullptr)
{
    Outcome outcome;
    const QObject context;
    const auto on = [&](auto signal, auto slot) { QObject::connect(&controller, signal, &context, slot); };
    const auto tell = [&](const QString &now) { hook ? hook(now) : void(); };
    on(&ScanController::logMessage, [&](const QString &message) { outcome.log << message; });
    on(&ScanController::phaseChanged, [&](const QString &phase) { tell((outcome.phases << phase).last()); });
    on(&ScanController::progress, [&](int, int, const QString &detail) { tell(detail); });
    on(&ScanController::finished, [&](const QList<TrackInfo> &tracks, const QList<MatchGroup> &groups, bool cancelled) {
        std::tie(outcome.tracks, outcome.groups, outcome.cancelled) = std::tie(tracks, groups, cancelled);
        ++outcome.finishes;
        for (const TrackInfo &track : tracks)
            outcome.byName.insert(track.fileName, track);
    });
    controller.start(options);
    return outcome;
}

} // namespace epr::test
