// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "transportview.h"

#include "comparisontext.h"
#include "labels.h"
#include "lamp.h"

#include <QGridLayout>
#include <QHBoxLayout>

namespace epr {

using namespace Qt::StringLiterals;

TransportView::TransportView(QWidget *parent)
    : Panel(parent)
{
    createLamps();
    createDeltas();
    layOutWidgets();
    setPlaying(false);
    setMonitor(Deck::A);
}

void TransportView::setPlaying(bool playing)
{
    m_play->setCaption(playing ? tr("PAUSE") : tr("PLAY"));
    m_play->setLit(playing);
}

void TransportView::setLinked(bool linked)
{
    m_link->setLit(linked);
}

void TransportView::setMonitor(Deck deck)
{
    for (const Deck each : bothDecks)
        m_monitorLamps[each]->setLit(each == deck);
}

void TransportView::setDeltas(const QString &duration, const QString &bitrate, const QString &level)
{
    m_durationDelta->setText(duration);
    m_bitrateDelta->setText(bitrate);
    m_levelDelta->setText(level);
}

void TransportView::createLamps()
{
    m_play = new vfd::Lamp(tr("PAUSE"), this);
    m_play->setMinimumWidth(m_play->sizeHint().width()); // nothing moves aside when it plays
    m_play->setObjectName(u"playLamp"_s);
    m_play->setToolTip(tr("Play or pause both decks"));
    connect(m_play, &vfd::Lamp::clicked, this, &TransportView::playPauseRequested);
    m_stop = new vfd::Lamp(tr("STOP"), this);
    m_stop->setObjectName(u"stopLamp"_s);
    m_stop->setCheckable(false); // it is never lit, and would be read out as a check box
    m_stop->setToolTip(tr("Stop both decks"));
    connect(m_stop, &vfd::Lamp::clicked, this, &TransportView::stopRequested);
    m_link = new vfd::Lamp(tr("LINK"), this);
    m_link->setObjectName(u"linkLamp"_s);
    m_link->setToolTip(tr("Keep both decks at the same position so the A/B switch\ncompares the same moment of the "
                          "recording."));
    connect(m_link, &vfd::Lamp::clicked, this, [this] { Q_EMIT linkRequested(!m_link->isLit()); });
    for (const Deck deck : bothDecks) {
        const QString name = comparisontext::deckName(deck);
        auto *lamp = new vfd::Lamp(name, this);
        lamp->setObjectName(u"monitorLamp"_s + name);
        lamp->setToolTip(tr("Listen to deck %1 (shortcut: click, or press A / B)").arg(name));
        lamp->setAccessibleName(tr("Listen to deck %1").arg(name));
        lamp->setAutoExclusive(true); // one of two, as radio buttons are
        connect(lamp, &vfd::Lamp::clicked, this, [this, deck] { Q_EMIT monitorRequested(deck); });
        m_monitorLamps[deck] = lamp;
    }
}

void TransportView::createDeltas()
{
    const auto create = [this](const QString &name, const QString &toolTip) {
        auto *badge = new vfd::Badge(this);
        badge->setObjectName(name);
        badge->setToolTip(toolTip);
        return badge;
    };
    m_durationDelta = create(u"durationDelta"_s, tr("Duration of deck B relative to deck A."));
    m_bitrateDelta = create(u"bitrateDelta"_s, tr("Bit rate of deck B relative to deck A."));
    m_levelDelta = create(u"levelDelta"_s, tr("Peak level of deck B relative to deck A."));
}

void TransportView::layOutWidgets()
{
    auto *caption = new vfd::ElidingLabel(this);
    caption->setText(tr("MONITOR"));
    caption->setTone(vfd::ElidingLabel::Tone::Soft);
    caption->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    auto *deltas = new QHBoxLayout; // a row of their own: below a lamp they would seem to belong to its deck
    deltas->setSpacing(4);
    auto *deltaCaption = new vfd::ElidingLabel(this);
    deltaCaption->setFont(vfd::letteringFont(8));
    deltaCaption->setText(tr("B \u2212 A"));
    deltaCaption->setTone(vfd::ElidingLabel::Tone::Soft);
    deltaCaption->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    deltas->addWidget(deltaCaption);
    for (vfd::Badge *badge : { m_durationDelta, m_bitrateDelta, m_levelDelta })
        deltas->addWidget(badge, 1);
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(8, 6, 8, 6);
    layout->setHorizontalSpacing(6);
    layout->setVerticalSpacing(4);
    constexpr int columns = 6; // three buttons in the first row, pairs below
    layout->addWidget(m_play, 0, 0, 1, 2);
    layout->addWidget(m_stop, 0, 2, 1, 2);
    layout->addWidget(m_link, 0, 4, 1, 2);
    layout->addWidget(caption, 1, 0, 1, columns);
    layout->addWidget(m_monitorLamps.a, 2, 0, 1, 3);
    layout->addWidget(m_monitorLamps.b, 2, 3, 1, 3);
    layout->addLayout(deltas, 3, 0, 1, columns);
    for (int column = 0; column < columns; ++column)
        layout->setColumnStretch(column, 1);
    layout->setRowStretch(1, 1);
}

} // namespace epr
