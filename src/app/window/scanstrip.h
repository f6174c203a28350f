// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

namespace epr {

/// The lower edge of the window: a status text and, while a scan runs, how far it has come.
class ScanStrip final : public QWidget {
    Q_OBJECT

public:
    explicit ScanStrip(QWidget *parent = nullptr);

    [[nodiscard]] QString status() const;

    void showStatus(const QString &text);
    void setBusy(bool busy);
    void setPhase(const QString &phase);
    void setProgress(int done, int total, const QString &detail); ///< a total below 1 = unknown

private:
    QString m_phase;
    QLabel *m_status;
    QProgressBar *m_bar;
};

} // namespace epr
