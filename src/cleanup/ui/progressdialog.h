// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

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

    void reject() override;

private:
    void layOutWidgets();
    void refresh();

    CleanupProgress *m_progress;
    QLabel *m_count;
    QLabel *m_file;
    QProgressBar *m_bar;
    QPushButton *m_stop = nullptr;
};

} // namespace epr
