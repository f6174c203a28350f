// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace epr::test {

/// Replaces the file, and makes its folder.
inline void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %ls", qUtf16Printable(path));
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A list written as words.
inline QStringList words(const QByteArray &text)
{
    return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
}

/// A temporary folder that holds the application data of the test as long as it lives.
struct DataFolder : QTemporaryDir {
    DataFolder()
    {
#ifdef Q_OS_UNIX
        qputenv("XDG_DATA_HOME", QFile::encodeName(path()));
#else
        QStandardPaths::setTestModeEnabled(true);
        QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).removeRecursively();
#endif
    }
};

} // namespace epr::test
