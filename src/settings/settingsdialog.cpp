// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingsdialog.h"

#include "application.h"
#include "settingstabs.h"

#include <QDialogButtonBox>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

namespace epr {

namespace {

// With scroll bars when it does not fit: the dialog's buttons stay on a small or strongly scaled screen.
QScrollArea *createScrollablePage(QWidget *page)
{
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus); // or Tab would stop at something that nobody sees
    area->setWidget(page);
    // The tab widget paints the background; styles give it another colour than a window's.
    area->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    return area;
}

} // namespace

SettingsDialog::SettingsDialog(const ScanOptions &options, const SettingsStatus &status, QWidget *parent)
    : QDialog(parent)
    , m_options(options)
    , m_performance(new PerformanceTab(options, status))
    , m_updates(new UpdatesTab)
{
    auto *detection = new DetectionTab(options, status);
    auto *files = new FilesTab(options);
    m_optionsTabs = { detection, files, m_performance };
    setWindowTitle(tr("%1 Settings").arg(metadata::applicationName()));
    setMinimumWidth(560);

    auto *tabs = new QTabWidget;
    tabs->addTab(createScrollablePage(detection), tr("Detection"));
    tabs->addTab(createScrollablePage(files), tr("Files"));
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
    for (const OptionsTab *tab : m_optionsTabs)
        tab->applyTo(m_options);
    m_updates->save();
    QDialog::accept();
}

} // namespace epr
