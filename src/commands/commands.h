// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "records.h"
#include "updatechecker.h"

#include <QWidget>

#include <optional>

class QAction;

namespace epr {

class Review;
struct FileProblem;

/// What the operator's commands have in common: the window that is the parent of their dialogs, and the ways in which
/// they say how they went.
class Command : public QObject {
    Q_OBJECT

public:
    explicit Command(QWidget *window)
        : QObject(window)
        , m_window(window)
    {
    }

Q_SIGNALS:
    void logMessage(const QString &message);
    void statusMessage(const QString &message);
    void logLineWanted(const QString &message); ///< the operator asks for this log line and those after it

protected:
    QWidget *window() const { return m_window; }

    /// As a log line and in the status label.
    void report(const QString &message)
    {
        Q_EMIT statusMessage(message);
        Q_EMIT logMessage(message);
    }

private:
    QWidget *m_window;
};

/// Lets the operator choose a file and a format, writes a report of the review as it stands, and offers to open it.
class ExportCommand final : public Command {
    Q_OBJECT

public:
    ExportCommand(const Review &review, QWidget *window);

    void exportProblems(const QList<FileProblem> &problems); ///< as a table
    void exportReport(const QStringList &roots); ///< those of the scan that the review is about

private:
    const Review &m_review;
};

/// The settings dialog, and the analysis cache that it looks after.
class SettingsCommand final : public Command {
    Q_OBJECT

public:
    using Command::Command;

    /// The edited options, or nothing when the dialog was cancelled; the update settings are then already stored.
    std::optional<ScanOptions> edit(const ScanOptions &options);

    bool clearAnalysisCache(); ///< true when it is empty
};

/// Runs update checks for the window and tells the operator how they ended: a silent check in a log line, one that was
/// asked for in a box as well.
class UpdateNotices final : public Command {
    Q_OBJECT

public:
    /// The action is disabled while the check that it started runs.
    UpdateNotices(QAction *checkAction, QWidget *window);

    void scheduleStartupCheck(); ///< silent, and only if checks at start-up are wanted and one is due
    void startExplicitCheck();
    void reloadAddress(); ///< after the settings were edited

private:
    void announce(const UpdateChecker::Release &release, bool silent);
    void reportUpToDate(bool silent);
    void reportFailure(const QString &error, bool silent);
    void finishCheck(bool silent);

    UpdateChecker *m_checker;
    QAction *m_checkAction;
    bool m_isAnnouncing = false; ///< one dialog at a time, however many checks overlap
};

} // namespace epr
