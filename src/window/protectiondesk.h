// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>

class QThread;

namespace epr {

class FolderPanel;
class Review;

/// Tells the review which of its copies are in protected folders, by whatever path they are reached, just as a clean-up
/// will see it. It looks at each folder once, on a thread of its own: a share that does not answer must not hold the
/// window. The protected folders are those of the settings, and then of the panel, whose changes are stored.
class ProtectionDesk final : public QObject {
    Q_OBJECT

public:
    ProtectionDesk(Review &review, FolderPanel &panel, QObject *parent);
    ~ProtectionDesk() override;

Q_SIGNALS:
    void lookWanted(int number, const QStringList &protectedFolders, const QStringList &folders);

private:
    void store() const;
    void look();
    void take(int number, const QStringList &protectedFolders);

    Review &m_review;
    FolderPanel &m_panel;
    QThread *m_thread;
    int m_number = 0; ///< of the last look; what comes of an earlier one is out of date
};

/// Its part on the thread.
class ProtectionWorker final : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void look(int number, const QStringList &protectedFolders, const QStringList &folders);

Q_SIGNALS:
    void found(int number, const QStringList &protectedFolders); ///< those of the folders that are
};

} // namespace epr
