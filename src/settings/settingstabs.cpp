// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingstabs.h"

#include "displaytext.h"
#include "keeperpolicy.h"
#include "keeperruleseditor.h"
#include "notices.h"
#include "settingsdialog.h"
#include "settingsstore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QThread>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

// One width for all, which would otherwise follow their ranges and make a ragged column.
void alignSpinBox(QAbstractSpinBox *box)
{
    constexpr int characters = 16;
    box->setMinimumWidth(box->fontMetrics().averageCharWidth() * characters);
}

// Its text fields grow with the dialog while its spin boxes keep their size.
QFormLayout *createForm(QWidget *parent)
{
    auto *form = new QFormLayout(parent);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    return form;
}

// Wraps, as paths and addresses go in.
QLabel *createStatusLabel()
{
    QLabel *label = plainLabel();
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    label->setSizePolicy(policy);
    return label;
}

// A value that changes nothing is greyed with its label.
void enableRowWith(const QCheckBox *method, const QFormLayout *form, QWidget *field)
{
    for (QWidget *widget : { form->labelForField(field), field }) {
        widget->setEnabled(method->isChecked());
        QObject::connect(method, &QCheckBox::toggled, widget, &QWidget::setEnabled);
    }
}

constexpr int msPerSecond = 1000;
constexpr int bytesPerKilobyte = 1024;

QStringList trimmedParts(const QString &text, QChar separator)
{
    QStringList parts = text.split(separator);
    for (QString &part : parts)
        part = part.trimmed();
    parts.removeAll(QString());
    return parts;
}

// "mp3, .FLAC" to lower-case suffixes without dots.
QStringList parseExtensions(const QString &text)
{
    return trimmedParts(text.toLower().remove(u'.'), u',');
}

QStringList parseExcludes(const QString &text)
{
    return trimmedParts(text, u';');
}

} // namespace

OptionsTab::OptionsTab(const ScanOptions &options, QWidget *parent)
    : QWidget(parent)
    , m_stored(options)
{
}

void OptionsTab::applyTo(ScanOptions &options) const
{
    for (const auto &store : m_bindings)
        store(options);
}

QCheckBox *OptionsTab::checkBox(bool ScanOptions::*option, const QString &text, const QString &toolTip)
{
    auto *box = new QCheckBox(text);
    box->setChecked(m_stored.*option);
    box->setToolTip(toolTip);
    bind([=](ScanOptions &options) { options.*option = box->isChecked(); });
    return box;
}

QCheckBox *OptionsTab::checkBox(const Setting<bool> &setting, const QString &text, const QString &toolTip)
{
    auto *box = new QCheckBox(text);
    box->setChecked(SettingsStore().value(setting));
    box->setToolTip(toolTip);
    bind([=](ScanOptions &) { SettingsStore().set(setting, box->isChecked()); });
    return box;
}

QComboBox *OptionsTab::comboBox(qint32 ScanOptions::*option, const QList<Choice> &choices)
{
    auto *box = new QComboBox;
    for (const Choice &choice : choices)
        box->addItem(choice.text, choice.value);
    box->setCurrentIndex(std::max(0, box->findData(m_stored.*option)));
    bind([=](ScanOptions &options) { options.*option = box->currentData().toInt(); });
    return box;
}

QDoubleSpinBox *OptionsTab::spinBox(double ScanOptions::*option, const DecimalRange &range)
{
    auto *box = new QDoubleSpinBox;
    box->setRange(range.minimum, range.maximum);
    box->setSingleStep(range.step);
    box->setDecimals(range.decimals);
    alignSpinBox(box);
    // "nan" is a number to the settings store, but has no nearest value in range.
    box->setValue(std::isnan(m_stored.*option) ? ScanOptions().*option : m_stored.*option);
    bind([=](ScanOptions &options) { options.*option = box->value(); });
    return box;
}

QLineEdit *OptionsTab::listEdit(QStringList ScanOptions::*option, const Separator &separator, const QString &toolTip)
{
    auto *edit = new QLineEdit((m_stored.*option).join(separator.character + QChar::Space));
    edit->setCursorPosition(0); // a long list shows its beginning
    edit->setToolTip(toolTip);
    bind([=, parse = separator.parse](ScanOptions &options) { options.*option = parse(edit->text()); });
    return edit;
}

