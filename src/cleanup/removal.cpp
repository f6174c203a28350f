// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cleanup.h"

#include "cleanuplock.h"
#include "displaytext.h"
#include "filemove.h"
#include "nativefile.h"
#include "patience.h"
#include "quarantinerun.h"
#include "removalguard.h"
#include "systempaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

const char *failureText(RemovalMode mode)
{
    switch (mode) {
    case RemovalMode::Quarantine:
        return QT_TRANSLATE_NOOP("epr::Cleanup", "Could not move %1");
    case RemovalMode::RecycleBin:
        return QT_TRANSLATE_NOOP("epr::Cleanup", "Recycle bin unavailable for %1");
    case RemovalMode::Delete:
        return QT_TRANSLATE_NOOP("epr::Cleanup", "Could not delete %1");
    }
    return QT_TRANSLATE_NOOP("epr::Cleanup", "Unknown way of removing %1");
}

QString failureMessage(RemovalMode mode, const QString &path)
{
    return QCoreApplication::translate("epr::Cleanup", failureText(mode)).arg(nativePath(path));
}

// Where there is no place for a bin Qt, on other systems than Windows, takes the working folder for one and reports
// success. The user's own bin is its last resort, so that has to be there.
bool hasRecycleBin()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    const QDir data(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    const QString bin = data.filePath(u"Trash"_s);
    if (data.mkpath(u"."_s) && QDir().mkdir(bin))
        QFile::setPermissions(bin, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return QFileInfo(bin).isDir();
#else
    return true;
#endif
}

// Qt says that a file is in the bin also of one that stayed where it was: on a network drive, which has no bin, say.
Result<> moveToBin(const QString &path)
{
    QFile file(path);
    if (!hasRecycleBin())
        return failure({});
    if (!file.moveToTrash())
        return failure(file.errorString());
    if (entryExists(path))
        return failure(QCoreApplication::translate("epr::Cleanup", "the file is still in its place"));
    return {};
}

Result<> removeWithoutUndo(RemovalMode mode, const QString &path)
{
    switch (mode) {
    case RemovalMode::RecycleBin:
        return moveToBin(path);
    case RemovalMode::Delete:
        return nativefile::removeFile(path);
    case RemovalMode::Quarantine:
        break;
    }
    return failure({});
}

class Removal final {
public:
    Removal(const QStringList &paths, RemovalMode mode, const RemovalChecks &checks, QuarantineRun &quarantine)
        : m_paths(paths)
        , m_mode(mode)
        , m_guard(mode, checks)
        , m_quarantine(quarantine)
    {
    }

    [[nodiscard]] RemovalResult run(const CleanupProgressFn &progress)
    {
        qsizetype index = 0;
        const auto goesOn = [&](const QString &text) { return !progress || progress(index, m_paths.size(), text); };
        m_patience = Patience(goesOn);
        while (index < m_paths.size() && goesOn(m_paths.at(index)) && removeOne(index, goesOn))
            ++index;
        if (const std::optional<QString> incomplete = m_quarantine.finish())
            m_result.errors.append(*incomplete);
        m_result.manifestPath = m_quarantine.manifestPath();
        return m_result;
    }

private:
    /// False if it was stopped while the file was compared or in use.
    [[nodiscard]] bool removeOne(qsizetype index, const ReadingFn &goesOn)
    {
        const QString &path = m_paths.at(index);
        const QFileInfo info(path);
        if (!info.exists()) {
            reportFailure(path,
                          QCoreApplication::translate("epr::Cleanup", "%1 no longer exists").arg(nativePath(path)));
            return true;
        }
        // What was a file when it was scanned may by now be a folder full of others.
        if (!info.isFile()) {
            reportFailure(path, failureMessage(m_mode, path));
            return true;
        }
        const Result<bool> mayGo = m_guard.mayGo(path, [&goesOn](const QString &read) {
            return goesOn(QCoreApplication::translate("epr::Cleanup", "Comparing %1").arg(nativePath(read)));
        });
        if (mayGo && !*mayGo)
            return false;
        const qint64 size = info.isSymLink() ? 0 : info.size();
        const std::optional<QString> left = mayGo ? tryToRemove(index, size) : mayGo.error();
        if (left && m_patience.hasStopped())
            return false;
        if (left) {
            reportFailure(path, *left);
            return true;
        }
        ++m_result.succeeded;
        m_result.bytesFreed += size;
        return true;
    }

    [[nodiscard]] std::optional<QString> tryToRemove(qsizetype index, qint64 size)
    {
        if (m_mode == RemovalMode::Quarantine) {
            const auto mayGo = [this](const QString &path) { return m_guard.copyStays(path); };
            return m_quarantine.move(index, size, mayGo, m_patience);
        }
        const QString path = QFileInfo(m_paths.at(index)).absoluteFilePath();
        Result<> removed = m_patience.awaitFree(path);
        if (removed)
            removed = removeWithoutUndo(m_mode, path);
        if (removed)
            return std::nullopt;
        return withReason(failureMessage(m_mode, m_paths.at(index)), removed.error());
    }

    void reportFailure(const QString &path, const QString &message)
    {
        ++m_result.failed;
        m_result.problems.append({ path, Attempt::Remove, message });
        m_result.errors.append(message);
    }

    const QStringList m_paths;
    const RemovalMode m_mode;
    RemovalGuard m_guard;
    QuarantineRun &m_quarantine;
    Patience m_patience;
    RemovalResult m_result;
};

} // namespace

QString removalModeLabel(RemovalMode mode)
{
    switch (mode) {
    case RemovalMode::Quarantine:
        return QCoreApplication::translate("epr::Cleanup", "Move to quarantine");
    case RemovalMode::RecycleBin:
        return QCoreApplication::translate("epr::Cleanup", "Move to recycle bin");
    case RemovalMode::Delete:
        return QCoreApplication::translate("epr::Cleanup", "Delete permanently");
    }
    return {};
}

RemovalResult removeFiles(const QStringList &paths, RemovalMode mode, const QString &quarantineRoot,
                          const QStringList &scanRoots, const CleanupProgressFn &progress, const RemovalChecks &checks)
{
    const QString root = asSystemReads(quarantineRoot);
    CleanupLock lock;
    if (const Result<> locked = lock.take(root); !locked) {
        RemovalResult refused;
        refused.refusal = locked.error();
        return refused;
    }
    QuarantineRun quarantine(paths, root, scanRoots, lock);
    return Removal(paths, mode, checks, quarantine).run(progress);
}

} // namespace epr
