// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "removalguard.h"

#include "displaytext.h"
#include "distinction.h"
#include "nativefile.h"
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
        .arg(nativePath(path), nativePath(copy));
}

QString sameFile(const QString &path, const QString &copy)
{
    return QCoreApplication::translate("epr::Cleanup", "%1 was left in place: it is the same file as %2")
        .arg(nativePath(path), nativePath(copy));
}

QString atWork(const QString &path, const QString &copy)
{
    return QCoreApplication::translate("epr::Cleanup",
                                       "%1 was left in place: another clean-up is at work on it or on %2")
        .arg(nativePath(path), nativePath(copy));
}

QString otherContent(const QString &path)
{
    return QCoreApplication::translate("epr::Cleanup",
                                       "%1 was left in place: its content is not what the scan or its cache recorded. "
                                       "Clear the cache and scan again.")
        .arg(nativePath(path));
}

QString otherCopy(const QString &path, const QString &copy)
{
    return QCoreApplication::translate(
               "epr::Cleanup",
               "%1 was left in place: the content of the copy to keep, %2, is not what the scan "
               "or its cache recorded. Clear the cache and scan again.")
        .arg(nativePath(path), nativePath(copy));
}

QString unreadable(const QString &path, const QString &reason)
{
    return QCoreApplication::translate("epr::Cleanup", "%1 was left in place: %2").arg(nativePath(path), reason);
}

} // namespace

RemovalGuard::RemovalGuard(RemovalMode mode, const RemovalChecks &checks)
    : m_mode(mode)
    , m_checks(checks)
    , m_protected(checks.protectedFolders)
{
}

Result<bool> RemovalGuard::mayGo(const QString &path, const ReadingFn &reading)
{
    m_held.close();
    if (m_protected.contains(QFileInfo(path).absolutePath()))
        return failure(protectedMessage(path));
    if (m_checks.kept.isEmpty())
        return true;
    QString objection = copyGone(path);
    for (const RemovalCandidate &copy : m_checks.kept.value(path)) {
        if (!standsWithout(path, { copy })) // before a long reading for nothing
            continue;
        const Result<bool> compared = areAsRecorded(copy, path, reading);
        if (compared && !*compared)
            return false;
        // The reading may have taken its time: what can change meanwhile is looked at last.
        const Result<> kept = compared ? isKeptBy(copy, path) : failure(compared.error());
        if (kept)
            return true;
        objection = kept.error();
    }
    return failure(objection);
}

Result<bool> RemovalGuard::areAsRecorded(const RemovalCandidate &copy, const QString &path, const ReadingFn &reading)
{
    using Answer = ContentCheck::Answer;
    // Of a link only the link goes, whatever it leads to.
    if ((m_mode != RemovalMode::Delete && !m_checks.compareAgain) || QFileInfo(path).isSymLink())
        return true;
    const Result<Answer> copys = m_content.compare(copy, reading);
    if (copys == Answer::Changed)
        return failure(otherCopy(path, copy.path));
    const Result<Answer> own =
        copys == Answer::AsRecorded ? m_content.compare(m_checks.scanned.value(path), reading) : copys;
    if (!own)
        return failure(unreadable(path, own.error()));
    if (own == Answer::Changed)
        return failure(otherContent(path));
    return own == Answer::AsRecorded;
}

// Another user's clean-up, with a quarantine of its own, may keep what goes here and take what is kept. Each holds what
// it keeps first and then asks whether what it takes is held: of the two, one at least finds that it is.
bool RemovalGuard::holds(const QString &copy, const QString &path)
{
    using nativefile::LockKind;
    using nativefile::LockOutcome;
    m_held.close();
    m_held.setFileName(copy);
    QFile taken(path);
    // Hard links share their lock: held alone under one name, it holds the other too.
    const auto copysIdentity = nativefile::identityOf(copy);
    const bool areLinks = copysIdentity && copysIdentity == nativefile::identityOf(path);
    // What cannot be locked, by who asks or where it lies, leaves the look directly before.
    if (!m_held.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        || nativefile::lockFile(m_held, areLinks ? LockKind::Exclusive : LockKind::Shared) == LockOutcome::Held) {
        return false;
    }
    return areLinks || !taken.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        || nativefile::lockFile(taken, LockKind::Exclusive) != LockOutcome::Held;
}

Result<> RemovalGuard::isKeptBy(const RemovalCandidate &copy, const QString &path)
{
    // A link holds no more than its name, and after a move into the quarantine there is another look.
    if (m_mode != RemovalMode::Quarantine && !QFileInfo(path).isSymLink() && !holds(copy.path, path))
        return failure(atWork(path, copy.path));
    if (!standsWithout(path, { copy }))
        return failure(copyGone(path));
    if (QFileInfo(path).isSymLink()) // only the link goes, and the copy does not need it
        return {};
    const Distinction found = tellApart(path, copy.path);
    if (found == Distinction::Two || (found == Distinction::Unknown && m_mode == RemovalMode::Quarantine))
        return {};
    return failure(found == Distinction::One ? sameFile(path, copy.path) : notProved(path, copy.path));
}

bool RemovalGuard::copyStays(const QString &path) const
{
    return m_checks.kept.isEmpty() || standsWithout(path, m_checks.kept.value(path));
}

} // namespace epr
