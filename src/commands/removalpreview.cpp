// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removalpreview.h"

#include "copyrelation.h"
#include "displaytext.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QStorageInfo>

#include <algorithm>

namespace epr {

namespace {

using Share = RemovalPreview::Share;

QString typeText(MatchType type)
{
    return type == MatchType::SameSong
        ? QCoreApplication::translate("epr::RemovalDialog", "%1 - by artist and title alone").arg(matchTypeLabel(type))
        : matchTypeLabel(type);
}

void add(Share &share, const RemovalItem &item)
{
    ++share.files;
    share.bytes += item.size;
}

template <typename Key> QList<Share> named(const QMap<Key, Share> &shares, QString (*nameOf)(const Key &))
{
    QList<Share> list;
    for (auto share = shares.cbegin(); share != shares.cend(); ++share)
        list.append({ nameOf(share.key()), share->files, share->bytes });
    return list;
}

QList<Share> largestFirst(QList<Share> shares)
{
    std::ranges::stable_sort(shares, std::ranges::greater(), &Share::bytes);
    return shares;
}

} // namespace

// A copy of a group that was found by its weakest link may well be identical to the one that stays.
QList<RemovalItem> removalItems(const Review &review, const OnlyTracks &only)
{
    QList<RemovalItem> items;
    for (int g = 0; g < review.groups().size(); ++g) {
        const MatchGroup &group = review.groups().at(g);
        QHash<qint32, CopyRelation> relations;
        for (int m = 0; m < group.members.size(); ++m) {
            const TrackInfo *track = review.track(g, m);
            if (!track || !review.isTicked(g, m) || !isAmong(only, group.members.at(m)))
                continue;
            if (relations.isEmpty())
                relations = relationsToKept(group, review.tracks());
            const MatchType known = relations.value(group.members.at(m)).type;
            items.append({ track->path, known == MatchType::Unmatched ? group.matchType : known, 0 });
        }
    }
    return items;
}

Volume volumeOf(const QString &folder)
{
    QString there = QDir::cleanPath(folder);
    while (!QFileInfo::exists(there) && QFileInfo(there).path() != there)
        there = QFileInfo(there).path();
    const QStorageInfo storage(there);
    if (!storage.isValid() || !storage.isReady())
        return {};
    return { storage.rootPath(), storage.bytesAvailable() };
}

RemovalPreview previewRemoval(const QList<RemovalItem> &items, const QHash<QString, Volume> &volumes,
                              const Volume &quarantine)
{
    RemovalPreview preview;
    preview.freeBytes = quarantine.freeBytes;
    QMap<MatchType, Share> types;
    QMap<QString, Share> folders;
    QMap<QString, Share> drives;
    for (const RemovalItem &item : items) {
        const QString folder = QFileInfo(item.path).path();
        const QString drive = volumes.value(folder).root;
        add(types[item.type], item);
        add(folders[folder], item);
        add(drives[drive], item);
        if (drive.isEmpty() || drive != quarantine.root)
            preview.bytesToCopy += item.size;
    }
    preview.types = named<MatchType>(types, [](const MatchType &type) { return typeText(type); });
    preview.folders = largestFirst(named<QString>(folders, [](const QString &path) { return nativePath(path); }));
    preview.volumes = largestFirst(named<QString>(drives, [](const QString &path) {
        return path.isEmpty() ? QCoreApplication::translate("epr::RemovalDialog", "(unknown drive)") : nativePath(path);
    }));
    return preview;
}

} // namespace epr
