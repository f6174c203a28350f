// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "updatestab.h"

#include "metadata.h"
#include "settingsstore.h"
#include "settingswidgets.h"
#include "versioncompare.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace epr {

using namespace Qt::StringLiterals;

UpdatesTab::UpdatesTab(QWidget *parent)
    : QWidget(parent)
    , m_checkOnStartup(createCheckBox(tr("Check for updates when %1 &starts").arg(metadata::applicationName()),
                                      SettingsStore().checkForUpdatesOnStartup()))
    , m_url(new QLineEdit(m_settings.url()))
    , m_stopSkipping(new QPushButton)
{
    m_url->setCursorPosition(0);
    m_url->setToolTip(tr("Shared Quorvane suite update service.\nAutomatic checks run at most once every 20 hours."));

    // A version is the service's text: an ampersand in it must not become a shortcut.
    const QString skipped = m_settings.skippedVersion();
    m_stopSkipping->setText(tr("Stop s&kipping version %1").arg(displayVersion(skipped).replace("&"_L1, "&&"_L1)));
    m_stopSkipping->setHidden(skipped.isEmpty());
    connect(m_stopSkipping, &QPushButton::clicked, this, &UpdatesTab::stopSkipping);

    QFormLayout *form = createForm(this);
    form->addRow(m_checkOnStartup);
    form->addRow(tr("&Update service:"), m_url);
    form->addRow(new QLabel(tr("Last checked: %1").arg(m_settings.lastCheckedText())));
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addWidget(m_stopSkipping);
    buttonRow->addStretch();
    form->addRow(buttonRow);
}

void UpdatesTab::save()
{
    SettingsStore().setCheckForUpdatesOnStartup(m_checkOnStartup->isChecked());
    m_settings.setUrl(m_url->text());
}

void UpdatesTab::stopSkipping()
{
    m_settings.clearSkippedVersion();
    m_stopSkipping->hide();
}

} // namespace epr
