// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removalplan.h"

#include "displaytext.h"
#include "folderset.h"
#include "nativefile.h"
#include "systempaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <functional>

namespace epr {

namespace {

#ifdef Q_OS_WIN
constexpr Qt::CaseSensitivity pathCase = Qt::CaseInsensitive;
#else
constexpr Qt::CaseSensitivity pathCase = Qt::CaseSensitive;
#endif

constexpr int maxLinksInARow = 40; // where systems give up too

QString foldCase(const QString &path)
{
    return pathCase == Qt::CaseInsensitive ? path.toCaseFolded() : path;
}

// A name itself, not what it links to. Its folder is known by what the file system calls it: one folder can be reached
// by many paths, through links and mounts.
struct NameKey {
    quint64 volume = 0;
    quint64 folder = 0;
    QString name; ///< with the folder's path where its file system does not tell folders apart

    bool operator==(const NameKey &) const = default;
    friend size_t qHash(const NameKey &key, size_t seed) { return qHashMulti(seed, key.volume, key.folder, key.name); }
};

NameKey nameKey(const QFileInfo &info)
{
    if (const auto folder = nativefile::identityOf(info.absolutePath()))
        return { folder->volume, folder->index, foldCase(info.fileName()) };
    const QString folder = folderIdentity(info.absolutePath()).path;
    return { 0, 0, foldCase((folder.isEmpty() ? info.absolutePath() : folder) + u'/' + info.fileName()) };
}

template <typename IsRemoved> bool leadsThrough(QString path, const IsRemoved &isRemoved)
{
    for (int step = 0; step < maxLinksInARow; ++step) {
        const QFileInfo info(path);
        if (isRemoved(nameKey(info)))
            return true;
        if (!info.isSymLink())
            return false;
        path = info.symLinkTarget();
    }
    return true;
}

bool hasReadableContent(const QString &path)
{
    QFile file(path);
    char byte = 0;
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        && file.read(&byte, 1) == 1;
}

/// What is left of a file when the ticked names are gone.
class AfterRemoval final {
public:
    explicit AfterRemoval(const QSet<QString> &ticked)
    {
        for (const QString &path : ticked)
            addRemovedName(path);
    }

    [[nodiscard]] bool survives(const QString &path) const
    {
        return hasReadableContent(path) && !leadsThroughRemovedName(path) && !losesItsLastName(path);
    }

private:
    using FileKey = std::pair<quint64, quint64>;

    void addRemovedName(const QString &path)
    {
        const QFileInfo info(path);
        const NameKey name = nameKey(info);
        if (m_removedNames.contains(name)) // the same name by another path: the file loses it once
            return;
        m_removedNames.insert(name);
        if (info.isSymLink()) // takes nothing from the file that it leads to
            return;
        if (const auto file = nativefile::identityOf(path))
            ++m_removedLinks[{ file->volume, file->index }];
    }

    [[nodiscard]] bool leadsThroughRemovedName(const QString &path) const
    {
        return leadsThrough(path, [this](const NameKey &name) { return m_removedNames.contains(name); });
    }

    // One file can be reached by several paths that look different, by a mapped drive and the share's own name for
    // instance. It is lost when as many of its names go as it has.
    [[nodiscard]] bool losesItsLastName(const QString &path) const
    {
        const auto file = nativefile::identityOf(path);
        return file && m_removedLinks.value({ file->volume, file->index }) >= std::max<quint64>(file->links, 1);
    }

