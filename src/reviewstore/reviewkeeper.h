// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reviewblobs.h"

#include <QObject>
#include <QSet>
#include <QTimer>

class QThread;

namespace epr {

class Review;

/// Where the results of a review come from.
struct ReviewOrigin {
    ScanOptions options;
    QDateTime scanned;
    int unreadableFolders = 0;
};

/// Has a review kept in its file while it is decided: it notes which groups changed and hands them to a thread of its
/// own at most half a second later. What cannot be written is tried again with the next change.
class ReviewKeeper final : public QObject {
    Q_OBJECT

public:
    ReviewKeeper(const Review &review, const QString &file, QObject *parent = nullptr);
    ~ReviewKeeper() override; ///< writes nothing any more: see close()

    bool isKeeping() const { return m_isUsable && !m_hasFailed; } ///< whether what is decided reaches the file

    /// The review as it stands. Its tracks have their fingerprints still.
    ReviewRecord record() const;

    void open(); ///< opened() follows
    void keep(const ReviewOrigin &origin); ///< stores the whole review, and from here on what changes of it
    void hold(); ///< what becomes of the review now is not for the file
    void setPlace(const ReviewPlaceRecord &place); ///< where the operator is

    void flush(); ///< at once
    void close(); ///< flushes, and waits for that some seconds at most

Q_SIGNALS:
    /// What the file has, without groups if that is nothing, and a message if it cannot be used.
    void opened(const epr::ReviewRecord &record, const QString &message);
    void failed(const QString &message); ///< of several failures in a row the first
    void changed(); ///< something was decided

    void openWanted(); // to the thread
    void saveWanted(const epr::ReviewRecord &record);
    void updateWanted(const QList<epr::StoredDecision> &decisions, const epr::ReviewPlaceRecord &place);
    void closeWanted();

private:
    void watch();
    void note(int group);
    void noteAll();
    void noteWhole();
    void schedule(std::chrono::milliseconds delay);
    StoredDecision decisionOf(int group) const;
    void takeOpened(const ReviewRecord &record, bool isUsable, const QString &message);
    void takeWritten(const QString &error);

    const Review &m_review;
    ReviewOrigin m_origin;
    ReviewPlaceRecord m_place;
    QThread *m_thread;
    QTimer m_timer;
    QSet<int> m_changed; ///< groups
    bool m_isAllChanged = false;
    bool m_isWholeChanged = false; ///< the groups are others
    bool m_isPlaceChanged = false;
    bool m_isWatching = false;
    bool m_isUsable = true; ///< until the file proves not to be
    bool m_hasFailed = false;
};

} // namespace epr
