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
class ScrollablePage final : public QScrollArea {
public:
    explicit ScrollablePage(QWidget *page)
    {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setFocusPolicy(Qt::NoFocus); // or Tab would stop at something that nobody sees
        setWidget(page);
        // The tab widget paints the background; styles give it another colour than a window's.
        viewport()->setAutoFillBackground(false);
        page->setAutoFillBackground(false);
    }

    // By itself the area asks for 24 lines at most, which is less than a page may have and a screen has.
    QSize sizeHint() const override { return widget()->sizeHint(); }
};

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
    tabs->addTab(new ScrollablePage(detection), tr("Detection"));
    tabs->addTab(new ScrollablePage(files), tr("Files"));
    tabs->addTab(new ScrollablePage(m_performance), tr("Performance"));
    tabs->addTab(new ScrollablePage(m_updates), tr("Updates"));

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