    QSet<NameKey> m_removedNames;
    QHash<FileKey, quint64> m_removedLinks;
};

bool hasTickedMember(const RemovalGroup &group, const QSet<QString> &ticked)
{
    return std::any_of(group.members.cbegin(), group.members.cend(),
                       [&](const QString &path) { return ticked.contains(path); });
}

bool hasSurvivor(const RemovalGroup &group, const QSet<QString> &ticked, const AfterRemoval &after)
{
    return std::any_of(group.members.cbegin(), group.members.cend(),
                       [&](const QString &path) { return !ticked.contains(path) && after.survives(path); });
}

/// One group after the look at its files.
struct CheckedGroup {
    qint32 id = 0;
    CheckedCandidates ticked;
    CheckedCandidates unticked;
    QList<RemovalCandidate> kept;
};

/// A ticked file in a protected folder is a copy that stays, like those that were not ticked.
QList<TickedGroup> withoutProtected(QList<TickedGroup> groups, const QStringList &protectedFolders, RemovalPlan &plan)
{
    FolderSet folders(protectedFolders);
    for (TickedGroup &group : groups) {
        const auto isProtected = [&folders](const RemovalCandidate &file) {
            return folders.contains(QFileInfo(file.path).absolutePath());
        };
        const auto staying = std::stable_partition(group.ticked.begin(), group.ticked.end(), std::not_fn(isProtected));
        for (auto file = staying; file != group.ticked.end(); ++file) {
            ++plan.refused;
            plan.errors.append(protectedMessage(file->path));
            plan.problems.append({ file->path, Attempt::Remove, plan.errors.last() });
            group.unticked.append(*file);
        }
        group.ticked.erase(staying, group.ticked.end());
    }
    return groups;
}

QString survivorChangedMessage(qint32 id)
{
    return QCoreApplication::translate(
               "epr::Cleanup",
               "Group %1 was left alone: the copy to keep changed since the scan. Scan again to "
               "compare it afresh.")
        .arg(id);
}

QHash<qint32, QString> refusals(const QList<CheckedGroup> &groups)
{
    QList<RemovalGroup> members;
    QSet<QString> ticked;
    for (const CheckedGroup &group : groups) {
        members.append({ group.id, group.ticked.paths + group.unticked.paths });
        ticked.unite({ group.ticked.paths.cbegin(), group.ticked.paths.cend() });
    }
    QHash<qint32, QString> reasons;
    const QList<RefusedGroup> refused = groupsWithoutSurvivor(members, ticked);
    for (const RefusedGroup &group : refused)
        reasons.insert(group.id, group.reason);
    return reasons;
}

} // namespace

bool changedSinceScan(const RemovalCandidate &candidate)
{
    const QFileInfo info(candidate.path);
    return info.exists()
        && (info.size() != candidate.size
            || info.lastModified().toSecsSinceEpoch() != candidate.mtime.toSecsSinceEpoch());
}

bool standsWithout(const QString &path, const QList<RemovalCandidate> &copies)
{
    const NameKey removed = nameKey(QFileInfo(path));
    return std::any_of(copies.cbegin(), copies.cend(), [&](const RemovalCandidate &copy) {
        return !changedSinceScan(copy) && hasReadableContent(copy.path)
            && !leadsThrough(copy.path, [&removed](const NameKey &name) { return name == removed; });
    });
}

QString changedMessage(const QString &path)
{
    return QCoreApplication::translate("epr::Cleanup", "%1 changed since the scan and was left in place")
        .arg(nativePath(path));
}

CheckedCandidates checkCandidates(const QList<RemovalCandidate> &candidates)
{
    CheckedCandidates checked;
    for (const RemovalCandidate &candidate : candidates) {
        if (!changedSinceScan(candidate)) {
            checked.paths.append(candidate.path);
            continue;
        }
        checked.changed.append(candidate.path);
        checked.errors.append(changedMessage(candidate.path));
    }
    return checked;
}

QList<RefusedGroup> groupsWithoutSurvivor(const QList<RemovalGroup> &groups, const QSet<QString> &ticked)
{
    const AfterRemoval after(ticked);
    QList<RefusedGroup> refused;
    for (const RemovalGroup &group : groups) {
        if (!hasTickedMember(group, ticked) || hasSurvivor(group, ticked, after))
            continue;
        const QString reason =
            QCoreApplication::translate("epr::Cleanup",
                                        "Group %1 was left alone: no copy would remain that can be read and does not "
                                        "depend on the files to be removed.")
                .arg(group.id);
        refused.append({ group.id, reason });
    }
    return refused;
}

bool isInside(const QString &folder, const QStringList &roots)
{
    return FolderSet(roots).contains(folder);
}

QString protectedMessage(const QString &path)
{
    return QCoreApplication::translate("epr::Cleanup", "%1 is in a protected folder and was left in place")
        .arg(nativePath(path));
}

RemovalPlan planRemoval(const QList<TickedGroup> &groups, const QStringList &protectedFolders)
{
    RemovalPlan plan;
    plan.checks.protectedFolders = protectedFolders;
    const QList<TickedGroup> toCheck = withoutProtected(groups, protectedFolders, plan);
    QList<CheckedGroup> checked;
    for (const TickedGroup &group : toCheck)
        checked.append({ group.id, checkCandidates(group.ticked), checkCandidates(group.unticked), group.unticked });
    const QHash<qint32, QString> reasons = refusals(checked);

    for (const TickedGroup &group : toCheck) {
        for (const RemovalCandidate &file : group.ticked)
            plan.checks.scanned.insert(file.path, file);
    }
    for (const CheckedGroup &group : std::as_const(checked)) {
        plan.refused += static_cast<qint32>(group.ticked.errors.size());
        plan.errors += group.ticked.errors;
        for (const QString &path : group.ticked.changed)
            plan.problems.append({ path, Attempt::Remove, changedMessage(path) });
        const auto reason = reasons.constFind(group.id);
        if (reason == reasons.cend()) {
            plan.paths += group.ticked.paths;
            for (const QString &path : group.ticked.paths)
                plan.checks.kept.insert(path, group.kept);
            continue;
        }
        plan.refused += static_cast<qint32>(group.ticked.paths.size());
        plan.errors += group.unticked.errors.isEmpty() ? *reason : survivorChangedMessage(group.id);
        for (const QString &path : group.ticked.paths)
            plan.problems.append({ path, Attempt::Remove, plan.errors.last() });
    }
    return plan;
}

} // namespace epr
