// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanstrip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

namespace epr {

using namespace Qt::StringLiterals;

ScanStrip::ScanStrip(QWidget *parent)
    : QWidget(parent)
    , m_status(new QLabel(tr("Ready"), this))
    , m_bar(new QProgressBar(this))
{
    m_status->setObjectName(u"statusLabel"_s);
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long text must not widen the window
    m_bar->setObjectName(u"progressBar"_s);
    m_bar->setAccessibleName(tr("Progress of the scan"));
    m_bar->setFormat(tr("%v of %m"));
    m_bar->setAlignment(Qt::AlignCenter);
    m_bar->setFixedWidth(40 * fontMetrics().averageCharWidth());
    QSizePolicy policy = m_bar->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // the window must not jump when a scan starts
    m_bar->setSizePolicy(policy);
    m_bar->hide();

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->addWidget(m_status, 1);
    layout->addWidget(m_bar);
}

QString ScanStrip::status() const
{
    return m_status->text();
}

void ScanStrip::showStatus(const QString &text)
{
    m_status->setText(text);
}

void ScanStrip::setBusy(bool busy)
{
    m_phase.clear();
    m_bar->setRange(0, 0);
    m_bar->setVisible(busy);
}

void ScanStrip::setPhase(const QString &phase)
{
    m_phase = phase;
    m_bar->setRange(0, 0);
    showStatus(phase);
}

void ScanStrip::setProgress(int done, int total, const QString &detail)
{
    m_bar->setRange(0, qMax(total, 0));
    m_bar->setValue(done);
    showStatus(m_phase.isEmpty() || detail.isEmpty() ? m_phase + detail : tr("%1 - %2").arg(m_phase, detail));
}

} // namespace epr
