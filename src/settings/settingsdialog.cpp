// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingsdialog.h"

#include "detectiontab.h"
#include "filestab.h"
#include "metadata.h"
#include "performancetab.h"
#include "settingswidgets.h"
#include "updatestab.h"

#include <QDialogButtonBox>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

namespace epr {

SettingsDialog::SettingsDialog(const ScanOptions &options, const SettingsStatus &status, QWidget *parent)
    : QDialog(parent)
    , m_options(options)
    , m_detection(new DetectionTab(options))
    , m_files(new FilesTab(options))
    , m_performance(new PerformanceTab(options, status))
    , m_updates(new UpdatesTab)
{
    setWindowTitle(tr("%1 Settings").arg(metadata::applicationName()));
    setMinimumWidth(560);

    auto *tabs = new QTabWidget;
    tabs->addTab(createScrollablePage(m_detection), tr("Detection"));
    tabs->addTab(createScrollablePage(m_files), tr("Files"));
    tabs->addTab(createScrollablePage(m_performance), tr("Performance"));
    tabs->addTab(createScrollablePage(m_updates), tr("Updates"));

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SettingsDialog::reject);
    connect(m_performance, &PerformanceTab::clearCacheRequested, this, &SettingsDialog::clearCacheRequested);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(buttons);
}

void SettingsDialog::setCacheStatus(const CacheStatus &status)
{
    m_performance->setCacheStatus(status);
}

void SettingsDialog::showCacheCleared()
{
    m_performance->showCacheCleared();
}

void SettingsDialog::accept()
{
    m_detection->applyTo(m_options);
    m_files->applyTo(m_options);
    m_performance->applyTo(m_options);
    m_updates->save();
    QDialog::accept();
}

} // namespace epr
