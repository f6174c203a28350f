// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "updatenotices.h"

#include "application.h"
#include "notices.h"
#include "releasetexts.h"
#include "settingsstore.h"
#include "updatedialog.h"

#include <QAction>
#include <QScopedValueRollback>
#include <QTimer>

#include <chrono>

namespace epr {

UpdateNotices::UpdateNotices(QAction *checkAction, QWidget *window)
    : Command(window)
    , m_checker(new UpdateChecker(this))
    , m_checkAction(checkAction)
{
    connect(m_checker, &UpdateChecker::updateAvailable, this, &UpdateNotices::announce);
    connect(m_checker, &UpdateChecker::upToDate, this, &UpdateNotices::reportUpToDate);
    connect(m_checker, &UpdateChecker::checkFailed, this, &UpdateNotices::reportFailure);
}

// Late enough not to compete with the window's first appearance.
void UpdateNotices::scheduleStartupCheck()
{
    if (!SettingsStore().value(settings::checkForUpdatesOnStartup))
        return;
    constexpr std::chrono::milliseconds delay { 2500 };
    QTimer::singleShot(delay, this, [this] {
        if (m_checker->isDue())
            m_checker->check(true);
    });
}

void UpdateNotices::reloadAddress()
{
    m_checker->setUrl(UpdateSettings().url());
}

void UpdateNotices::startExplicitCheck()
{
    m_checkAction->setEnabled(false);
    m_checker->check(false);
}

void UpdateNotices::announce(const UpdateChecker::Release &release, bool silent)
{
    finishCheck(silent);
    const QString text =
        release.critical ? tr("Important update available: version %1.") : tr("Update available: version %1.");
    Q_EMIT logMessage(text.arg(displayVersion(release.version)));
    if (m_isAnnouncing)
        return;
    const QScopedValueRollback announcing(m_isAnnouncing, true);
    UpdateDialog(release, window()).exec();
}

void UpdateNotices::reportUpToDate(bool silent)
{
    finishCheck(silent);
    Q_EMIT logMessage(tr("%1 %2 is up to date.").arg(metadata::applicationName(), metadata::version()));
    if (!silent) {
        showInformation(
            window(), tr("No update available"),
            tr("You are running the latest version of %1 (%2).").arg(metadata::applicationName(), metadata::version()));
    }
}

void UpdateNotices::reportFailure(const QString &error, bool silent)
{
    finishCheck(silent);
    Q_EMIT logMessage(tr("Update check failed: %1").arg(error));
    if (!silent) {
        showWarning(window(), tr("Update check failed"), tr("Could not reach the update service.\n\n%1").arg(error));
    }
}

void UpdateNotices::finishCheck(bool silent)
{
    if (!silent)
        m_checkAction->setEnabled(true);
}

} // namespace epr
