// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "metadata.h"

#include <QCoreApplication>
#include <QSysInfo>

namespace epr::metadata {

using namespace Qt::StringLiterals;

QString applicationName()
{
    return u"Echoprune"_s;
}

QString productIdentifier()
{
    return u"echoprune"_s;
}

QString desktopId()
{
    return u"example.quorvane.echoprune"_s;
}

QString version()
{
    return QStringLiteral(EPR_VERSION);
}

QString buildDate()
{
    return u"2026-09-26"_s;
}

QString organisationName()
{
    return u"Quorvane"_s;
}

// Domains under .example are reserved (RFC 2606): until there is a real site, nobody else's is contacted.
QString organisationDomain()
{
    return u"quorvane.example"_s;
}

QString rightsNotice()
{
    return u"Copyright \u00a9 2026 The Echoprune developers. Free software under the GNU GPL, version 3 or later."_s;
}

QString description()
{
    return QCoreApplication::translate("epr::metadata",
                                       "Duplicate music detection and library clean-up, part of the Quorvane suite.");
}

QString makerUrl()
{
    return u"https://www.quorvane.example/"_s;
}

QString authorUrl()
{
    return u"https://www.quorvane.example/echoprune"_s;
}

QString defaultUpdateUrl()
{
    return u"https://www.quorvane.example/api/latest.json"_s;
}

QString platform()
{
    return u"windows"_s;
}

QString architecture()
{
    return QSysInfo::currentCpuArchitecture();
}

QString userAgent()
{
    return u"%1/%2"_s.arg(applicationName(), version());
}

void applyToApplication()
{
    QCoreApplication::setApplicationName(applicationName());
    QCoreApplication::setApplicationVersion(version());
    QCoreApplication::setOrganizationName(organisationName());
    QCoreApplication::setOrganizationDomain(organisationDomain());
}

} // namespace epr::metadata
