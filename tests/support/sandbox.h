// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "temporarylibrary.h"

#include <QDateTime>
#include <QDirIterator>
#include <QMap>
#include <QStorageInfo>

#include <filesystem>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
constexpr bool isUnix = true;
#else
constexpr bool isUnix = false;
#endif

namespace epr::test {

using namespace Qt::StringLiterals;

/// Every entry below a folder by its relative path: its kind, modification time and content or link target.
using Tree = QMap<QString, QByteArray>;

inline Tree treeOf(const QString &folder)
{
    Tree tree;
    const QDir::Filters everything = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;
    QDirIterator entries(folder, everything, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo info = entries.nextFileInfo();
        QByteArray &entry = tree[QDir(folder).relativeFilePath(info.filePath())];
        QFile file(info.filePath());
        if (info.isSymbolicLink())
            entry = "link " + QByteArray::fromStdString(read_symlink(info.filesystemFilePath()).string());
        else if (info.isDir())
            entry = "folder";
        else if (file.open(QIODevice::ReadOnly))
            entry = QByteArray::number(info.lastModified().toMSecsSinceEpoch()) + ' ' + file.readAll();
    }
    return tree;
}

/// A temporary place that holds the application's settings and data, a library and a quarantine. Files get distinct
/// content and old modification times, so that a copy made anew or mixed up shows.
class Sandbox {
public:
    static QString otherPlace() { return qEnvironmentVariable("EPR_TEST_OTHER_FS", u"/dev/shm"_s); }
    /// Whether there is another file system, open to every user: some tests give up being root.
    static bool hasTwoFileSystems()
    {
        return QFileInfo(otherPlace()).permission(QFileDevice::WriteOther)
            && QStorageInfo(otherPlace()) != QStorageInfo(QDir::tempPath());
    }
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QString library() const { return path(u"library"_s); }
    QString inLibrary(const QString &name) const { return library() + u'/' + name; }
    QString quarantine() const { return m_other.path(); }
    QStringList runs() const { return QDir(quarantine()).entryList(QDir::Dirs | QDir::NoDotAndDotDot); }
    QString inRun(const QString &name) const { return quarantine() + u'/' + runs().value(0) + u'/' + name; }

    explicit Sandbox(bool otherFileSystem = false)
        : m_other((otherFileSystem ? otherPlace() : m_dir.path()) + u"/epr-test-XXXXXX"_s)
    {
        if (!m_dir.isValid() || !m_other.isValid())
            qFatal("No temporary folders"); // an empty path would lead to the top folder
        QDir().mkpath(library());
#ifdef Q_OS_UNIX
        qputenv("HOME", QFile::encodeName(m_dir.path())); // what is deleted there goes to the bin of the data
#endif
    }

    QString add(const QString &name, qsizetype size = 100)
    {
        write(inLibrary(name), QByteArray::number(++m_files).rightJustified(size, '.'));
        return inLibrary(name);
    }

    QStringList addMany(int count, const QString &pattern)
    {
        QStringList files;
        for (int i = 0; i < count; ++i)
            files.append(add(pattern.arg(i)));
        return files;
    }

    /// The target as it stands in the link.
    QString addLink(const QString &target, const QString &name) const
    {
        std::filesystem::create_symlink(target.toStdString(), inLibrary(name).toStdString());
        return inLibrary(name);
    }

    void write(const QString &path, const QByteArray &content) const
    {
        writeFile(path, content);
        QFile file(path);
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(1000000000123 + m_files * 1001);
        if (!file.open(QIODevice::ReadWrite) || !file.setFileTime(time, QFile::FileModificationTime))
            qFatal("Cannot date %ls", qUtf16Printable(path));
    }

private:
    TemporaryHome m_dir;
    QTemporaryDir m_other;
    int m_files = 0;
};

inline QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext())
        files.append(entries.next());
    files.removeIf([](const QString &file) { return file.endsWith(".echoprune.lock"_L1); });
    files.sort();
    return files;
}

/// Lets no file of this process grow beyond the size: what a full disk does to a writer. -1 lifts the limit.
inline void limitFileSize([[maybe_unused]] qint64 bytes)
{
#ifdef Q_OS_UNIX
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit { bytes < 0 ? RLIM_INFINITY : static_cast<rlim_t>(bytes), RLIM_INFINITY };
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        qFatal("Cannot limit the size of files");
#endif
}

} // namespace epr::test
