// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "activitylog.h"

#include <QScrollBar>
#include <QTime>

namespace epr {

using namespace Qt::StringLiterals;

ActivityLog::ActivityLog(QWidget *parent)
    : QPlainTextEdit(parent)
{
    constexpr int mostLines = 5000;
    setMaximumBlockCount(mostLines);
    setObjectName(u"activityLog"_s);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setAccessibleName(tr("Activity Log"));
    setMinimumHeight(2 * fontMetrics().lineSpacing() + 2 * frameWidth());
}

void ActivityLog::append(const QString &message)
{
    appendPlainText(tr("[%1] %2").arg(QTime::currentTime().toString(u"HH:mm:ss"_s), message));
}

void ActivityLog::showEnd()
{
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

} // namespace epr
