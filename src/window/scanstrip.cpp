// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanstrip.h"

#include "displaytext.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>

#include <algorithm>

namespace epr {

using namespace Qt::StringLiterals;

QString elapsedText(qint64 elapsedMs)
{
    constexpr qint64 minuteMs = 60000;
    if (elapsedMs >= minuteMs)
        return durationText(elapsedMs);
    return QCoreApplication::translate("epr::MainWindow", "%1 s")
        .arg(QLocale().toString(static_cast<double>(elapsedMs) / 1000.0, 'f', 1));
}

ScanStrip::ScanStrip(QWidget *parent)
    : QWidget(parent)
    , m_text(tr("Ready"))
    , m_status(new QLabel(m_text, this))
    , m_bar(new QProgressBar(this))
{
    m_status->setObjectName(u"statusLabel"_s);
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long text must not widen the window
    m_status->setTextFormat(Qt::PlainText); // it names files
    m_bar->setObjectName(u"progressBar"_s);
    m_bar->setAccessibleName(tr("Progress of the scan"));
    m_bar->setAlignment(Qt::AlignCenter);
    m_bar->setMinimumWidth(14 * fontMetrics().averageCharWidth());
    m_bar->setMaximumWidth(40 * fontMetrics().averageCharWidth());
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setRetainSizeWhenHidden(true); // the window must not jump when a scan starts
    m_bar->setSizePolicy(policy);
    m_bar->hide();

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 0, 6, 0);
    layout->addWidget(m_status, 3);
    layout->addWidget(m_bar, 1);
}

QString ScanStrip::status() const
{
    return m_text;
}

QString ScanStrip::brief() const
{
    if (!m_isBusy || m_bar->maximum() <= 0)
        return m_isBusy ? phaseText() : QString();
    const qint64 percent = qint64 { 100 } * m_bar->value() / m_bar->maximum();
    return tr("%1 %2 %").arg(phaseText()).arg(percent);
}

void ScanStrip::showStatus(const QString &text)
{
    m_text = text;
    fitStatus();
}

void ScanStrip::setBusy(bool busy)
{
    m_isBusy = busy;
    m_isPaused = false;
    m_step = {};
    m_phase.clear();
    m_clock.start();
    m_bar->setVisible(busy);
    setRange(0, 0);
}

void ScanStrip::setStep(const ScanStep &step)
{
    m_step = step;
}

void ScanStrip::setPaused(bool paused)
{
    m_isPaused = paused;
    m_estimate.restart();
    setProgress(m_bar->value(), m_bar->maximum(), {});
}

void ScanStrip::setPhase(const QString &phase)
{
    m_phase = phase;
    m_estimate.restart();
    setProgress(0, 0, {});
}

void ScanStrip::setProgress(int done, int total, const QString &detail)
{
    setRange(done, std::max(total, 0));
    QStringList parts { phaseText(), m_step.text() };
    if (detail != m_phase)
        parts << detail;
    if (!m_isPaused && m_step.number < m_step.count) { // the last step counts in parts of no certain length
        m_estimate.add(done, total, m_clock.elapsed());
        parts << m_estimate.text(m_step.timeLeftMs(m_estimate.remainingMs()));
    }
    parts.removeAll(QString());
    showStatus(parts.join(tr(" - ", "between the phase of a scan, its count and its speed")));
}

void ScanStrip::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fitStatus();
}

QString ScanStrip::phaseText() const
{
    return m_isPaused ? tr("Paused: %1").arg(m_phase) : m_phase;
}

void ScanStrip::fitStatus()
{
    layout()->activate(); // or the label would still have the width of before
    const QString shown = m_status->fontMetrics().elidedText(m_text, Qt::ElideRight, m_status->contentsRect().width());
    m_status->setText(shown);
    m_status->setToolTip(shown == m_text ? QString() : m_text.toHtmlEscaped());
}

void ScanStrip::setRange(int done, int total)
{
    m_bar->setRange(0, total);
    m_bar->setValue(done);
    m_bar->setFormat(tr("%1 of %2").arg(countText(done), countText(total)));
    if (const QString now = brief(); std::exchange(m_announced, now) != now)
        Q_EMIT briefChanged();
}

} // namespace epr
