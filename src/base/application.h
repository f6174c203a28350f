// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What the program calls itself, in one place, so that the window, the reports and the network requests agree.
namespace epr::metadata {

QString applicationName();
QString productIdentifier(); ///< the name in lower case
QString desktopId(); ///< the name of the desktop entry on Linux
QString version();
QString buildDate(); ///< ISO 8601
QString organisationName();
QString organisationDomain();
QString rightsNotice();
QString description(); ///< translated
QString makerUrl();
QString authorUrl();
QString defaultUpdateUrl();
QString platform(); ///< the "platform" item of update requests
QString architecture(); ///< the running system's processor architecture
QString userAgent(); ///< "name/version"

/// Gives the application object its name, version, organisation and domain; they decide where settings and data live.
void applyToApplication();

} // namespace epr::metadata

namespace epr {

/// Keeps regular expressions from being compiled where that ends in a crash; elsewhere it does nothing. Call it first
/// in main(), before there are threads.
void avoidCompiledExpressions();

} // namespace epr

/// The language of the program's texts.
namespace epr::translation {

/// Installs the catalogues of the operator's language that are compiled in, else the English plurals. The environment
/// variable ECHOPRUNE_TRANSLATION names a catalogue file that goes before them, for translators to try their work.
/// Needs the application object; call it before any text is asked for.
void install();

} // namespace epr::translation
