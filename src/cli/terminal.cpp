// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "terminal.h"

#ifdef Q_OS_WIN
#include <io.h>
#include <qt_windows.h>
#else
#include <unistd.h>
#endif

namespace epr::terminal {

using namespace Qt::StringLiterals;

bool errorIsTerminal()
{
#ifdef Q_OS_WIN
    return _isatty(2) != 0;
#else
    return isatty(STDERR_FILENO) == 1;
#endif
}

void useUtf8()
{
#ifdef Q_OS_WIN
    SetConsoleOutputCP(CP_UTF8);
#endif
}

QString printable(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c.category() == QChar::Other_Control)
            result += u"\\x%1"_s.arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return result;
}

} // namespace epr::terminal
