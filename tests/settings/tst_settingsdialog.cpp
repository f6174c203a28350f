// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "keeperpolicy.h"
#include "settingsdialog.h"
#include "settingsstore.h"
#include "updatechecker.h"

#include "rows.h"
#include "temporarylibrary.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QTest>

#include <functional>

using namespace epr;
using namespace epr::test;
using namespace Qt::StringLiterals;

namespace {

using Change = std::function<void(ScanOptions &)>;

/// The control that an operator would name so: a form field by its label, a check box or button by its text.
QWidget *control(const QWidget &dialog, const QString &name)
{
    for (QWidget *widget : dialog.findChildren<QWidget *>()) {
        if (widget->property("text").toString().remove(u'&') == name)
            return widget->inherits("QLabel") ? qobject_cast<QLabel *>(widget)->buddy() : widget;
    }
    return nullptr;
}

} // namespace

class TestSettingsDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { metadata::applyToApplication(); }

    void init() { QSettings().clear(); }

    void everyControlEditsItsOption_data()
    {
        const Rows<QByteArray, QVariant, Change> row("property", "value", "change");
        row("Identical files (SHA-256 of the whole file)", "checked", false,
            [](auto &o) { o.detectIdentical = false; });
        row("Same audio, different tags", "checked", false, [](auto &o) { o.detectSameAudio = false; });
        row("Acoustic fingerprint (same recording, re-encoded)", "checked", false,
            [](auto &o) { o.detectAcoustic = false; });
        row("Also find copies that start or end elsewhere, and processed ones", "checked", true,
            [](auto &o) { o.compareThoroughly = true; });
        row("Check groups over their whole length after a scan", "checked", true, [](auto &o) { o.checkWhole = true; });
        row("Matching artist, title and duration", "checked", true, [](auto &o) { o.detectMetadata = true; });
        row("Acoustic match threshold:", "value", 0.31, [](auto &o) { o.threshold = 0.31; });
        row("Duration tolerance (acoustic):", "value", 25, [](auto &o) { o.durationTolerance = 25; });
        row("Duration tolerance (metadata):", "value", 7, [](auto &o) { o.metadataTolerance = 7000; });
        row("Copy to keep:", "currentText", u"Shallowest folder"_s,
            [](auto &o) { o.keeperPolicy = qToUnderlying(KeeperPolicy::ShallowestFolder); });
        row("Include extensions:", "text", u" .MP3 , ,flac,, .Ogg . ,."_s,
            [](auto &o) { o.extensions = words("mp3 flac ogg"); });
        const QStringList excludes { u"*/A b/*"_s, u"*/c,d/*"_s };
        row("Exclude paths:", "text", u"*/A b/*;; ; */c,d/* ;"_s, [=](auto &o) { o.excludes = excludes; });
        row("Ignore files smaller than:", "value", 1, [](auto &o) { o.minBytes = 1024; });
        row("Ignore audio shorter than:", "value", 600, [](auto &o) { o.minDurationMs = 600000; });
        row("Include hidden files and folders", "checked", true, [](auto &o) { o.includeHidden = true; });
        row("Follow symbolic links and junctions", "checked", true, [](auto &o) { o.followSymlinks = true; });
        row("Worker threads:", "value", 16, [](auto &o) { o.decoderThreads = 16; });
        row("Audio analysed per file:", "value", 20, [](auto &o) { o.fingerprintSeconds = 20; });
        row("Remember analysis results between scans", "checked", false, [](auto &o) { o.useCache = false; });
        row("Read whole files only where a copy is possible", "checked", false,
            [](auto &o) { o.onlyPossibleCopies = false; });
    }

    void everyControlEditsItsOption()
    {
        QFETCH(const QByteArray, property);
        QFETCH(const QVariant, value);
        QFETCH(const Change, change);
        ScanOptions options; // with values that no control edits, which have to stay
        options.roots = { u"/music"_s };
        options.chromaprintThreshold = 7;
        options.formatPreference = { u"ogg"_s };
        SettingsDialog dialog(options, {});
        QVERIFY(
            control(dialog, QString::fromLatin1(QTest::currentDataTag()))->setProperty(property.constData(), value));
        dialog.reject();
        QVERIFY(dialog.options() == options);
        dialog.accept();
        change(options);
        QVERIFY(dialog.options() == options);
    }

    void ownRulesAreEdited()
    {
        SettingsStore().set(settings::keeperPresets, { u"mine\nnewer\n-aura\nfolder:/Playout"_s });
        ScanOptions options;
        options.keeperPolicy = qToUnderlying(KeeperPolicy::OwnRules);
        SettingsDialog dialog(options, {});
        auto *rules = dialog.findChild<QListWidget *>();
        QVERIFY(!rules->parentWidget()->isHidden());
        auto *presets = qobject_cast<QComboBox *>(control(dialog, u"Presets:"_s));
        Q_EMIT presets->activated(0);
        QCOMPARE(rules->item(0)->checkState(), Qt::Checked);
        qobject_cast<QAbstractButton *>(control(dialog, u"Move down"_s))->click();
        rules->item(0)->setCheckState(Qt::Unchecked);
        qobject_cast<QAbstractButton *>(control(dialog, u"Copy"_s))->click();
        presets->setCurrentIndex(0);
        dialog.accept();
        // The copy is of the preset as it was, which also shows again.
        QCOMPARE(SettingsStore().value(settings::keeperPresets).size(), 2);
        QCOMPARE(dialog.options().keeperRules.first(2), QStringList({ u"newer"_s, u"-aura"_s }));
        QCOMPARE(dialog.options().keeperRules.last(), u"folder:/Playout"_s);
    }

    void storedSettingsWaitForAcceptanceButSkipping()
    {
        UpdateSettings().setSkippedVersion(u"2.0"_s);
        SettingsDialog dialog(ScanOptions(), {});
        auto *stopSkipping = qobject_cast<QAbstractButton *>(control(dialog, u"Stop skipping version 2.0"_s));
        QVERIFY(!stopSkipping->isHidden());
        stopSkipping->click();
        QVERIFY(stopSkipping->isHidden());
        control(dialog, u"Check for updates when Echoprune starts"_s)->setProperty("checked", false);
        control(dialog, u"Update service:"_s)->setProperty("text", u"  https://updates.example/  "_s);
        control(dialog, u"Read files again before every clean-up"_s)->setProperty("checked", true);
        control(dialog, u"Begin CSV reports with a byte order mark"_s)->setProperty("checked", true);
        dialog.reject();
        QVERIFY(QSettings().allKeys().isEmpty());
        QVERIFY(control(SettingsDialog(ScanOptions(), {}), u"Stop skipping version "_s)->isHidden());
        dialog.accept();
        QVERIFY(!SettingsStore().value(settings::checkForUpdatesOnStartup));
        QVERIFY(SettingsStore().value(settings::compareAgain) && SettingsStore().value(settings::csvMark));
        QCOMPARE(QSettings().value(u"updates/url"_s).toString(), u"https://updates.example/"_s);
    }

private:
    TemporaryHome m_home;
};

QTEST_MAIN(TestSettingsDialog)

#include "tst_settingsdialog.moc"
