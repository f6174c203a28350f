// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removalplan.h"

#include "nativefile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>

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

// The name itself, not what it links to: links are resolved in its folder only.
QString entryKey(const QFileInfo &info)
{
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return foldCase((folder.isEmpty() ? info.absolutePath() : folder) + u'/' + info.fileName());
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
        m_removedNames.insert(entryKey(info));
        if (info.isSymLink()) // takes nothing from the file that it leads to
            return;
        if (const auto file = nativefile::identityOf(path))
            ++m_removedLinks[{ file->volume, file->index }];
    }

    [[nodiscard]] bool leadsThroughRemovedName(QString path) const
    {
        for (int step = 0; step < maxLinksInARow; ++step) {
            const QFileInfo info(path);
            if (m_removedNames.contains(entryKey(info)))
                return true;
            if (!info.isSymLink())
                return false;
            path = info.symLinkTarget();
        }
        return true;
    }

    // One file can be reached by several paths that look different, by a mapped drive and the share's own name for
    // instance. It is lost when as many of its names go as it has.
    [[nodiscard]] bool losesItsLastName(const QString &path) const
    {
        const auto file = nativefile::identityOf(path);
        return file && m_removedLinks.value({ file->volume, file->index }) >= std::max<quint64>(file->links, 1);
    }

    QSet<QString> m_removedNames;
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

// The nearest folder above that exists has a canonical path; what is missing below it cannot be a link.
QString canonicalFolder(const QString &folder)
{
    QString existing = QDir::cleanPath(QDir(folder).absolutePath());
    QString missing;
    while (!QFileInfo::exists(existing)) {
        const QFileInfo info(existing);
        if (info.path() == existing)
            break;
        missing = u'/' + info.fileName() + missing;
        existing = info.path();
    }
    const QString canonical = QFileInfo(existing).canonicalFilePath();
    return foldCase(QDir::cleanPath((canonical.isEmpty() ? existing : canonical) + missing));
}

/// One group after the look at its files.
struct CheckedGroup {
    qint32 id = 0;
    CheckedCandidates ticked;
    CheckedCandidates unticked;
};

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

QString changedMessage(const QString &path)
{
    return QCoreApplication::translate("epr::Cleanup", "%1 changed since the scan and was left in place").arg(path);
}

CheckedCandidates checkCandidates(const QList<RemovalCandidate> &candidates)
{
    CheckedCandidates checked;
    for (const RemovalCandidate &candidate : candidates) {
        if (changedSinceScan(candidate))
            checked.errors.append(changedMessage(candidate.path));
        else
            checked.paths.append(candidate.path);
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
    const QString inner = canonicalFolder(folder);
    return std::any_of(roots.cbegin(), roots.cend(), [&inner](const QString &root) {
        const QString outer = canonicalFolder(root);
        return inner == outer || inner.startsWith(outer.endsWith(u'/') ? outer : outer + u'/');
    });
}

RemovalPlan planRemoval(const QList<TickedGroup> &groups)
{
    QList<CheckedGroup> checked;
    for (const TickedGroup &group : groups)
        checked.append({ group.id, checkCandidates(group.ticked), checkCandidates(group.unticked) });
    const QHash<qint32, QString> reasons = refusals(checked);

    RemovalPlan plan;
    for (const CheckedGroup &group : std::as_const(checked)) {
        plan.refused += static_cast<qint32>(group.ticked.errors.size());
        plan.errors += group.ticked.errors;
        const auto reason = reasons.constFind(group.id);
        if (reason == reasons.cend()) {
            plan.paths += group.ticked.paths;
            continue;
        }
        plan.refused += static_cast<qint32>(group.ticked.paths.size());
        plan.errors += group.unticked.errors.isEmpty() ? *reason : survivorChangedMessage(group.id);
    }
    return plan;
}

} // namespace epr
