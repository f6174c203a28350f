// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "docks.h"

#include "compareplayer.h"
#include "records.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
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
    const int margins = 2 * (text->frameWidth() + static_cast<int>(text->document()->documentMargin()));
    text->setMinimumHeight(2 * text->fontMetrics().lineSpacing() + margins);
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
    connect(this, &QDockWidget::visibilityChanged, this, &ActivityLog::showEnd, Qt::QueuedConnection);
}

void ActivityLog::append(const QString &message)
{
    m_text->appendPlainText(tr("[%1] %2").arg(QTime::currentTime().toString(u"HH:mm:ss"_s), message));
}

// It shares the place with the player, and would take all of the height that this leaves.
void ActivityLog::leaveHeight()
{
    auto *window = qobject_cast<QMainWindow *>(parentWidget());
    if (window == nullptr || !window->isVisible() || isFloating())
        return;
    window->resizeDocks({ this }, { minimumSizeHint().height() }, Qt::Vertical);
    QMetaObject::invokeMethod(this, &ActivityLog::showEnd, Qt::QueuedConnection);
}

// Lines that come while the log is out of sight do not scroll it, and the newest are the ones that are looked for.
void ActivityLog::showEnd()
{
    m_text->verticalScrollBar()->setValue(m_text->verticalScrollBar()->maximum());
}

// Becoming visible scrolls the log to its end, so the lines are marked after that.
void ActivityLog::showFrom(const QString &message)
{
    show();
    raise();
    m_text->setFocus(Qt::OtherFocusReason);
    const auto mark = [this, message] {
        const QTextDocument *document = m_text->document();
        QTextCursor cursor(m_text->document());
        cursor.movePosition(QTextCursor::End);
        const QTextCursor found = document->find(message.section(u'\n', 0, 0), cursor,
                                                 QTextDocument::FindBackward | QTextDocument::FindCaseSensitively);
        cursor.setPosition(found.block().position(), QTextCursor::KeepAnchor); // the first line if it has been dropped
        m_text->setTextCursor(cursor);
    };
    QMetaObject::invokeMethod(this, mark, Qt::QueuedConnection);
}

// Player and log share one place on a small screen, where the results need the height, and stand side by side where
// there is the width for both. A screen too low for them, one of high magnification, begins without; the player then
// opens in a window of its own.
void placeForFirstStart(QMainWindow *window, QDockWidget *player, ActivityLog *log, QDockWidget *problems)
{
    const QSize screen = window->screen()->availableSize();
    window->addDockWidget(Qt::BottomDockWidgetArea, player);
    window->addDockWidget(Qt::BottomDockWidgetArea, log);
    constexpr int widthForBoth = 1600;
    if (screen.width() < widthForBoth)
        window->tabifyDockWidget(player, log);
    else
        window->resizeDocks({ player, log }, { 3, 1 }, Qt::Horizontal);
    window->tabifyDockWidget(log, problems);
    log->raise();
    player->raise();
    for (QDockWidget *dock : { player, static_cast<QDockWidget *>(log), problems })
        keepFocusOutWhileHidden(dock);
    constexpr int heightForAny = 540;
    if (screen.height() < heightForAny) {
        player->hide();
        player->setFloating(true);
        log->hide();
        problems->hide();
    }
    constexpr int visibleLines = 6;
    window->resizeDocks({ log }, { visibleLines * log->widget()->fontMetrics().lineSpacing() }, Qt::Vertical);
    QObject::connect(player, &QDockWidget::visibilityChanged, log, [player, log] {
        if (player->isHidden())
            log->leaveHeight();
    });
    constexpr QSize largest(1600, 1000); // beyond that lines only get too long to read
    window->resize((screen * 9 / 10).boundedTo(largest));
}

