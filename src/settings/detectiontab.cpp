// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "detectiontab.h"

#include "keeperpolicy.h"
#include "scanoptions.h"
#include "settingswidgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 msPerSecond = 1000;

} // namespace

DetectionTab::DetectionTab(const ScanOptions &options, QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(createMethods(options));
    layout->addWidget(createSensitivity(options));
    layout->addStretch();
}

QWidget *DetectionTab::createMethods(const ScanOptions &options)
{
    m_identical = createCheckBox(tr("&Identical files (SHA-256 of the whole file)"), options.detectIdentical,
                                 tr("Fastest and completely certain. Catches straight copies."));
    m_sameAudio =
        createCheckBox(tr("Same &audio, different tags"), options.detectSameAudio,
                       tr("Hashes only the audio payload, ignoring ID3 tags and artwork, so a retagged copy is "
                          "still recognised."));
    m_acoustic = createCheckBox(tr("Acoustic &fingerprint (same recording, re-encoded)"), options.detectAcoustic,
                                tr("Decodes and fingerprints each file locally. Slower on the first pass, but catches "
                                   "the same track ripped at a different bitrate. No online service is used."));
    m_metadata = createCheckBox(tr("Matching a&rtist, title and duration"), options.detectMetadata,
                                tr("Broadest and least certain. Will flag legitimately different versions, so always "
                                   "review these groups."));
    auto *group = new QGroupBox(tr("Detection methods"));
    auto *layout = new QVBoxLayout(group);
    for (QCheckBox *box : { m_identical, m_sameAudio, m_acoustic, m_metadata })
        layout->addWidget(box);
    return group;
}

QWidget *DetectionTab::createSensitivity(const ScanOptions &options)
{
    createThreshold(options.threshold);
    m_durationTolerance = createSpinBox({ 1, 25, tr(" %") }, options.durationTolerance);
    m_metadataTolerance = createSpinBox({ 0, 30, tr(" s") }, options.metadataTolerance / msPerSecond);
    createKeeperPolicy(options.keeperPolicy);

    auto *group = new QGroupBox(tr("Sensitivity"));
    QFormLayout *form = createForm(group);
    form->addRow(tr("Acoustic match &threshold:"), m_threshold);
    form->addRow(tr("Duration tolerance (acou&stic):"), m_durationTolerance);
    form->addRow(tr("Duration tolerance (&metadata):"), m_metadataTolerance);
    form->addRow(tr("Copy to &keep:"), m_keeperPolicy);
    return group;
}

void DetectionTab::createThreshold(double threshold)
{
    m_threshold = new QDoubleSpinBox;
    m_threshold->setRange(0.02, 0.4);
    m_threshold->setSingleStep(0.01);
    m_threshold->setDecimals(2);
    m_threshold->setToolTip(tr(
        "Maximum fingerprint bit-error-rate accepted as a match. Lower is stricter. The default of 0.25 was chosen to "
        "catch the same\ntrack re-encoded across formats while leaving clear margin\nagainst unrelated music."));
    alignSpinBox(m_threshold);
    // "nan" is a number to the settings store, but has no nearest value in range.
    m_threshold->setValue(std::isnan(threshold) ? ScanOptions().threshold : threshold);
}

void DetectionTab::createKeeperPolicy(qint32 policy)
{
    m_keeperPolicy = new QComboBox;
    const auto add = [this](const QString &text, KeeperPolicy value) {
        m_keeperPolicy->addItem(text, static_cast<qint32>(value));
    };
    add(tr("Highest bitrate"), KeeperPolicy::HighestBitrate);
    add(tr("Longest duration"), KeeperPolicy::LongestDuration);
    add(tr("Largest file"), KeeperPolicy::LargestFile);
    add(tr("Preferred format"), KeeperPolicy::PreferredFormat);
    add(tr("Shallowest folder"), KeeperPolicy::ShallowestFolder);
    add(tr("Oldest file"), KeeperPolicy::OldestFile);
    add(tr("Newest file"), KeeperPolicy::NewestFile);
    add(tr("Most complete tags"), KeeperPolicy::MostCompleteTags);
    m_keeperPolicy->setCurrentIndex(std::max(0, m_keeperPolicy->findData(policy)));
}

void DetectionTab::applyTo(ScanOptions &options) const
{
    options.detectIdentical = m_identical->isChecked();
    options.detectSameAudio = m_sameAudio->isChecked();
    options.detectAcoustic = m_acoustic->isChecked();
    options.detectMetadata = m_metadata->isChecked();
    options.threshold = m_threshold->value();
    options.durationTolerance = m_durationTolerance->value();
    options.metadataTolerance = m_metadataTolerance->value() * msPerSecond;
    options.keeperPolicy = m_keeperPolicy->currentData().toInt();
}

} // namespace epr
