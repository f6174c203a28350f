// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "transportview.h"

#include "comparisontext.h"
#include "labels.h"
#include "lamp.h"

#include <QGridLayout>
#include <QHBoxLayout>

#include <utility>

namespace epr {

using namespace Qt::StringLiterals;

TransportView::TransportView(QWidget *parent)
    : Panel(parent)
{
    createLamps();
    createDeltas();
    layOutWidgets();
    setDeltas({});
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

void TransportView::setSameLoudness(bool same)
{
    m_loudness->setLit(same);
}

void TransportView::setMonitor(std::optional<Deck> deck)
{
    for (const Deck each : bothDecks)
        m_monitorLamps[each]->setLit(each == deck);
    m_difference->setLit(!deck);
}

void TransportView::setDifference(bool isPreparing, std::optional<double> remainderDb)
{
    m_caption->setText(isPreparing       ? tr("PREPARING\u2026")
                           : remainderDb ? tr("LEFT OF A: %1").arg(comparisontext::decibelDelta(0, *remainderDb))
                                         : tr("MONITOR"));
}

void TransportView::setDeltas(const Deltas &deltas)
{
    m_durationDelta->setText(deltas.duration);
    m_bitrateDelta->setText(deltas.bitrate);
    m_levelDelta->setText(deltas.level);
    // A second row finds its place between the others, so that the player needs no more height.
    const bool hasMore = !(deltas.start + deltas.loudness + deltas.bandwidth).isEmpty();
    m_rows->setContentsMargins(8, hasMore ? 3 : 6, 8, hasMore ? 3 : 6);
    m_rows->setVerticalSpacing(hasMore ? 2 : 4);
    for (const auto &[badge, text] : { std::pair(m_startDelta, deltas.start),
                                       { m_loudnessDelta, deltas.loudness },
                                       { m_bandwidthDelta, deltas.bandwidth } }) {
        badge->setText(text);
        badge->setVisible(!text.isEmpty());
    }
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
    m_loudness = new vfd::Lamp(tr("LEVEL"), this);
    m_loudness->setObjectName(u"loudnessLamp"_s);
    m_loudness->setAccessibleName(tr("Same loudness"));
    m_loudness->setToolTip(
        tr("Same loudness: turn the louder copy down, so that the louder one does not\nseem the better "
           "one (shortcut: S)."));
    connect(m_loudness, &vfd::Lamp::clicked, this, [this] { Q_EMIT sameLoudnessRequested(!m_loudness->isLit()); });
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
    m_difference = new vfd::Lamp(tr("A \u2212 B"), this);
    m_difference->setObjectName(u"differenceLamp"_s);
    m_difference->setToolTip(
        tr("Listen to what is left of deck A when deck B is taken away,\naligned and matched in level "
           "(shortcut: D)."));
    m_difference->setAccessibleName(tr("Listen to the difference"));
    m_difference->setAutoExclusive(true);
    connect(m_difference, &vfd::Lamp::clicked, this, &TransportView::differenceRequested);
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
    m_startDelta = create(u"startDelta"_s, tr("How much later in its file deck B has the same moment as deck A."));
    m_loudnessDelta = create(u"loudnessDelta"_s, tr("Loudness of deck B relative to deck A (EBU R 128)."));
    m_bandwidthDelta = create(u"bandwidthDelta"_s, tr("Where the spectrum of deck B ends, relative to deck A."));
}

void TransportView::layOutWidgets()
{
    m_caption = new vfd::ElidingLabel(this);
    m_caption->setText(tr("MONITOR"));
    m_caption->setTone(vfd::ElidingLabel::Tone::Soft);
    m_caption->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
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
    auto *moreDeltas = new QHBoxLayout;
    moreDeltas->setSpacing(4);
    for (vfd::Badge *badge : { m_startDelta, m_loudnessDelta, m_bandwidthDelta })
        moreDeltas->addWidget(badge, 1);
    m_rows = new QGridLayout(this);
    m_rows->setHorizontalSpacing(6);
    constexpr int columns = 12; // four buttons in the first row, the monitor's below
    constexpr int quarter = columns / 4;
    int column = 0;
    for (vfd::Lamp *lamp : { m_play, m_stop, m_link, m_loudness })
        m_rows->addWidget(lamp, 0, quarter * column++, 1, quarter);
    m_rows->addWidget(m_caption, 1, 0, 1, columns);
    constexpr int third = columns / 3;
    column = 0;
    for (vfd::Lamp *lamp : { m_monitorLamps.a, m_monitorLamps.b, m_difference })
        m_rows->addWidget(lamp, 2, third * column++, 1, third);
    m_rows->addLayout(deltas, 3, 0, 1, columns);
    m_rows->addLayout(moreDeltas, 4, 0, 1, columns);
    for (int each = 0; each < columns; ++each)
        m_rows->setColumnStretch(each, 1);
    m_rows->setRowStretch(1, 1);
}

} // namespace epr
