// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reviewrecord.h"

#include <QObject>

#include <atomic>
#include <memory>

class QThread;

namespace epr {

/// What a look at the files of a review found.
struct FileLookSummary {
    qint64 changed = 0;
    qint64 vanished = 0;
    QStringList outOfReach; ///< folders of the scan that are not there or empty; of their files nothing is known
};

/// Looks in the background whether the files of a stored review are what the scan saw: there, plain files, of the same
/// size and time. A drive that does not answer holds nobody up.
class FileLook final : public QObject {
    Q_OBJECT

public:
    explicit FileLook(QObject *parent = nullptr);
    ~FileLook() override;

    void look(const ReviewRecord &review); ///< and gives up what was begun before
    void stop();
    bool isLooking() const { return m_isLooking; }

Q_SIGNALS:
    void found(const QHash<qint32, epr::FileState> &states); ///< of files that are not as they were, some at a time
    void finished(const epr::FileLookSummary &summary);

    void lookWanted(const epr::ReviewRecord &review, int number); // to the thread

private:
    void take(const QHash<qint32, FileState> &states, int number);
    void finish(const FileLookSummary &summary, int number);

    std::shared_ptr<std::atomic<int>> m_number = std::make_shared<std::atomic<int>>(0); ///< of the look that counts
    QThread *m_thread = nullptr;
    bool m_isLooking = false;
};

/// Those that are not there or empty, as a drive that is not connected leaves them. That says nothing of its files, and
/// must not cost what was decided of them.
QStringList outOfReach(const QStringList &folders);
bool isBelow(const QString &path, const QStringList &folders);

/// One file, as it is now. A link counts as changed unless the scan followed links.
FileState stateOf(const TrackInfo &track, bool followLinks);

} // namespace epr
