// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filelook.h"

namespace epr {

/// A FileLook's part on the thread. A look goes on as long as its number is the wanted one.
class LookWorker final : public QObject {
    Q_OBJECT

public:
    explicit LookWorker(const std::shared_ptr<std::atomic<int>> &wanted)
        : m_wanted(wanted)
    {
    }

public Q_SLOTS:
    void look(const epr::ReviewRecord &review, int number);

Q_SIGNALS:
    void found(const QHash<qint32, epr::FileState> &states, int number);
    void finished(const epr::FileLookSummary &summary, int number);

private:
    void tell(const ReviewRecord &review, QHash<qint32, FileState> states, FileLookSummary &summary, int number);

    std::shared_ptr<std::atomic<int>> m_wanted; // its own: the thread may outlive whoever wanted it
};

} // namespace epr
