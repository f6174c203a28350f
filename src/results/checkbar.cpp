// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkbar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace epr {

using namespace Qt::StringLiterals;

CheckBar::CheckBar(QWidget *parent)
    : QWidget(parent)
    , m_text(new QLabel(this))
    , m_bar(new QProgressBar(this))
    , m_check(new QPushButton(tr("Check the Whole Length"), this))
    , m_pause(new QPushButton(this))
    , m_stop(new QPushButton(tr("Stop"), this))
{
    m_text->setObjectName(u"checkText"_s);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_bar->setAccessibleName(tr("Progress of the check"));
    m_bar->setTextVisible(false);
    m_bar->setMaximumWidth(16 * fontMetrics().averageCharWidth());
    m_check->setObjectName(u"checkWholeButton"_s);
    m_check->setToolTip(tr("Decode the copies to their ends and compare them. This runs behind the review."));
    m_stop->setToolTip(tr("Stop the check. What is checked stays so."));
    connect(m_check, &QPushButton::clicked, this, &CheckBar::checkRequested);
    connect(m_pause, &QPushButton::clicked, this, &CheckBar::pauseRequested);
    connect(m_stop, &QPushButton::clicked, this, &CheckBar::stopRequested);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_bar);
    for (QPushButton *button : { m_check, m_pause, m_stop })
        layout->addWidget(button);
    offer({});
}

void CheckBar::offer(const QString &text)
{
    const bool losesFocus = text.isEmpty() && isAncestorOf(window()->focusWidget());
    m_text->setText(text);
    setRunning(false);
    setHidden(text.isEmpty());
    if (losesFocus)
        Q_EMIT focusGivenUp();
}

void CheckBar::showProgress(const QString &text, int done, int total, bool isPaused)
{
    m_text->setText(text);
    m_bar->setRange(0, total);
    m_bar->setValue(done);
    m_pause->setText(isPaused ? tr("Resume") : tr("Pause"));
    setRunning(true);
    show();
}

// The button that goes hands the focus to one that comes.
void CheckBar::setRunning(bool running)
{
    const QWidget *focus = window()->focusWidget();
    const bool passesFocus = focus && (running ? focus == m_check : isAncestorOf(focus));
    QPushButton *heir = running ? m_pause : m_check;
    heir->show();
    if (passesFocus)
        heir->setFocus(Qt::OtherFocusReason);
    m_check->setVisible(!running);
    m_bar->setVisible(running);
    m_pause->setVisible(running);
    m_stop->setVisible(running);
}

} // namespace epr
