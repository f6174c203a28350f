// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "progressestimate.h"

#include <QDialog>
#include <QElapsedTimer>

class QLabel;
class QProgressBar;
class QPushButton;

namespace epr {

class CleanupProgress;

/// Shows the file that a clean-up is at and lets the operator stop before the next one. It cannot be closed before the
/// clean-up has ended: its button, Escape and the window's own cross all ask for the stop.
class ProgressDialog final : public QDialog {
    Q_OBJECT

public:
    /// The progress is not owned.
    ProgressDialog(const QString &title, CleanupProgress *progress, QWidget *parent = nullptr);
    ~ProgressDialog() override;

    void reject() override;

private:
    void layOutWidgets();
    void refresh();
    void showInTitles(int percent);

    const QString m_title;
    const QString m_windowTitle; ///< of the window behind, which has the progress in its title meanwhile
    CleanupProgress *m_progress;
    QElapsedTimer m_clock;
    ProgressEstimate m_estimate;
    QLabel *m_count;
    QLabel *m_file;
    QProgressBar *m_bar;
    QPushButton *m_stop = nullptr;
};

} // namespace epr
