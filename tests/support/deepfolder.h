// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace epr::test {

/// A folder with folders in it so deep down that the path of the last is longer than the system takes.
struct DeepFolder final {
    explicit DeepFolder(const QString &path)
        : m_path(QFile::encodeName(path).toStdString())
    {
        const std::string name(200, 'd');
        std::filesystem::create_directories(m_path);
        int folder = ::open(m_path.c_str(), O_DIRECTORY);
        for (int depth = 0; depth < 21; ++depth) {
            const int inner =
                ::mkdirat(folder, name.c_str(), 0700) == 0 ? ::openat(folder, name.c_str(), O_DIRECTORY) : -1;
            if (inner < 0)
                qFatal("Cannot make a deep folder");
            ::close(std::exchange(folder, inner));
        }
        ::close(folder);
    }
    Q_DISABLE_COPY_MOVE(DeepFolder)
    ~DeepFolder() { std::filesystem::remove_all(m_path); } // which QTemporaryDir cannot

    std::string m_path;
};

} // namespace epr::test