QSpinBox *OptionsTab::createSpinBox(qint64 value, const Range &range)
{
    auto *box = new QSpinBox;
    box->setRange(range.minimum, range.maximum);
    box->setSuffix(range.suffix);
    // Clamped in 64 bits, before the value could be cut to the width of an int.
    box->setValue(static_cast<int>(std::clamp<qint64>(value, range.minimum, range.maximum)));
    alignSpinBox(box);
    return box;
}

int OptionsTab::valueOf(const QSpinBox *box)
{
    return box->value();
}

DetectionTab::DetectionTab(const ScanOptions &options, const SettingsStatus &status, QWidget *parent)
    : OptionsTab(options, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(createMethods());
    layout->addWidget(
        createSensitivity(options.fingerprintEngine == FingerprintEngine::Fpcalc && !status.fpcalcPath.isEmpty()));
    layout->addWidget(createRules());
    layout->addStretch();
}

QWidget *DetectionTab::createMethods()
{
    auto *group = new QGroupBox(tr("Detection methods"));
    auto *layout = new QVBoxLayout(group);
    layout->addWidget(checkBox(&ScanOptions::detectIdentical, tr("&Identical files (SHA-256 of the whole file)"),
                               tr("Fastest and completely certain. Catches straight copies.")));
    layout->addWidget(checkBox(&ScanOptions::detectSameAudio, tr("Same &audio, different tags"),
                               tr("Hashes only the audio payload, ignoring ID3 tags and artwork, so a retagged copy is "
                                  "still recognised.")));
    m_acoustic = checkBox(&ScanOptions::detectAcoustic, tr("Acoustic &fingerprint (same recording, re-encoded)"),
                          tr("Decodes and fingerprints each file locally. Slower on the first pass, but catches the "
                             "same track ripped at a different bitrate. No online service is used."));
    layout->addWidget(m_acoustic);
    QCheckBox *thorough = checkBox(
        &ScanOptions::compareThoroughly, tr("Also find &copies that start or end elsewhere, and processed ones"),
        tr("Compares what the fingerprints have left over once more, wherever the sound begins and however "
           "long the files are. A copy that lacks a part of the longest one is not ticked."));
    thorough->setEnabled(m_acoustic->isChecked());
    connect(m_acoustic, &QCheckBox::toggled, thorough, &QWidget::setEnabled);
    layout->addWidget(thorough);
    m_metadata = checkBox(&ScanOptions::detectMetadata, tr("Matching a&rtist, title and duration"),
                          tr("Broadest and least certain. Will flag legitimately different versions, so always review "
                             "these groups."));
    layout->addWidget(m_metadata);
    layout->addWidget(
        checkBox(&ScanOptions::checkWhole, tr("Check &groups over their whole length after a scan"),
                 tr("Decodes every copy that was found by sound or by tags to its end, behind the review. Copies that "
                    "differ from the one to keep are marked and unticked.")));
    return group;
}

QWidget *DetectionTab::createSensitivity(bool usesFpcalc)
{
    QDoubleSpinBox *threshold =
        spinBox(&ScanOptions::threshold, { .minimum = 0.02, .maximum = 0.4, .step = 0.01, .decimals = 2 });
    threshold->setToolTip(tr(
        "Maximum fingerprint bit-error-rate accepted as a match. Lower is stricter. The default of 0.25 was chosen to "
        "catch the same\ntrack re-encoded across formats while leaving clear margin\nagainst unrelated music."));
    auto *group = new QGroupBox(tr("Sensitivity"));
    QFormLayout *form = createForm(group);
    form->addRow(tr("Acoustic match &threshold:"), threshold);
    if (usesFpcalc)
        form->addRow(QString(), plainLabel(tr("The threshold has no effect while fpcalc is used.")));
    QSpinBox *acousticTolerance = spinBox(&ScanOptions::durationTolerance, { 1, 25, tr(" %") });
    form->addRow(tr("Duration tolerance (acou&stic):"), acousticTolerance);
    QSpinBox *metadataTolerance = spinBox(&ScanOptions::metadataTolerance, { 0, 30, tr(" s"), msPerSecond });
    form->addRow(tr("Duration tolerance (&metadata):"), metadataTolerance);
    m_keeper = createKeeperBox();
    form->addRow(tr("Copy to &keep:"), m_keeper);
    enableRowWith(m_acoustic, form, threshold);
    enableRowWith(m_acoustic, form, acousticTolerance);
    enableRowWith(m_metadata, form, metadataTolerance);
    return group;
}

