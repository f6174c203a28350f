// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanuplock.h"

#include "displaytext.h"
#include "nativefile.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSysInfo>

namespace epr {

using namespace Qt::StringLiterals;
using nativefile::LockOutcome;

namespace {

constexpr qint64 maxHolderBytes = 1000;
constexpr QFile::Permissions everybody =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;

QString thisProcess()
{
    const QString user = qEnvironmentVariable("USER", qEnvironmentVariable("USERNAME"));
    return QCoreApplication::translate("epr::Cleanup", "%1 on %2, process %3, since %4")
        .arg(user.isEmpty() ? u"?"_s : user, QSysInfo::machineHostName(),
             QString::number(QCoreApplication::applicationPid()),
             QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH:mm:ss"_s));
}

// A lock of another user may be for reading only, which is enough to lock it where the file system is a local one.
bool open(QFile &file)
{
    if (QFileInfo(file).isSymLink()) // never ours, and it may lead to anything
        return false;
    const bool isNew = !file.exists();
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (isNew)
        file.setPermissions(everybody);
    return true;
}

// The lock holds with or without the text, so a full disk is no reason to stop.
void sayWho(QFile &file)
{
    if (file.isWritable() && file.size() <= maxHolderBytes && file.resize(0))
        static_cast<void>(file.write(thisProcess().toUtf8() + '\n'));
}

/// False if the file system knows no locks.
Result<bool> lock(QFile &file)
{
    if (!open(file)) {
        return failure(QCoreApplication::translate("epr::Cleanup", "The lock %1 cannot be opened (%2)")
                           .arg(nativePath(file.fileName()), file.errorString()));
    }
    const Result<LockOutcome> outcome = nativefile::lockFile(file);
    if (outcome == LockOutcome::Locked)
        sayWho(file);
    else if (outcome == LockOutcome::Held) {
        const QString holder = QString::fromUtf8(file.read(maxHolderBytes)).section(u'\n', 0, 0);
        return failure(QCoreApplication::translate("epr::Cleanup", "Another clean-up is running: %1.")
                           .arg(holder.isEmpty() ? u"?"_s : holder));
    } else if (!outcome) {
        return failure(QCoreApplication::translate("epr::Cleanup", "The lock %1 cannot be taken (%2)")
                           .arg(nativePath(file.fileName()), outcome.error()));
    }
    return outcome == LockOutcome::Locked;
}

} // namespace

Result<> CleanupLock::take(const QString &quarantineRoot)
{
    m_user.setFileName(QDir(undoDirectory()).filePath(u"cleanup.lock"_s));
    const Result<bool> locked = lock(m_user);
    if (!locked)
        return failure(locked.error());
    m_isCertain = *locked;
    return takeQuarantine(quarantineRoot);
}

Result<> CleanupLock::takeQuarantine(const QString &quarantineRoot)
{
    if (m_quarantine.isOpen() || quarantineRoot.isEmpty() || !QFileInfo(quarantineRoot).isDir())
        return {};
    m_quarantine.setFileName(QDir(quarantineRoot).absoluteFilePath(quarantineLockName));
    const Result<bool> locked = lock(m_quarantine);
    // Who may make no file there moves no file there either, and says so by itself.
    if (!locked && m_quarantine.exists())
        return failure(locked.error());
    return {};
}

} // namespace epr
