// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scrubber.h"

#include <QMouseEvent>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace epr;
using namespace epr::vfd;
using namespace Qt::StringLiterals;

namespace {

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

    void keysMoveThePosition()
    {
        using Row = std::tuple<QKeyCombination, int, QString>;
        for (const auto &[key, from, to] :
             { Row(Qt::Key_Right, 20000, u"25000"_s), Row(Qt::Key_Left, 2000, u"0"_s),
               Row(Qt::SHIFT | Qt::Key_Right, 20000, u"21000"_s), Row(Qt::Key_PageUp, 20000, u"50000"_s),
               Row(Qt::Key_PageDown, 40000, u"10000"_s), Row(Qt::Key_End, 20000, u"60000"_s),
               Row(Qt::Key_Right, 58000, u"60000"_s), Row(Qt::CTRL | Qt::Key_Right, 20000, QString()) }) {
            MinuteScrubber minute;
            minute.scrubber.setPositionMs(from);
            QKeyEvent event(QEvent::KeyPress, key.key(), key.keyboardModifiers());
            QCoreApplication::sendEvent(&minute.scrubber, &event);
            QCOMPARE(minute.requests(), to);
            QCOMPARE(event.isAccepted(), !to.isEmpty()); // what is not taken goes on to the window
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
};

QTEST_MAIN(TestVfd)

#include "tst_vfd.moc"
