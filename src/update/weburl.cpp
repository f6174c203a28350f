// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "weburl.h"

namespace epr {

using namespace Qt::StringLiterals;

QUrl webUrl(const QString &text)
{
    const QUrl url(text.trimmed());
    const bool onTheWeb = url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
    return onTheWeb && url.isValid() && !url.host().isEmpty() ? url : QUrl();
}

} // namespace epr
