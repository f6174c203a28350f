// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "performancetab.h"

#include "displaytext.h"
#include "scanoptions.h"
#include "settingswidgets.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QSpinBox>
#include <QThread>

namespace epr {

using namespace Qt::StringLiterals;

PerformanceTab::PerformanceTab(const ScanOptions &options, const SettingsStatus &status, QWidget *parent)
    : QWidget(parent)
    , m_engine(createStatusLabel())
    , m_threads(createSpinBox({ 1, 16, {} }, options.decoderThreads))
    , m_seconds(createSpinBox({ 20, 600, tr(" s") }, options.fingerprintSeconds))
    , m_useCache(createCheckBox(tr("&Remember analysis results between scans"), options.useCache))
    , m_cacheStatus(createStatusLabel())
{
    m_engine->setText(
        status.fpcalcPath.isEmpty()
            ? tr("Built-in analysis (fallback). Install Chromaprint's fpcalc, or place it next to the application, for "
                 "several times faster and more accurate fingerprinting.")
            : tr("Chromaprint fpcalc — fast path active.\n%1").arg(status.fpcalcPath));
    m_threads->setToolTip(
        tr("Parallel fingerprinting workers. This machine reports %1 cores.").arg(QThread::idealThreadCount()));
    m_seconds->setToolTip(tr("How much of each file to analyse. Two minutes is ample for songs; raise it for long-form "
                             "programmes."));
    setCacheStatus(status.cache);
    auto *clear = new QPushButton(tr("C&lear cache"));
    connect(clear, &QPushButton::clicked, this, &PerformanceTab::clearCacheRequested);

    QFormLayout *form = createForm(this);
    form->addRow(tr("Fingerprint engine:"), m_engine);
    form->addRow(tr("Worker &threads:"), m_threads);
    form->addRow(tr("&Audio analysed per file:"), m_seconds);
    form->addRow(m_useCache);
    form->addRow(tr("Cache status:"), m_cacheStatus);
    form->addRow(QString(), clear);
}

void PerformanceTab::applyTo(ScanOptions &options) const
{
    options.decoderThreads = m_threads->value();
    options.fingerprintSeconds = m_seconds->value();
    options.useCache = m_useCache->isChecked();
}

void PerformanceTab::setCacheStatus(const CacheStatus &status)
{
    m_cacheStatus->setText(
        status.available
            ? tr("%1 files cached, using %2.").arg(QLocale().toString(status.entries), sizeText(status.bytes))
            : tr("Cache unavailable."));
}

void PerformanceTab::showCacheCleared()
{
    m_cacheStatus->setText(tr("Cache cleared. The next scan will re-analyse everything."));
}

} // namespace epr
