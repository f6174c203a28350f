// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cleanup.h"
#include "commands.h"

#include <QTemporaryDir>

namespace epr {

class CleanupCommand;
class CleanupsDialog;
struct CleanupRun;

/// The history of clean-ups: brings back what they quarantined, or removes it for good, and the folders that they left
/// empty.
class CleanupsCommand final : public Command {
    Q_OBJECT

public:
    CleanupsCommand(CleanupCommand &cleanup, QWidget *window);

    void show();

private:
    void refresh(CleanupsDialog *dialog);
    void purge(const CleanupRun &run);
    bool confirmPurge(const CleanupRun &run, qint64 bytes);
    void removeEmptyFolders(const CleanupRun &run);
    void tellAll(const QStringList &messages);

    CleanupCommand &m_cleanup;
    QString m_recordFile;
    QTemporaryDir m_substitute; ///< holds what the lists say while the record cannot be used
};

} // namespace epr
