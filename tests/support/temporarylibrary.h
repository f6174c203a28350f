// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>

namespace epr::test {

/// A temporary folder that holds the settings and the data of this process, and of those it starts, as long as it
/// lives. Only the settings follow it on Windows, where the data goes to a place that is emptied instead.
struct TemporaryHome : QTemporaryDir {
    TemporaryHome()
    {
        QSettings::setDefaultFormat(QSettings::IniFormat); // the registry is left alone
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, filePath(QStringLiteral("config")));
#ifdef Q_OS_UNIX
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(filePath(QStringLiteral("config"))));
        qputenv("XDG_DATA_HOME", QFile::encodeName(filePath(QStringLiteral("data"))));
#else
        QStandardPaths::setTestModeEnabled(true);
        if (QCoreApplication::instance()) // whose name is in the path
            QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).removeRecursively();
#endif
    }
};

/// The path as it is shown.
inline QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

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

/// Whether this process has the file open. Where the system does not say so, whether it lets the file be moved.
inline bool isOpen(const QString &path)
{
#ifdef Q_OS_LINUX
    const QFileInfoList open = QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files);
    return std::any_of(open.begin(), open.end(), [&](const QFileInfo &file) { return file.symLinkTarget() == path; });
#else
    const QString elsewhere = path + QLatin1Char('~');
    return !QFile::rename(path, elsewhere) || !QFile::rename(elsewhere, path);
#endif
}

template <typename T> QByteArray little(T value)
{
    const T stored = qToLittleEndian(value);
    return QByteArray(reinterpret_cast<const char *>(&stored), sizeof stored);
}

/// A chunk of a WAVE file, or the file, with its pad byte.
inline QByteArray riffChunk(const QByteArray &id, const QByteArray &body)
{
    return id + little(static_cast<quint32>(body.size())) + body + QByteArray(body.size() % 2, '\0');
}

/// Mono, 8-bit samples at 8000 Hz that are all the same; the tail follows the sample data.
inline QByteArray waveOf(char sample, int seconds = 6, const QByteArray &tail = {})
{
    const QByteArray format = QByteArray("\1\0\1\0", 4) + little(8000) + little(8000) + QByteArray("\1\0\x08\0", 4);
    const QByteArray samples(qsizetype { 8000 } * seconds, sample);
    return riffChunk("RIFF", "WAVE" + riffChunk("fmt ", format) + riffChunk("data", samples) + tail);
}

/// A list written as words.
inline QStringList words(const QByteArray &text)
{
    return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
}

} // namespace epr::test
