// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filestab.h"
#include "metadata.h"
#include "settingsdialog.h"
#include "settingsstore.h"
#include "updatesettings.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>

using namespace epr;
using namespace Qt::StringLiterals;

using Change = std::function<void(ScanOptions &)>;
Q_DECLARE_METATYPE(Change)

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

void click(const QWidget &dialog, const QString &name)
{
    qobject_cast<QAbstractButton *>(control(dialog, name))->click();
}

QString status(const QWidget &dialog, const QString &name)
{
    return control(dialog, name)->property("text").toString();
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

    void everyControlEditsItsOption_data()
    {
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<Change>("change");
        const auto row = [](const char *name, const char *property, const QVariant &value, const Change &change) {
            QTest::newRow(name) << QByteArray(property) << value << change;
        };
        row("Identical files (SHA-256 of the whole file)", "checked", false,
            [](auto &o) { o.detectIdentical = false; });
        row("Same audio, different tags", "checked", false, [](auto &o) { o.detectSameAudio = false; });
        row("Acoustic fingerprint (same recording, re-encoded)", "checked", false,
            [](auto &o) { o.detectAcoustic = false; });
        row("Matching artist, title and duration", "checked", true, [](auto &o) { o.detectMetadata = true; });
        row("Acoustic match threshold:", "value", 0.31, [](auto &o) { o.threshold = 0.31; });
        row("Duration tolerance (acoustic):", "value", 25, [](auto &o) { o.durationTolerance = 25; });
        row("Duration tolerance (metadata):", "value", 7, [](auto &o) { o.metadataTolerance = 7000; });
        row("Copy to keep:", "currentIndex", 4, [](auto &o) { o.keeperPolicy = 4; });
        row("Include extensions:", "text", u"WMA,.ape"_s, [](auto &o) { o.extensions = { u"wma"_s, u"ape"_s }; });
        row("Exclude paths:", "text", u"*/old/*;"_s, [](auto &o) { o.excludes = { u"*/old/*"_s }; });
        row("Ignore files smaller than:", "value", 1, [](auto &o) { o.minBytes = 1024; });
        row("Ignore audio shorter than:", "value", 600, [](auto &o) { o.minDurationMs = 600000; });
        row("Include hidden files and folders", "checked", true, [](auto &o) { o.includeHidden = true; });
        row("Follow symbolic links and junctions", "checked", true, [](auto &o) { o.followSymlinks = true; });
        row("Worker threads:", "value", 16, [](auto &o) { o.decoderThreads = 16; });
        row("Audio analysed per file:", "value", 20, [](auto &o) { o.fingerprintSeconds = 20; });
        row("Remember analysis results between scans", "checked", false, [](auto &o) { o.useCache = false; });
    }

    void everyControlEditsItsOption()
    {
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);
        QFETCH(Change, change);
        ScanOptions options; // with values that no control edits, which have to stay
        options.roots = { u"/music"_s };
        options.chromaprintThreshold = 7;
        options.fingerprintEngine = 0;
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

    void untouchedControlsWriteWhatTheyShow_data()
    {
        QTest::addColumn<Change>("stored");
        QTest::addColumn<Change>("written");
        using Int = std::numeric_limits<qint32>;
        using Long = std::numeric_limits<qint64>;
        const auto set = [](double threshold, const QList<qint32> &numbers, const QList<qint64> &limits) -> Change {
            return [=](ScanOptions &o) {
                o.threshold = threshold;
                o.durationTolerance = numbers[0];
                o.metadataTolerance = numbers[1];
                o.keeperPolicy = numbers[2];
                o.decoderThreads = numbers[3];
                o.fingerprintSeconds = numbers[4];
                o.minBytes = limits[0];
                o.minDurationMs = limits[1];
            };
        };
        QTest::newRow("far too low") << set(-1e300, QList<qint32>(5, Int::min()), { Long::min(), Long::min() })
                                     << set(0.02, { 1, 0, 0, 1, 20 }, { 0, 0 });
        QTest::newRow("far too high") << set(1e300, QList<qint32>(5, Int::max()), { Long::max(), Long::max() })
                                      << set(0.4, { 25, 30000, 0, 16, 600 }, { 1 << 30, 600000 });
        QTest::newRow("finer than shown") << set(std::nan(""), { 5, 3999, 7, 4, 60 }, { 2047, 2500 })
                                          << set(0.25, { 5, 3000, 7, 4, 60 }, { 1024, 2000 });
    }

    void untouchedControlsWriteWhatTheyShow()
    {
        QFETCH(Change, stored);
        QFETCH(Change, written);
        ScanOptions options;
        stored(options);
        SettingsDialog dialog(options, {});
        dialog.accept();
        written(options);
        QVERIFY(dialog.options() == options);
    }

    void updateSettingsWaitForAcceptanceButSkipping()
    {
        UpdateSettings().setSkippedVersion(u"2.0"_s);
        SettingsDialog dialog(ScanOptions(), {});
        QWidget *stopSkipping = control(dialog, u"Stop skipping version 2.0"_s);
        QVERIFY(!stopSkipping->isHidden());
        click(dialog, u"Stop skipping version 2.0"_s);
        QVERIFY(stopSkipping->isHidden());
        click(dialog, u"Check for updates when Echoprune starts"_s);
        control(dialog, u"Update service:"_s)->setProperty("text", u"  https://updates.example/  "_s);
        dialog.reject();
        QVERIFY(QSettings().allKeys().isEmpty());
        QVERIFY(control(SettingsDialog(ScanOptions(), {}), u"Stop skipping version "_s)->isHidden());
        dialog.accept();
        QVERIFY(!SettingsStore().checkForUpdatesOnStartup());
        QCOMPARE(QSettings().value(u"updates/url"_s).toString(), u"https://updates.example/"_s);
    }

    void statusIsShown()
    {
        SettingsDialog dialog(ScanOptions(), { u"/opt/<b>/fpcalc"_s, { true, 12, 3 << 19 } });
        QCOMPARE(status(dialog, u"Fingerprint engine:"_s),
                 u"Chromaprint fpcalc — fast path active.\n/opt/<b>/fpcalc"_s);
        QCOMPARE(status(dialog, u"Cache status:"_s), u"12 files cached, using 1.50 MB."_s);
        dialog.setCacheStatus({});
        QCOMPARE(status(dialog, u"Cache status:"_s), u"Cache unavailable."_s);
        connect(&dialog, &SettingsDialog::clearCacheRequested, &dialog, &SettingsDialog::showCacheCleared);
        click(dialog, u"Clear cache"_s);
        QVERIFY(status(dialog, u"Cache status:"_s).startsWith(u"Cache cleared."_s));
    }

    void keyboardWalksDownThePage_data()
    {
        QTest::addColumn<int>("stops");
        QTest::newRow("Detection") << 8;
        QTest::newRow("Files") << 6;
        QTest::newRow("Performance") << 4;
        QTest::newRow("Updates") << 3;
    }

    void keyboardWalksDownThePage()
    {
        QFETCH(int, stops);
        UpdateSettings().setSkippedVersion(u"2.0&c"_s);
        SettingsDialog dialog(ScanOptions(), {});
        auto *tabs = dialog.findChild<QTabWidget *>();
        for (int page = 0; page < tabs->count(); ++page) {
            if (tabs->tabText(page) == QString::fromLatin1(QTest::currentDataTag()))
                tabs->setCurrentIndex(page);
        }
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));

        // From the tab bar, Tab visits each control of the page once, downwards, and then the dialog's buttons.
        tabs->setFocus();
        for (int stop = 0, lastY = 0; stop < stops; ++stop) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QVERIFY(tabs->currentWidget()->isAncestorOf(QApplication::focusWidget()));
            const int y = QApplication::focusWidget()->mapTo(&dialog, QPoint()).y();
            QVERIFY(y > lastY);
            lastY = y;
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(dialog.findChild<QDialogButtonBox *>()->isAncestorOf(QApplication::focusWidget()));

        QSet<QKeySequence> keys; // every stop has one of its own
        for (const QWidget *widget : tabs->currentWidget()->findChildren<QWidget *>()) {
            if (!widget->inherits("QLineEdit"))
                keys << QKeySequence::mnemonic(widget->property("text").toString());
        }
        keys.remove({});
        QCOMPARE(keys.size(), stops);
    }

private:
    QTemporaryDir m_store;
};

QTEST_MAIN(TestSettingsDialog)

#include "tst_settingsdialog.moc"
