// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QSysInfo>
#include <QTranslator>

#include <memory>

// Outside of any namespace, as the macro demands; without it the linker leaves out the resource of a static library.
static void initialiseResources()
{
    Q_INIT_RESOURCE(translations);
}

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

namespace epr {

void avoidCompiledExpressions()
{
#if defined(Q_OS_WIN) && defined(Q_CC_GNU)
    // A compiled expression, and each filter of file names, gets a stack for each thread, which a Qt built with MinGW
    // frees when the thread ends, after the memory of the pointer to it. The thread dies of that.
    qputenv("QT_ENABLE_REGEXP_JIT", "0");
#endif
}

} // namespace epr

namespace epr::translation {

using namespace Qt::StringLiterals;

namespace {

bool installIf(bool loaded, std::unique_ptr<QTranslator> translator)
{
    if (!loaded)
        return false;
    translator->setParent(QCoreApplication::instance());
    return QCoreApplication::installTranslator(translator.release());
}

bool installFile(const QString &file)
{
    auto translator = std::make_unique<QTranslator>();
    const bool loaded = translator->load(file);
    return installIf(loaded, std::move(translator));
}

/// Qt's own texts, such as those of standard buttons, in the language of ours: never a third one between the two.
void installQtTexts(const QString &language)
{
    auto translator = std::make_unique<QTranslator>();
    const bool loaded =
        translator->load(QLocale(language), u"qtbase"_s, u"_"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    installIf(loaded, std::move(translator));
}

bool installLanguage(const QLocale &locale)
{
    auto translator = std::make_unique<QTranslator>();
    const bool loaded = translator->load(locale, u"echoprune"_s, u"_"_s, u":/translations"_s);
    if (loaded)
        installQtTexts(translator->language());
    return installIf(loaded, std::move(translator));
}

} // namespace

void install()
{
    initialiseResources();
    if (!installLanguage(QLocale()))
        installLanguage(QLocale::English);
    if (const QString file = qEnvironmentVariable("ECHOPRUNE_TRANSLATION"); !file.isEmpty() && !installFile(file))
        qWarning("%s is not a catalogue", qUtf8Printable(file));
}

} // namespace epr::translation
