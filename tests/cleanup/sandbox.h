// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <filesystem>
#include <memory>

#ifdef Q_OS_UNIX
#include <unistd.h>
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

/// A temporary place that holds the application's data, a library and a quarantine. Files get distinct content and old
/// modification times, so that a copy made anew or mixed up shows. Other accounts may enter.
class Sandbox final {
public:
    explicit Sandbox(bool otherFileSystem = false)
        : m_other(otherFileSystem ? u"/dev/shm/epr-test-XXXXXX"_s : m_dir.path() + u"/quarantine-XXXXXX"_s)
    {
        QDir().mkpath(library());
        for (const QString &folder : { m_dir.path(), m_other.path(), library() })
            QFile::setPermissions(folder, QFile::Permissions(0x7777));
#ifdef Q_OS_UNIX
        qputenv("HOME", QFile::encodeName(m_dir.path()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(path(u"data"_s)));
#else
        QStandardPaths::setTestModeEnabled(true);
        QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).removeRecursively();
#endif
    }

    [[nodiscard]] bool hasTwoFileSystems() const
    {
        return QStorageInfo(m_other.path()) != QStorageInfo(m_dir.path());
    }
    [[nodiscard]] QString path(const QString &name) const
    {
        return m_dir.filePath(name);
    }
    [[nodiscard]] QString library() const
    {
        return path(u"library"_s);
    }
    [[nodiscard]] QString inLibrary(const QString &name) const
    {
        return library() + u'/' + name;
    }
    [[nodiscard]] QString quarantine() const
    {
        return m_other.path();
    }
    [[nodiscard]] QStringList runs() const
    {
        return QDir(quarantine()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    }
    [[nodiscard]] QString inRun(const QString &name) const
    {
        return quarantine() + u'/' + runs().value(0) + u'/' + name;
    }

    QString add(const QString &name, qsizetype size = 100)
    {
        QDir().mkpath(QFileInfo(inLibrary(name)).path());
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
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(1000000000123 + m_files * 1001);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush()
            || !file.setFileTime(time, QFile::FileModificationTime)) {
            qFatal("Cannot write %ls", qUtf16Printable(path));
        }
    }

private:
    QTemporaryDir m_dir;
    QTemporaryDir m_other;
    int m_files = 0;
};

/// The administrator may do anything, so a test of what is forbidden takes another account while this lives.
struct Unprivileged {
    Unprivileged() { become(65534); }
    Q_DISABLE_COPY_MOVE(Unprivileged)
    ~Unprivileged() { become(0); }

    static void become([[maybe_unused]] unsigned account)
    {
#ifdef Q_OS_UNIX
        if (getuid() == 0 && seteuid(account) != 0)
            qFatal("Cannot change the account");
#endif
    }
};

} // namespace epr::test
