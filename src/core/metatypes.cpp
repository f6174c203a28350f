// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "metatypes.h"

#include "envelope.h"
#include "matchgroup.h"
#include "scanoptions.h"
#include "trackinfo.h"

namespace epr {

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
}

} // namespace epr
