// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "metadata.h"
#include "settingsdialog.h"
#include "settingsstore.h"
#include "settingstabs.h"
#include "updatesettings.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <functional>
#include <limits>

using namespace epr;
using namespace Qt::StringLiterals;

namespace {

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
    void initTestCase()
    {
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_store.path());
        metadata::applyToApplication();
    }

    void init() { QSettings().clear(); }

    void listsAreTakenApart()
    {
        QCOMPARE(parseExtensions(u" .MP3 , ,flac,, .Ogg . ,."_s), (QStringList { u"mp3"_s, u"flac"_s, u"ogg"_s }));
        QCOMPARE(parseExcludes(u"*/A b/*;; ; */c,d/* ;"_s), (QStringList { u"*/A b/*"_s, u"*/c,d/*"_s }));
    }

    void everyControlEditsItsOption()
    {
        using Row = std::tuple<const char *, const char *, QVariant, std::function<void(ScanOptions &)>>;
        const std::initializer_list<Row> rows {
            { "Identical files (SHA-256 of the whole file)", "checked", false,
              [](auto &o) { o.detectIdentical = false; } },
            { "Same audio, different tags", "checked", false, [](auto &o) { o.detectSameAudio = false; } },
            { "Acoustic fingerprint (same recording, re-encoded)", "checked", false,
              [](auto &o) { o.detectAcoustic = false; } },
            { "Matching artist, title and duration", "checked", true, [](auto &o) { o.detectMetadata = true; } },
            { "Acoustic match threshold:", "value", 0.31, [](auto &o) { o.threshold = 0.31; } },
            { "Duration tolerance (acoustic):", "value", 25, [](auto &o) { o.durationTolerance = 25; } },
            { "Duration tolerance (metadata):", "value", 7, [](auto &o) { o.metadataTolerance = 7000; } },
            { "Copy to keep:", "currentIndex", 4, [](auto &o) { o.keeperPolicy = 4; } },
            { "Include extensions:", "text", u" .WMA,"_s, [](auto &o) { o.extensions = { u"wma"_s }; } },
            { "Exclude paths:", "text", u"*/old/*;"_s, [](auto &o) { o.excludes = { u"*/old/*"_s }; } },
            { "Ignore files smaller than:", "value", 1, [](auto &o) { o.minBytes = 1024; } },
            { "Ignore audio shorter than:", "value", 600, [](auto &o) { o.minDurationMs = 600000; } },
            { "Include hidden files and folders", "checked", true, [](auto &o) { o.includeHidden = true; } },
            { "Follow symbolic links and junctions", "checked", true, [](auto &o) { o.followSymlinks = true; } },
            { "Worker threads:", "value", 16, [](auto &o) { o.decoderThreads = 16; } },
            { "Audio analysed per file:", "value", 20, [](auto &o) { o.fingerprintSeconds = 20; } },
            { "Remember analysis results between scans", "checked", false, [](auto &o) { o.useCache = false; } },
        };
        for (const auto &[name, property, value, change] : rows) {
            ScanOptions options; // with values that no control edits, which have to stay
            options.roots = { u"/music"_s };
            options.chromaprintThreshold = 7;
            options.formatPreference = { u"ogg"_s };
            SettingsDialog dialog(options, {});
            QVERIFY2(control(dialog, QString::fromLatin1(name))->setProperty(property, value), name);
            dialog.reject();
            QVERIFY2(dialog.options() == options, name);
            dialog.accept();
            change(options);
            QVERIFY2(dialog.options() == options, name);
        }
    }

    void untouchedControlsWriteWhatTheyShow()
    {
        using Int = std::numeric_limits<qint32>;
        using Long = std::numeric_limits<qint64>;
        using Row = std::array<qint64, 3>;
        const std::initializer_list<std::pair<Row, Row>> storedAndWritten {
            { { Long::min(), Long::min(), Int::min() }, { 0, 0, 0 } },
            { { Long::max(), Long::max(), Int::max() }, { 1 << 30, 600000, 30000 } },
            { { 2047, 2500, 3999 }, { 1024, 2000, 3000 } }, // finer than shown
        };
        for (const auto &[stored, written] : storedAndWritten) {
            ScanOptions options;
            options.minBytes = stored[0];
            options.minDurationMs = stored[1];
            options.metadataTolerance = static_cast<qint32>(stored[2]);
            SettingsDialog dialog(options, {});
            dialog.accept();
            const ScanOptions &now = dialog.options();
            QCOMPARE((Row { now.minBytes, now.minDurationMs, now.metadataTolerance }), written);
        }
    }

    void updateSettingsWaitForAcceptanceButSkipping()
    {
        UpdateSettings().setSkippedVersion(u"2.0"_s);
        SettingsDialog dialog(ScanOptions(), {});
        auto *stopSkipping = qobject_cast<QAbstractButton *>(control(dialog, u"Stop skipping version 2.0"_s));
        QVERIFY(!stopSkipping->isHidden());
        stopSkipping->click();
        QVERIFY(stopSkipping->isHidden());
        control(dialog, u"Check for updates when Echoprune starts"_s)->setProperty("checked", false);
        control(dialog, u"Update service:"_s)->setProperty("text", u"  https://updates.example/  "_s);
        dialog.reject();
        QVERIFY(QSettings().allKeys().isEmpty());
        QVERIFY(control(SettingsDialog(ScanOptions(), {}), u"Stop skipping version "_s)->isHidden());
        dialog.accept();
        QVERIFY(!SettingsStore().value(settings::checkForUpdatesOnStartup));
        QCOMPARE(QSettings().value(u"updates/url"_s).toString(), u"https://updates.example/"_s);
    }

private:
    QTemporaryDir m_store;
};

QTEST_MAIN(TestSettingsDialog)

#include "tst_settingsdialog.moc"
