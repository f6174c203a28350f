// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "docks.h"

#include <QMainWindow>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTime>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QPlainTextEdit *createLogText()
{
    constexpr int mostLines = 5000;
    auto *text = new QPlainTextEdit;
    text->setMaximumBlockCount(mostLines);
    text->setObjectName(u"activityLog"_s);
    text->setReadOnly(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setUndoRedoEnabled(false);
    text->setTabChangesFocus(true);
    text->setMinimumHeight(2 * text->fontMetrics().lineSpacing() + 2 * text->frameWidth());
    return text;
}

// What lies behind another tab counts as visible, and would take the focus to where nobody sees it.
void keepFocusOutWhileHidden(QDockWidget *dock)
{
    QObject::connect(dock, &QDockWidget::visibilityChanged, dock->widget(), &QWidget::setEnabled);
}

} // namespace

ActivityLog::ActivityLog(QWidget *parent)
    : QDockWidget(tr("Activity Log"), parent)
    , m_text(createLogText())
{
    setObjectName(u"logDock"_s);
    setWidget(m_text);
    m_text->setAccessibleName(windowTitle());
    // Lines that come while the log is out of sight do not scroll it, and the newest are the ones that are looked for.
    const auto showEnd = [this] { m_text->verticalScrollBar()->setValue(m_text->verticalScrollBar()->maximum()); };
    connect(this, &QDockWidget::visibilityChanged, m_text, showEnd, Qt::QueuedConnection);
}

void ActivityLog::append(const QString &message)
{
    m_text->appendPlainText(tr("[%1] %2").arg(QTime::currentTime().toString(u"HH:mm:ss"_s), message));
}

// Player and log share one place on a small screen, where the results need the height, and stand side by side where
// there is the width for both. A screen too low for them, one of high magnification, begins without; the player then
// opens in a window of its own.
void placeDocks(QMainWindow *window, QDockWidget *player, ActivityLog *log)
{
    const QSize screen = window->screen()->availableSize();
    window->addDockWidget(Qt::BottomDockWidgetArea, player);
    window->addDockWidget(Qt::BottomDockWidgetArea, log);
    constexpr int widthForBoth = 1600;
    if (screen.width() < widthForBoth)
        window->tabifyDockWidget(player, log);
    else
        window->resizeDocks({ player, log }, { 2, 1 }, Qt::Horizontal);
    player->raise();
    keepFocusOutWhileHidden(player);
    keepFocusOutWhileHidden(log);
    constexpr int heightForAny = 540;
    if (screen.height() < heightForAny) {
        player->hide();
        player->setFloating(true);
        log->hide();
    }
    constexpr int visibleLines = 6;
    window->resizeDocks({ log }, { visibleLines * log->widget()->fontMetrics().lineSpacing() }, Qt::Vertical);
}

} // namespace epr
