// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fileproblems.h"

#include <QFileDevice>
#include <QFileInfo>

namespace epr {

bool isSpecialFile(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile();
}

QString writeErrorOf(QFileDevice &file)
{
    if (file.isOpen()) {
        file.write("\n");
        file.flush();
    }
    return file.errorString();
}

} // namespace epr
