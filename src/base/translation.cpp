// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "translation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <memory>

// Outside of any namespace, as the macro demands; without it the linker leaves out the resource of a static library.
static void initialiseResources()
{
    Q_INIT_RESOURCE(translations);
}

namespace epr::translation {

using namespace Qt::StringLiterals;

namespace {

bool installIf(bool loaded, std::unique_ptr<QTranslator> translator)
{
    if (!loaded)
        return false;
    translator->setParent(qApp);
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
