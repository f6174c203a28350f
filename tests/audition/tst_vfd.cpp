// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "panel.h"
#include "scrubber.h"

#include <QMouseEvent>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace epr;
using namespace epr::vfd;
using namespace Qt::StringLiterals;

namespace {

// The widget on black, in device pixels.
QImage imageOf(QWidget &widget)
{
    widget.setPalette(QPalette(Qt::black));
    return widget.grab().toImage();
}

// A minute on 601 pixels, which are 100 ms each, and the positions that were
// asked for.
struct MinuteScrubber {
    MinuteScrubber()
    {
        scrubber.resize(601, 60);
        scrubber.setDurationMs(60'000);
    }

    void sendMouse(QEvent::Type type, qreal x)
    {
        const QPointF point(x, scrubber.height() / 2.0);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, point, scrubber.mapToGlobal(point), button, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&scrubber, &event);
    }

    QString requests() const
    {
        QStringList positions;
        for (const QList<QVariant> &arguments : spy)
            positions << arguments.first().toString();
        return positions.join(u' ');
    }

    Scrubber scrubber;
    QSignalSpy spy { &scrubber, &Scrubber::seekRequested };
};

QList<float> silenceWithPeakAt(qsizetype bucket, qsizetype buckets)
{
    QList<float> values(buckets, 0.0F);
    values[bucket] = 1;
    return values;
}

} // namespace

class TestVfd : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"^(QPainter|QPixmap|QFont(?!Database)|QWidget)"_s)); }

    void draggingAsksForEveryNewPosition()
    {
        MinuteScrubber minute;
        minute.sendMouse(QEvent::MouseMove, 10); // not pressed yet
        minute.sendMouse(QEvent::MouseButtonPress, 100);
        minute.scrubber.setPositionMs(9'990); // a late report must not pull the cursor from the pointer
        for (const qreal x : { 100.0, 200.0, 200.0, -5.0, -9.0, 1.5, 900.0 })
            minute.sendMouse(QEvent::MouseMove, x);
        minute.sendMouse(QEvent::MouseButtonRelease, 900);
        minute.sendMouse(QEvent::MouseMove, 300);
        QCOMPARE(minute.requests(), u"10000 20000 0 150 60000"_s);
        minute.scrubber.setPositionMs(59'000);
        QCOMPARE(minute.scrubber.positionMs(), 59'000);
    }

    void keysMoveThePosition_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<QString>("to"); // nowhere, if the key is not for the scrubber
        for (const char *row :
             { "Right 20000 25000", "Left 2000 0", "Shift+Right 20000 21000", "Shift+Left 20000 19000",
               "PgUp 20000 50000", "PgDown 40000 10000", "End 20000 60000", "Right 58000 60000", "Ctrl+Right 20000" }) {
            const QStringList parts = QString::fromLatin1(row).split(u' ');
            QTest::newRow(row) << parts[1].toInt() << parts.value(2);
        }
    }

    void keysMoveThePosition()
    {
        QFETCH(const int, from);
        QFETCH(const QString, to);
        MinuteScrubber minute;
        minute.scrubber.setPositionMs(from);
        const QKeyCombination key = QKeySequence(QString::fromLatin1(QTest::currentDataTag()).section(u' ', 0, 0))[0];
        QKeyEvent event(QEvent::KeyPress, key.key(), key.keyboardModifiers());
        QCoreApplication::sendEvent(&minute.scrubber, &event);
        QCOMPARE(minute.requests(), to);
        QCOMPARE(event.isAccepted(), !to.isEmpty()); // what is not taken goes on to the window
    }

    void withoutADurationAClickBelongsToTheDeck()
    {
        Panel panel;
        const QSignalSpy clicks(&panel, &Panel::clicked);
        MinuteScrubber minute;
        minute.scrubber.setParent(&panel);
        panel.show();
        for (const qint64 duration : { 0, 1'000 }) {
            minute.scrubber.setDurationMs(duration);
            QTest::mouseClick(&minute.scrubber, Qt::LeftButton, {}, QPoint(600, 20));
            QTest::keyClick(&minute.scrubber, Qt::Key_Home);
            QCOMPARE(clicks.size(), 1);
            QCOMPARE(minute.requests(), duration == 0 ? QString() : u"1000 0"_s);
        }
    }

    void columnsShowEveryPeakInItsPlace()
    {
        for (const int buckets : { 1, 7, 600, 60'000 }) {
            for (const int columns : { 1, 599, 600, 601, 3'840 }) {
                const int bucket = buckets * 2 / 3;
                const QList<float> peaks = columnPeaks(silenceWithPeakAt(bucket, buckets), columns);
                QCOMPARE(peaks.size(), columns);
                QVERIFY(peaks.contains(1) && peaks.count(1) <= columns / buckets + 1);
                const qreal shift = 1.0 * static_cast<int>(peaks.indexOf(1)) / columns - 1.0 * bucket / buckets;
                QVERIFY(qAbs(shift) <= 1.0 / columns);
            }
        }
    }

    // One bucket per device pixel, and one of them loud: it takes one pixel at
    // every ratio, left up and right down.
    void waveformHasDevicePixels()
    {
        Scrubber scrubber;
        scrubber.resize(200, 60);
        const int width = imageOf(scrubber).width();
        QCOMPARE(width, qRound(200 * scrubber.devicePixelRatioF()));
        const int loud = width / 4 + 3;
        scrubber.setEnvelope({ silenceWithPeakAt(loud, width), silenceWithPeakAt(loud + 9, width), {}, 0 });
        const QImage image = imageOf(scrubber);
        for (int x = loud - 5; x < loud + 15; ++x) {
            QCOMPARE(image.pixelColor(x, image.height() / 4).green() > 50, x == loud);
            QCOMPARE(image.pixelColor(x, image.height() * 3 / 4).green() > 50, x == loud + 9);
        }
    }
};

QTEST_MAIN(TestVfd)

#include "tst_vfd.moc"
