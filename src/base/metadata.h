// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What the program calls itself, in one place, so that the window, the reports and the network requests agree.
namespace epr::metadata {

[[nodiscard]] QString applicationName();
[[nodiscard]] QString productIdentifier(); ///< the name in lower case
[[nodiscard]] QString desktopId(); ///< the name of the desktop entry on Linux
[[nodiscard]] QString version();
[[nodiscard]] QString buildDate(); ///< ISO 8601
[[nodiscard]] QString organisationName();
[[nodiscard]] QString organisationDomain();
[[nodiscard]] QString rightsNotice();
[[nodiscard]] QString description(); ///< translated
[[nodiscard]] QString makerUrl();
[[nodiscard]] QString authorUrl();
[[nodiscard]] QString defaultUpdateUrl();
[[nodiscard]] QString platform(); ///< the "platform" item of update requests
[[nodiscard]] QString architecture(); ///< the running system's processor architecture
[[nodiscard]] QString userAgent(); ///< "name/version"

/// Gives the application object its name, version, organisation and domain; they decide where settings and data live.
void applyToApplication();

} // namespace epr::metadata
