// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "contentcheck.h"
#include "folderset.h"
#include "result.h"

#include <QFile>

namespace epr {

/// Looks at a file and its kept copies directly before the file goes.
class RemovalGuard final {
public:
    /// Has no objections if nothing is said of kept copies, but to what is taken from a protected folder.
    RemovalGuard(RemovalMode mode, const RemovalChecks &checks);

    /// True if the file may go, false if the reading was given up before that was known; else why it has to stay. The
    /// copy for which it may go is held until the next question.
    [[nodiscard]] Result<bool> mayGo(const QString &path, const ReadingFn &reading);

    /// Whether one of the kept copies is still there, also when the file itself is not any more.
    [[nodiscard]] bool copyStays(const QString &path) const;

private:
    [[nodiscard]] Result<bool> areAsRecorded(const RemovalCandidate &copy, const QString &path,
                                             const ReadingFn &reading);
    [[nodiscard]] Result<> isKeptBy(const RemovalCandidate &copy, const QString &path);
    [[nodiscard]] bool holds(const QString &copy, const QString &path);

    const RemovalMode m_mode;
    const RemovalChecks m_checks;
    FolderSet m_protected;
    ContentCheck m_content;
    QFile m_held; ///< the copy that stays
};

} // namespace epr