QComboBox *DetectionTab::createKeeperBox()
{
    const auto policy = [](const QString &text, KeeperPolicy value) {
        return Choice { text, static_cast<qint32>(value) };
    };
    QComboBox *box = comboBox(&ScanOptions::keeperPolicy,
                              { policy(tr("Highest bitrate"), KeeperPolicy::HighestBitrate),
                                policy(tr("Longest duration"), KeeperPolicy::LongestDuration),
                                policy(tr("Largest file"), KeeperPolicy::LargestFile),
                                policy(tr("Preferred format"), KeeperPolicy::PreferredFormat),
                                policy(tr("Shallowest folder"), KeeperPolicy::ShallowestFolder),
                                policy(tr("Oldest file"), KeeperPolicy::OldestFile),
                                policy(tr("Newest file"), KeeperPolicy::NewestFile),
                                policy(tr("Most complete tags"), KeeperPolicy::MostCompleteTags),
                                policy(tr("Own rules"), KeeperPolicy::OwnRules) });
    box->setAccessibleName(tr("Copy to keep")); // a combo box is else called what it shows
    return box;
}

QWidget *DetectionTab::createRules()
{
    auto *rules = new KeeperRulesEditor(stored().keeperRules, SettingsStore().value(settings::keeperPresets));
    const auto showWhereUsed = [this, rules] {
        rules->setVisible(m_keeper->currentData().toInt() == static_cast<qint32>(KeeperPolicy::OwnRules));
    };
    connect(m_keeper, &QComboBox::currentIndexChanged, rules, showWhereUsed);
    rules->setHidden(m_keeper->currentData().toInt() != static_cast<qint32>(KeeperPolicy::OwnRules));
    bind([rules](ScanOptions &options) {
        options.keeperRules = rules->words();
        SettingsStore().set(settings::keeperPresets, rules->presets());
    });
    return rules;
}

FilesTab::FilesTab(const ScanOptions &options, QWidget *parent)
    : OptionsTab(options, parent)
{
    QSpinBox *minSeconds = spinBox(&ScanOptions::minDurationMs, { 0, 600, tr(" s"), msPerSecond });
    minSeconds->setToolTip(tr("Station idents, stings and beds are short and repetitive; excluding them keeps the "
                              "results readable."));
    QFormLayout *form = createForm(this);
    form->addRow(tr("Include &extensions:"),
                 listEdit(&ScanOptions::extensions, { u',', parseExtensions },
                          tr("Comma separated file extensions, without the dot.")));
    form->addRow(tr("E&xclude paths:"),
                 listEdit(&ScanOptions::excludes, { u';', parseExcludes },
                          tr("Semicolon separated wildcard patterns to skip.")));
    form->addRow(tr("Ignore files &smaller than:"),
                 spinBox(&ScanOptions::minBytes, { 0, 1048576, tr(" KB"), bytesPerKilobyte }));
    form->addRow(tr("Ignore &audio shorter than:"), minSeconds);
    form->addRow(checkBox(&ScanOptions::includeHidden, tr("Include &hidden files and folders")));
    form->addRow(checkBox(&ScanOptions::followSymlinks, tr("Follow symbolic &links and junctions")));
    form->addRow(checkBox(settings::csvMark, tr("&Begin CSV reports with a byte order mark"),
                          tr("Excel needs the mark to show accents and other scripts; some other programs take it for "
                             "a part of the first heading.")));
}