PlayerDock::PlayerDock(QWidget *parent)
    : QDockWidget(tr("Comparison Player"), parent)
    , m_player(new ComparePlayer(this))
    , m_playPause(make(tr("Play / Pause"), Qt::CTRL | Qt::Key_Space, tr("Play both decks, or pause them."),
                       &ComparePlayer::playPause))
    , m_listenToA(make(tr("Listen to Deck A"), Qt::Key_A, tr("Hear deck A. Deck B plays on without sound."),
                       &ComparePlayer::monitorDeckA))
    , m_listenToB(make(tr("Listen to Deck B"), Qt::Key_B, tr("Hear deck B. Deck A plays on without sound."),
                       &ComparePlayer::monitorDeckB))
    , m_listenToDifference(make(tr("Listen to the Difference"), Qt::Key_D,
                                tr("Hear what is left of deck A when deck B is taken away."),
                                &ComparePlayer::monitorDifference))
    , m_switch(make(tr("Switch A / B"), Qt::Key_X, tr("Cut between the two decks without losing your place."),
                    &ComparePlayer::swapMonitor))
    , m_link(new QAction(tr("Keep Decks in Sync"), this))
    , m_sameLoudness(new QAction(tr("Same Loudness"), this))
{
    setObjectName(u"playerDock"_s);
    setWidget(m_player);
    m_link->setStatusTip(tr("Start, stop and move both decks together."));
    m_link->setCheckable(true);
    m_link->setShortcut(Qt::CTRL | Qt::Key_L);
    connect(m_link, &QAction::toggled, m_player, &ComparePlayer::setLinked);
    connect(m_player, &ComparePlayer::linkedChanged, m_link, &QAction::setChecked);
    m_sameLoudness->setStatusTip(tr("Turn the louder of the two copies down."));
    m_sameLoudness->setCheckable(true);
    m_sameLoudness->setShortcut(Qt::Key_S);
    connect(m_sameLoudness, &QAction::toggled, m_player, &ComparePlayer::setSameLoudness);
    connect(m_player, &ComparePlayer::sameLoudnessChanged, m_sameLoudness, &QAction::setChecked);
    toggleViewAction()->setShortcut(Qt::Key_F8);
    connect(this, &QDockWidget::visibilityChanged, this, [this](bool isVisible) { m_isInSight = isVisible; });
    // Later, because a dock that becomes a window of its own is hidden for a moment.
    connect(this, &QDockWidget::visibilityChanged, this, &PlayerDock::pauseOutOfSight, Qt::QueuedConnection);
    connect(toggleViewAction(), &QAction::triggered, this, [this](bool shown) {
        if (shown)
            bringToFront();
    });
}

void PlayerDock::addCommandsTo(QMenu *menu) const
{
    menu->addAction(m_playPause);
    menu->addSeparator();
    menu->addActions({ m_listenToA, m_listenToB, m_listenToDifference, m_switch, m_link, m_sameLoudness });
}

void PlayerDock::load(Deck deck, const TrackInfo &track)
{
    bringToFront();
    m_player->load(deck, track);
}

void PlayerDock::loadIntoFreeDeck(const TrackInfo &track)
{
    bringToFront();
    m_player->loadIntoFreeDeck(track);
}

void PlayerDock::compare(const TrackInfo &a, const TrackInfo &b)
{
    load(Deck::A, a);
    load(Deck::B, b);
}

// What cannot be seen cannot be silenced: closed, or behind the log. With the window minimised it is heard on purpose.
void PlayerDock::pauseOutOfSight()
{
    if (!m_isInSight && !parentWidget()->isMinimized())
        m_player->pause();
}

QAction *PlayerDock::make(const QString &text, const QKeySequence &key, const QString &tip,
                          void (ComparePlayer::*command)())
{
    auto *action = new QAction(text, this);
    action->setShortcut(key);
    action->setToolTip(tip);
    action->setStatusTip(tip);
    connect(action, &QAction::triggered, m_player, command);
    return action;
}

void PlayerDock::bringToFront()
{
    show();
    raise();
}

} // namespace epr
