// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "updatesettings.h"

#include <QCoreApplication>
#include <QLocale>

namespace epr {

QString UpdateSettings::url() const
{
    return m_store.value(settings::updateUrl).trimmed();
}

QDateTime UpdateSettings::lastChecked() const
{
    return m_store.value(settings::lastUpdateCheck).toUTC();
}

QString UpdateSettings::lastCheckedText() const
{
    const QDateTime time = lastChecked();
    if (!time.isValid())
        return QCoreApplication::translate("epr::UpdateChecker", "never");
    return QLocale().toString(time.toLocalTime(),
                              QCoreApplication::translate("epr::UpdateChecker", "d MMM yyyy, h:mm ap"));
}

QString UpdateSettings::skippedVersion() const
{
    return m_store.value(settings::skippedVersion);
}

void UpdateSettings::setUrl(const QString &url)
{
    m_store.set(settings::updateUrl, url.trimmed());
}

void UpdateSettings::setLastChecked(const QDateTime &time)
{
    m_store.set(settings::lastUpdateCheck, time.toUTC());
}

void UpdateSettings::setSkippedVersion(const QString &version)
{
    m_store.set(settings::skippedVersion, version);
}

void UpdateSettings::clearSkippedVersion()
{
    m_store.remove(settings::skippedVersion);
}

} // namespace epr
