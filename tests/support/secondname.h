// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFile>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#elif defined(Q_OS_LINUX)
#include <sched.h>
#include <sys/mount.h>
#endif

namespace epr::test {

/// Another path of a folder, which is no link: on Windows a drive letter or, under Wine, which opens nothing by that,
/// the path in capitals; elsewhere a mount that only this thread sees.
class SecondName final {
public:
    explicit SecondName(const QString &folder, [[maybe_unused]] const QString &emptyFolder)
    {
#ifdef Q_OS_WIN
        char free = 'Z';
        while (free > 'D' && (GetLogicalDrives() >> (free - 'A') & 1) != 0)
            --free;
        m_letter = QString(QLatin1Char(free)) + QLatin1Char(':');
        const std::wstring target = QDir::toNativeSeparators(folder).toStdWString();
        DefineDosDeviceW(0, m_letter.toStdWString().c_str(), target.c_str());
        const QString drive = m_letter + QLatin1Char('/');
        m_path = QDir(drive).isEmpty() ? folder.toUpper() : drive;
#elif defined(Q_OS_LINUX)
        if (unshare(CLONE_NEWNS) == 0 && mount("", "/", "", MS_PRIVATE | MS_REC, "") == 0
            && mount(QFile::encodeName(folder).constData(), QFile::encodeName(emptyFolder).constData(), "", MS_BIND, "")
                == 0) {
            m_path = emptyFolder;
        }
#endif
    }
    Q_DISABLE_COPY_MOVE(SecondName)
    ~SecondName()
    {
#ifdef Q_OS_WIN
        DefineDosDeviceW(DDD_REMOVE_DEFINITION, m_letter.toStdWString().c_str(), nullptr);
#elif defined(Q_OS_LINUX)
        umount(QFile::encodeName(m_path).constData());
#endif
    }

    /// Empty if this user or system gives none.
    QString path() const
    {
        return m_path;
    }

private:
    QString m_letter;
    QString m_path;
};

} // namespace epr::test
