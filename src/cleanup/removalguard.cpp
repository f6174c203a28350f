// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removalguard.h"

#include "distinction.h"
#include "quarantinerun.h"
#include "removalplan.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace epr {

namespace {

QString notProved(const QString &path, const QString &copy)
{
    return QCoreApplication::translate(
               "epr::Cleanup",
               "%1 was left in place: it could not be proved to be another file than %2. It can "
               "still be moved to the quarantine, which looks again after the move.")
        .arg(path, copy);
}

QString sameFile(const QString &path, const QString &copy)
{
    return QCoreApplication::translate("epr::Cleanup", "%1 was left in place: it is the same file as %2")
        .arg(path, copy);
}

} // namespace

RemovalGuard::RemovalGuard(RemovalMode mode, const KeptCopies &kept)
    : m_mode(mode)
    , m_kept(kept)
{
}

std::optional<QString> RemovalGuard::objection(const QString &path) const
{
    if (m_kept.isEmpty())
        return std::nullopt;
    QString objection = copyGone(path);
    for (const RemovalCandidate &copy : m_kept.value(path)) {
        if (!standsWithout(path, { copy }))
            continue;
        if (QFileInfo(path).isSymLink()) // only the link goes, and the copy does not need it
            return std::nullopt;
        const Distinction found = tellApart(path, copy.path);
        if (found == Distinction::Two || (found == Distinction::Unknown && m_mode == RemovalMode::Quarantine))
            return std::nullopt;
        objection = found == Distinction::One ? sameFile(path, copy.path) : notProved(path, copy.path);
    }
    return objection;
}

bool RemovalGuard::copyStays(const QString &path) const
{
    return m_kept.isEmpty() || standsWithout(path, m_kept.value(path));
}

} // namespace epr
