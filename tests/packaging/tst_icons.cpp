// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "startup.h"

#include <QIcon>
#include <QTest>

using namespace Qt::StringLiterals;

/// The rendered images are committed: one that is missing or has another size would only be seen as a blurred icon.
class TestIcons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { epr::startup::loadResources(); }

    void drawsEverySizeWithoutScaling_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : { 16, 20, 24, 32, 40, 48, 64, 128, 256 })
            QTest::addRow("%d pixels", size) << size;
    }

    void drawsEverySizeWithoutScaling()
    {
        QFETCH(const int, size);
        const QString file = size == 256 ? u":/icons/appicon.png"_s : u":/icons/appicon-%1.png"_s.arg(size);
        const QImage rendering(file);
        QCOMPARE(rendering.size(), QSize(size, size));
        const QImage shown = epr::startup::applicationIcon().pixmap(QSize(size, size), 1.0).toImage();
        constexpr QImage::Format format = QImage::Format_ARGB32_Premultiplied; // what a pixmap stores
        QCOMPARE(shown.convertToFormat(format), rendering.convertToFormat(format));
    }

    void theLogoIsSharpAtTwiceItsSize()
    {
        const QSize logo = QImage(u":/icons/logo.png"_s).size();
        QVERIFY2(logo.width() >= 800 || logo.height() >= 140, "it is shown in 400 by 70");
    }
};

QTEST_MAIN(TestIcons)
#include "tst_icons.moc"
