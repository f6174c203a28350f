// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "groupchecker.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>

class QThread;

namespace epr {

struct CheckProgress {
    qint64 groupsDone = 0;
    qint64 groups = 0; ///< since the checker was last at rest
    qint64 filesDone = 0;
    qint64 files = 0;
    QString path; ///< that was begun last
};

/// What a checker and the thread that works for it both look at.
struct CheckSignals {
    std::atomic<bool> stop = false;
    std::atomic<bool> isBusy = false; ///< from when a group is handed over until all its files are closed
};

/// Checks one group after the other on its own thread.
class CheckWorker final : public QObject {
    Q_OBJECT

public:
    CheckWorker(int number, QString cachePath, std::shared_ptr<CheckSignals> state);

public Q_SLOTS:
    void check(const epr::CheckItem &item);

Q_SIGNALS:
    void fileBegun(int number, const QString &path);
    void done(int number, const epr::GroupCheck &check); ///< empty when stopped

private:
    int m_number;
    QString m_cachePath;
    std::shared_ptr<CheckSignals> m_state;
    bool m_isModest = false;
};

/// Checks groups over their whole length in the background: on threads of its own, at low priority, one group on each.
/// Lives on one thread, whose event loop must run. One group is reported once for each time that it was asked for; a
/// file that cannot be checked is told in its measures.
class WholeChecker final : public QObject {
    Q_OBJECT

public:
    explicit WholeChecker(QString cachePath, QObject *parent = nullptr); ///< an empty path = no cache
    ~WholeChecker() override; ///< stops, within a second
    Q_DISABLE_COPY_MOVE(WholeChecker)

    [[nodiscard]] bool isPaused() const { return m_isPaused; }
    [[nodiscard]] bool isRunning() const; ///< also when paused

    /// Behind what is waiting; an item of a group that waits replaces that one.
    void check(const QList<epr::CheckItem> &items);
    /// Paused, no group is begun; those that are begun are stopped, and done from their start later.
    void setPaused(bool isPaused);
    /// Forgets what waits; returns at once, and finished() follows when nothing was running any more.
    void stop();
    /// Lets go of these files: when it returns true, none is open. Groups that have them and were begun are done again
    /// later, not before ten seconds; whoever needs the files for longer pauses. False if that took over a second.
    [[nodiscard]] bool release(const QStringList &paths);

Q_SIGNALS:
    void checked(int group, const epr::GroupCheck &check);
    void progressChanged(const epr::CheckProgress &progress);
    void finished(bool stopped);
    void logMessage(const QString &message);

private:
    enum class IfStopped { DoNext, DoLater, Forget };
    struct Slot {
        QThread *thread = nullptr;
        CheckWorker *worker = nullptr;
        std::shared_ptr<CheckSignals> state;
        std::optional<CheckItem> item; ///< that it is at
        qint64 filesBegun = 0;
        IfStopped ifStopped = IfStopped::DoNext;
    };

    bool isIdle() const;
    void makeThreads();
    void dispatch();
    void noteFile(int number, const QString &path);
    void take(int number, const epr::GroupCheck &check);
    void report(const CheckItem &item, const GroupCheck &check);
    void putBack(const Slot &slot);
    void resume();
    void tellProgress();
    Q_INVOKABLE void endIfIdle();

    QString m_cachePath;
    std::vector<Slot> m_slots;
    QList<CheckItem> m_waiting;
    QList<CheckItem> m_released; ///< not to be begun for the moment
    QTimer m_sinceRelease;
    CheckProgress m_progress;
    bool m_isPaused = false;
    bool m_wasStopped = false;
};

} // namespace epr

Q_DECLARE_METATYPE(epr::CheckProgress)
