// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "progress.h"

#include <QElapsedTimer>
#include <QWidget>

class QLabel;
class QProgressBar;

namespace epr {

/// How long a scan took: "4.2 s", from one minute "3:07", from one hour "1:02:09".
QString elapsedText(qint64 elapsedMs);

/// The lower edge of the window: a status text and, while a scan runs, how far it has come.
class ScanStrip final : public QWidget {
    Q_OBJECT

public:
    explicit ScanStrip(QWidget *parent = nullptr);

    QString status() const;
    QString brief() const; ///< "Fingerprinting audio 42 %"; empty unless busy

    void showStatus(const QString &text);
    void setBusy(bool busy);
    void setStep(const ScanStep &step);
    void setPaused(bool paused); ///< the time of a pause does not count when the rest is estimated
    void setPhase(const QString &phase);
    void setProgress(int done, int total, const QString &detail); ///< a total below 1 = unknown

Q_SIGNALS:
    void briefChanged();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QString phaseText() const;
    void fitStatus();
    void setRange(int done, int total);

    QString m_text; ///< the status, whether or not there is room for all of it
    QString m_phase;
    QString m_announced; ///< what it was when the signal was last sent
    ScanStep m_step;
    bool m_isBusy = false;
    bool m_isPaused = false;
    QElapsedTimer m_clock;
    ProgressEstimate m_estimate;
    QLabel *m_status;
    QProgressBar *m_bar;
};

} // namespace epr
