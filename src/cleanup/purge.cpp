// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "purge.h"

#include "cleanuplock.h"
#include "displaytext.h"
#include "filemove.h"
#include "nativefile.h"
#include "patience.h"
#include "removalplan.h"
#include "systempaths.h"
#include "undomanifest.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

/// The folder of the run that wrote the manifest, empty unless all of its files are to be there. Whoever edits a
/// manifest may write anything into it.
QString runFolderOf(const QString &manifestPath, const UndoManifest &manifest)
{
    static const QRegularExpression runName(u"^undo-(\\d{8}-\\d{6})(_\\d{2})?$"_s);
    const QString time = runName.match(QFileInfo(manifestPath).completeBaseName()).captured(1);
    const QString inside = QDir::cleanPath(manifest.quarantineRoot) + u'/';
    if (time.isEmpty() || manifest.entries.isEmpty() || !QDir::isAbsolutePath(inside))
        return {};
    const QString name = manifest.entries.first().to.mid(inside.size()).section(u'/', 0, 0);
    const QString folder = inside + name + u'/';
    const bool areThere = std::ranges::all_of(manifest.entries, [&folder](const ManifestEntry &entry) {
        return entry.to.startsWith(folder) && QDir::cleanPath(entry.to) == entry.to;
    });
    const bool isOfRun = name == time || (name.startsWith(time + u'_') && name.size() == time.size() + 3);
    return areThere && isOfRun ? inside + name : QString();
}

class Purge final {
public:
    Purge(UndoManifest manifest, const QString &runFolder)
        : m_manifest(std::move(manifest))
        , m_runFolder(runFolder)
        , m_realFolder(QFileInfo(runFolder).canonicalFilePath())
    {
    }

    [[nodiscard]] RemovalResult run(const QString &manifestPath, const CleanupProgressFn &progress)
    {
        const QList<ManifestEntry> entries = std::exchange(m_manifest.entries, {});
        qsizetype done = 0;
        const auto goesOn = [&](const QString &text) { return !progress || progress(done, entries.size(), text); };
        m_patience = Patience(goesOn);
        while (done < entries.size() && goesOn(entries.at(done).to) && removeOne(entries.at(done)))
            ++done;
        m_manifest.entries += entries.sliced(done);
        keepRest(manifestPath);
        if (m_manifest.entries.isEmpty())
            clearFolder();
        return m_result;
    }

private:
    /// False if it was stopped while the file was in use.
    [[nodiscard]] bool removeOne(const ManifestEntry &entry)
    {
        m_folders.insert(QFileInfo(entry.to).path());
        if (!entryExists(entry.to))
            return true; // an earlier purge, which was killed, or somebody else
        if (!isOfRun(entry)) {
            keep(entry,
                 QCoreApplication::translate("epr::Cleanup",
                                             "%1 is not what the clean-up put there and was left in place")
                     .arg(nativePath(entry.to)));
            return true;
        }
        Result<> removed = m_patience.awaitFree(entry.to);
        if (m_patience.hasStopped())
            return false;
        if (removed)
            removed = nativefile::removeFile(entry.to);
        if (!removed) {
            keep(
                entry,
                withReason(QCoreApplication::translate("epr::Cleanup", "Could not delete %1").arg(nativePath(entry.to)),
                           removed.error()));
            return true;
        }
        ++m_result.succeeded;
        m_result.bytesFreed += entry.size;
        return true;
    }

    [[nodiscard]] bool isOfRun(const ManifestEntry &entry) const
    {
        const QFileInfo info(entry.to);
        const bool isFile = info.isSymLink() ? entry.size == 0 : info.isFile() && info.size() == entry.size;
        return isFile && isReallyInside(info.path());
    }

    /// Not behind a link that somebody made there.
    [[nodiscard]] bool isReallyInside(const QString &folder) const
    {
        const QString real = QFileInfo(folder).canonicalFilePath();
        return real == m_realFolder || real.startsWith(m_realFolder + u'/');
    }

    void keep(const ManifestEntry &entry, const QString &message)
    {
        ++m_result.failed;
        m_result.errors.append(message);
        m_manifest.entries.append(entry);
    }

    // The list that names too much does no harm: what is gone is passed over.
    void keepRest(const QString &manifestPath)
    {
        if (m_manifest.entries.isEmpty()) {
            removeManifest(manifestPath);
            return;
        }
        m_result.manifestPath = manifestPath;
        if (const Result<> written = writeManifest(manifestPath, m_manifest); written)
            removeJournal(manifestPath);
        else
            m_result.errors.append(
                QCoreApplication::translate("epr::Cleanup", "The undo manifest %1 cannot be written (%2)")
                    .arg(nativePath(manifestPath), written.error()));
    }

    void clearFolder()
    {
        for (QString folder : std::as_const(m_folders)) {
            while (folder.startsWith(m_runFolder) && !isFolderLink(QFileInfo(folder)) && isReallyInside(folder)
                   && QDir().rmdir(folder))
                folder = QFileInfo(folder).path();
        }
        if (QFileInfo::exists(m_runFolder))
            m_result.errors.append(
                QCoreApplication::translate(
                    "epr::Cleanup", "%1 was not removed: it has something in it that the clean-up did not put there")
                    .arg(nativePath(m_runFolder)));
    }

    UndoManifest m_manifest; ///< its entries are those that stay
    const QString m_runFolder;
    const QString m_realFolder;
    QSet<QString> m_folders; ///< of the files
    Patience m_patience;
    RemovalResult m_result;
};

RemovalResult refusedWith(const QString &reason)
{
    RemovalResult refused;
    refused.refusal = reason;
    return refused;
}

} // namespace

RemovalResult purgeQuarantine(const QString &manifestPath, const CleanupProgressFn &progress,
                              const QStringList &protectedFolders)
{
    CleanupLock lock;
    if (const Result<> locked = lock.take({}); !locked)
        return refusedWith(locked.error());
    const Result<UndoManifest> manifest = readManifest(manifestPath);
    if (!manifest)
        return refusedWith(
            QCoreApplication::translate("epr::Cleanup", "Cannot read manifest: %1").arg(manifest.error()));
    const QString folder = runFolderOf(manifestPath, *manifest);
    if (folder.isEmpty())
        return refusedWith(QCoreApplication::translate(
                               "epr::Cleanup", "The list %1 names files that are not in the folder of one clean-up.")
                               .arg(nativePath(manifestPath)));
    if (const QFileInfo info(folder); !info.isDir() || isFolderLink(info))
        return refusedWith(
            QCoreApplication::translate(
                "epr::Cleanup",
                "The folder %1 is not there. If it is on a drive that is not connected, connect it and try again.")
                .arg(nativePath(folder)));
    if (isInside(folder, protectedFolders))
        return refusedWith(protectedMessage(folder));
    if (const Result<> locked = lock.takeQuarantine(manifest->quarantineRoot); !locked)
        return refusedWith(locked.error());
    return Purge(*manifest, folder).run(manifestPath, progress);
}

} // namespace epr
