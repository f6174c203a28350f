// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "emptyhint.h"

#include <QAbstractScrollArea>
#include <QEvent>

namespace epr {

EmptyHint::EmptyHint(QAbstractScrollArea *view)
    : QLabel(view->viewport())
{
    constexpr int sideMargin = 24;
    setAlignment(Qt::AlignCenter);
    setContentsMargins(sideMargin, 0, sideMargin, 0); // the list may be only a few lines high
    setWordWrap(true);
    setForegroundRole(QPalette::PlaceholderText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view->viewport()->installEventFilter(this);
}

bool EmptyHint::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QLabel::eventFilter(watched, event);
}

} // namespace epr