PerformanceTab::PerformanceTab(const ScanOptions &options, const SettingsStatus &status, QWidget *parent)
    : OptionsTab(options, parent)
    , m_cacheStatus(createStatusLabel())
{
    QLabel *engine = createStatusLabel();
    engine->setText(
        status.fpcalcPath.isEmpty()
            ? tr("Built-in analysis (fallback). Install Chromaprint's fpcalc, or place it next to the application, for "
                 "several times faster and more accurate fingerprinting.")
            : tr("Chromaprint fpcalc — fast path active.\n%1").arg(nativePath(status.fpcalcPath)));
    QSpinBox *threads = spinBox(&ScanOptions::decoderThreads, { 1, 16, {} });
    threads->setToolTip(
        tr("Parallel fingerprinting workers. This machine reports %1 cores.").arg(QThread::idealThreadCount()));
    QSpinBox *seconds = spinBox(&ScanOptions::fingerprintSeconds, { 20, 600, tr(" s") });
    seconds->setToolTip(tr("How much of each file to analyse. Two minutes is ample for songs; raise it for long-form "
                           "programmes."));
    setCacheStatus(status.cache);
    auto *clear = new QPushButton(tr("C&lear cache"));
    connect(clear, &QPushButton::clicked, this, &PerformanceTab::clearCacheRequested);

    QFormLayout *form = createForm(this);
    form->addRow(tr("Fingerprint engine:"), engine);
    form->addRow(tr("Worker &threads:"), threads);
    form->addRow(tr("&Audio analysed per file:"), seconds);
    form->addRow(checkBox(&ScanOptions::useCache, tr("&Remember analysis results between scans")));
    form->addRow(checkBox(&ScanOptions::onlyPossibleCopies, tr("Read &whole files only where a copy is possible"),
                          tr("Files whose length or ends no other file has cannot have a copy and are not read to the "
                             "end. The results are the same. Off, every file is read whole at its first scan.")));
    form->addRow(checkBox(settings::compareAgain, tr("Read &files again before every clean-up"),
                          tr("Before a file goes, it and a copy that stays are read and compared with what the scan "
                             "recorded. Permanent deletion always does so; with this, so do the quarantine and the "
                             "recycle bin, which then take as long as the reading.")));
    form->addRow(tr("Cache status:"), m_cacheStatus);
    form->addRow(QString(), clear);
}

void PerformanceTab::setCacheStatus(const CacheStatus &status)
{
    const QString size = sizeText(status.bytes).replace("kB"_L1, "KB"_L1); // as the sizes of files in this dialog
    m_cacheStatus->setText(status.available ? tr("%1 files cached, using %2.").arg(countText(status.entries), size)
                                            : tr("Cache unavailable."));
}

void PerformanceTab::showCacheCleared()
{
    m_cacheStatus->setText(tr("Cache cleared. The next scan will re-analyse everything."));
}

UpdatesTab::UpdatesTab(QWidget *parent)
    : QWidget(parent)
    , m_checkOnStartup(new QCheckBox(tr("Check for updates when %1 &starts").arg(metadata::applicationName())))
    , m_url(new QLineEdit(m_settings.url()))
    , m_stopSkipping(new QPushButton)
{
    m_checkOnStartup->setChecked(SettingsStore().value(settings::checkForUpdatesOnStartup));
    m_url->setCursorPosition(0);
    m_url->setToolTip(tr("Shared Quorvane suite update service.\nAutomatic checks run at most once every 20 hours."));

    // A version is the service's text: an ampersand in it must not become a shortcut.
    const QString skipped = m_settings.skippedVersion();
    m_stopSkipping->setText(tr("Stop s&kipping version %1").arg(displayVersion(skipped).replace("&"_L1, "&&"_L1)));
    m_stopSkipping->setHidden(skipped.isEmpty());
    connect(m_stopSkipping, &QPushButton::clicked, this, &UpdatesTab::stopSkipping);

    QFormLayout *form = createForm(this);
    form->addRow(m_checkOnStartup);
    form->addRow(tr("&Update service:"), m_url);
    form->addRow(new QLabel(tr("Last checked: %1").arg(m_settings.lastCheckedText())));
    auto *buttonRow = new QHBoxLayout;
    buttonRow->addWidget(m_stopSkipping);
    buttonRow->addStretch();
    form->addRow(buttonRow);
}

void UpdatesTab::save()
{
    SettingsStore().set(settings::checkForUpdatesOnStartup, m_checkOnStartup->isChecked());
    m_settings.setUrl(m_url->text());
}

void UpdatesTab::stopSkipping()
{
    m_settings.clearSkippedVersion();
    m_stopSkipping->hide();
}

} // namespace epr
