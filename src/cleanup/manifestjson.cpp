// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "manifestjson.h"

#include <QJsonArray>
#include <QJsonObject>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr int manifestVersion = 1;

} // namespace

QJsonObject toJson(const ManifestEntry &entry)
{
    return { { u"from"_s, entry.from }, { u"to"_s, entry.to }, { u"size"_s, entry.size } };
}

QJsonObject toJson(const UndoManifest &manifest)
{
    QJsonArray entries;
    for (const ManifestEntry &entry : manifest.entries)
        entries.append(toJson(entry));
    return {
        { u"manifestVersion"_s, manifestVersion },
        { u"createdAt"_s, manifest.createdAt },
        { u"mode"_s, manifest.mode },
        { u"quarantineRoot"_s, manifest.quarantineRoot },
        { u"entries"_s, entries },
    };
}

ManifestEntry entryFromJson(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    ManifestEntry entry { object["from"_L1].toString(), object["to"_L1].toString(), object["size"_L1].toInteger() };
    if (entry.from.isEmpty() || entry.to.isEmpty())
        return {};
    return entry;
}

} // namespace epr
