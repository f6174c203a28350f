// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "deckview.h"

#include "comparisontext.h"
#include "displaytext.h"
#include "labels.h"
#include "levelmeter.h"
#include "scrubber.h"
#include "sevensegment.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace epr {

using namespace Qt::StringLiterals;

DeckView::DeckView(Deck deck, QWidget *parent)
    : Panel(parent)
    , m_name(comparisontext::deckName(deck))
{
    setObjectName(u"deck"_s + m_name);
    setAccessibleName(tr("Deck %1").arg(m_name));
    setToolTip(tr("Listen to deck %1 (shortcut: click, or press A / B)").arg(m_name));
    createWidgets();
    layOutWidgets();
    setTrack({});
}

void DeckView::setTrack(const TrackInfo &track)
{
    m_hasFile = !track.path.isEmpty();
    m_envelope = {};
    m_title->setText(comparisontext::title(track));
    m_file->setText(comparisontext::fileName(track));
    m_folder->setText(comparisontext::folder(track));
    m_formatText = comparisontext::format(track);
    refreshFormat();
    m_scrubber->clear();
    if (m_hasFile)
        m_scrubber->setAnalysing();
    setDurationMs(track.stream.durationMs);
    setPositionMs(0);
    resetLevels();
    refreshDimming();
}

void DeckView::setKept(bool kept)
{
    m_kept->setVisible(kept);
}

void DeckView::setTurnedDown(double db)
{
    constexpr double least = 0.05; // what is shown as more than nothing
    m_turnedDown->setText(db < least ? QString() : comparisontext::decibelDelta(db, 0));
    m_turnedDown->setVisible(db >= least);
}

void DeckView::setEnvelope(const Envelope &envelope)
{
    m_envelope = envelope;
    m_scrubber->setEnvelope(envelope);
}

void DeckView::setMarks(const QList<std::pair<qint64, qint64>> &spansMs)
{
    m_scrubber->setMarks(spansMs);
}

void DeckView::setPreviewUnavailable()
{
    m_scrubber->setUnavailable();
}

void DeckView::setProblem(const QString &message)
{
    m_problem = message;
    refreshFormat();
}

void DeckView::setDurationMs(qint64 durationMs)
{
    m_duration->setText(comparisontext::duration(durationMs));
    m_scrubber->setDurationMs(durationMs);
}

void DeckView::setPositionMs(qint64 positionMs)
{
    m_position->setText(positionText(positionMs));
    m_scrubber->setPositionMs(positionMs);
}

void DeckView::setMonitored(bool monitored)
{
    m_isMonitored = monitored;
    refreshDimming();
}

void DeckView::showLevelsAt(qint64 positionMs)
{
    const qint64 bucket = positionMs / Envelope::bucketMs;
    // 0 beyond the envelope. What is drawn is raised; a meter that were too would show a quiet copy as loud as a full
    // one.
    m_levels->setLevels(m_envelope.left.value(bucket) / m_envelope.raisedBy,
                        m_envelope.right.value(bucket) / m_envelope.raisedBy);
}

void DeckView::resetLevels()
{
    m_levels->reset();
}

void DeckView::createWidgets()
{
    m_heading = new vfd::ElidingLabel(this);
    m_heading->setText(tr("DECK %1").arg(m_name));
    m_heading->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    m_heading->setTone(vfd::ElidingLabel::Tone::Soft);
    m_title = new vfd::ElidingLabel(this);
    m_title->setObjectName(u"deckTitle"_s);
    m_kept = new vfd::Badge(this);
    m_kept->setObjectName(u"deckKept"_s);
    m_kept->setText(tr("KEEP"));
    m_kept->hide();
    m_turnedDown = new vfd::Badge(this);
    m_turnedDown->setObjectName(u"deckTurnedDown"_s);
    m_turnedDown->setToolTip(tr("This copy is the louder one, and turned down by so much."));
    m_turnedDown->hide();
    m_file = createSmallLabel(u"deckFile"_s);
    m_file->setElideMode(Qt::ElideMiddle);
    m_folder = createSmallLabel(u"deckFolder"_s);
    m_folder->setElideMode(Qt::ElideMiddle);
    m_folder->setMinimumWidth(20 * m_folder->fontMetrics().averageCharWidth());
    m_folder->setTone(vfd::ElidingLabel::Tone::Soft);
    m_folder->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    m_format = createSmallLabel(u"deckFormat"_s);
    m_format->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    m_scrubber = new vfd::Scrubber(this);
    m_scrubber->setAccessibleName(tr("Position of deck %1").arg(m_name));
    connect(m_scrubber, &vfd::Scrubber::seekRequested, this, &DeckView::seekRequested);
    m_position = new vfd::SevenSegment(this);
    m_position->setDigitHeight(18);
    m_position->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_duration = createSmallLabel(u"deckDuration"_s);
    m_duration->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    m_duration->setTone(vfd::ElidingLabel::Tone::Soft);
    m_levels = new vfd::LevelMeter(this);
    m_levels->setMinimumWidth(60);
    m_levels->setMaximumWidth(130);
    m_levels->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

// For what has much to say.
vfd::ElidingLabel *DeckView::createSmallLabel(const QString &name)
{
    auto *label = new vfd::ElidingLabel(this);
    label->setObjectName(name);
    QFont small = vfd::letteringFont(8);
    small.setLetterSpacing(QFont::PercentageSpacing, 100);
    label->setFont(small);
    return label;
}

// The folder makes way for the file's name.
void DeckView::layOutWidgets()
{
    auto *texts = new QHBoxLayout;
    texts->addWidget(m_heading);
    texts->addWidget(m_kept);
    texts->addWidget(m_turnedDown);
    texts->addWidget(m_title, 3);
    texts->addWidget(m_levels, 1);
    auto *place = new QHBoxLayout;
    place->addWidget(m_file);
    place->addWidget(m_folder, 1);
    auto *time = new QHBoxLayout;
    time->addWidget(m_position);
    time->addWidget(m_duration);
    time->addWidget(m_format, 1);
    for (QHBoxLayout *row : { texts, place, time })
        row->setSpacing(10);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 5, 10, 5);
    layout->setSpacing(2);
    layout->addLayout(texts);
    layout->addLayout(place);
    layout->addWidget(m_scrubber, 1);
    layout->addLayout(time);
}

void DeckView::refreshFormat()
{
    m_format->setText(m_problem.isEmpty() ? m_formatText : m_problem);
    m_format->setTone(m_problem.isEmpty() ? vfd::ElidingLabel::Tone::Soft : vfd::ElidingLabel::Tone::Warning);
}

// An empty deck has nothing to listen to, even if it is the monitored one.
void DeckView::refreshDimming()
{
    setDimmed(!m_isMonitored || !m_hasFile);
    m_position->setDim(isDimmed());
}

} // namespace epr
