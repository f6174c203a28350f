// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "timezone.h"

#include <QByteArray>

namespace epr {

void rememberTimeZone()
{
#ifdef Q_OS_LINUX
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime"); // the file that it looks at without TZ, by a name that it trusts to stay
#endif
}

} // namespace epr
