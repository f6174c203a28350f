// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "labels.h"
#include "lamp.h"
#include "levelmeter.h"
#include "panel.h"
#include "scrubber.h"
#include "sevensegment.h"
#include "waveformpaint.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <limits>
#include <numeric>

using namespace epr;
using namespace epr::vfd;
using namespace Qt::StringLiterals;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();
const QColor unlit(17, 51, 46);

// The widget on black, in device pixels.
QImage imageOf(QWidget &widget)
{
    widget.setPalette(QPalette(Qt::black));
    return widget.grab().toImage();
}

QColor pixelAt(const QImage &image, QPointF point)
{
    return image.pixelColor((point * image.devicePixelRatio() - QPointF(0.5, 0.5)).toPoint());
}

QColor middleOf(const QImage &image, Segment segment, const QRectF &box)
{
    const QPolygonF polygon = segmentPolygon(segment, box);
    return pixelAt(image, std::accumulate(polygon.begin(), polygon.end(), QPointF()) / qreal(polygon.size()));
}

bool shines(const QColor &colour)
{
    return colour.lightness() > 100;
}

// The letters of the segments that shine, "?" for one that is neither lit nor as dark as it should be.
QString litLetters(const QImage &image, const QRectF &box)
{
    QString letters;
    for (int i = 0; i < segmentCount; ++i) {
        const QColor pixel = middleOf(image, static_cast<Segment>(i), box);
        if (shines(pixel) || pixel != unlit)
            letters += shines(pixel) ? QChar(u'a' + i) : u'?';
    }
    return letters;
}

// A minute on 601 pixels, which are 100 ms each, and the positions that were asked for.
struct MinuteScrubber {
    explicit MinuteScrubber(int width = 601)
    {
        scrubber.resize(width, 60);
        scrubber.setDurationMs(60'000);
    }

    void sendMouse(QEvent::Type type, qreal x)
    {
        const QPointF point(x, scrubber.height() / 2.0);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, point, scrubber.mapToGlobal(point), button, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&scrubber, &event);
    }

    // After the name of what led to them.
    QString requests(QString cause = {}) const
    {
        for (const QList<QVariant> &arguments : spy)
            cause += u' ' + arguments.first().toString();
        return cause;
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

// Which of the 32 segments of a bar shine, as "#" and "." from left to right.
QString barSketch(LevelMeter &meter, int bar)
{
    const QImage image = imageOf(meter);
    QString runs;
    QColor last;
    for (int x = 0; x < image.width(); ++x) {
        const QColor colour = image.pixelColor(x, image.height() * (2 * bar + 1) / 4);
        if (colour != last && colour.hsvSaturation() > 120 && colour.value() > 20)
            runs += shines(colour) ? u'#' : u'.';
        last = colour;
    }
    return runs.right(32);
}

} // namespace

class TestVfd : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"^(QPainter|QPixmap|QFont(?!Database)|QWidget)"_s)); }

    // Between two full neighbours, whose glow must not make a dark segment look lit.
    void digitsLightTheirSegments()
    {
        // A character and the segments that it lights.
        for (const QString &shape :
             { u"0abcdef"_s, u"1bc"_s, u"2abdeg"_s, u"3abcdg"_s, u"4bcfg"_s, u"5acdfg"_s, u"6acdefg"_s, u"7abc"_s,
               u"8abcdefg"_s, u"9abcdfg"_s, u"-g"_s, u"_d"_s, u" "_s, u"A"_s, u"/"_s, u";"_s }) {
            SevenSegment display;
            display.setText(u'8' + shape.first(1) + u'8');
            display.resize(240, 108);
            const QList<DigitCell> cells = digitCells(display.text(), display.digitArea());
            QCOMPARE(cells.size(), 3);
            const QImage image = imageOf(display);
            QCOMPARE(shape.first(1) + litLetters(image, cells.at(1).box), shape);
            QCOMPARE(litLetters(image, cells.at(2).box), u"abcdefg"_s);
        }
    }

    void dotsReplaceTheSegments()
    {
        for (const auto &[text, dots] : { std::pair(u"1:2"_s, 2), std::pair(u"1.2"_s, 1) }) {
            SevenSegment display;
            display.setText(text);
            display.setDim(true); // without glow
            display.resize(240, 108);
            const QList<DigitCell> cells = digitCells(text, display.digitArea());
            const QImage image = imageOf(display);
            const QList<QRectF> boxes = dotBoxes(cells.at(1).character, cells.at(1).box);
            QCOMPARE(boxes.size(), dots);
            for (const QRectF &box : boxes) {
                QVERIFY(shines(pixelAt(image, box.center())));
                QCOMPARE(pixelAt(image, box.topLeft() + QPointF(0.5, 0.5)), QColor(Qt::black)); // it is round
            }
            QCOMPARE(middleOf(image, Segment::Top, cells.at(1).box), QColor(Qt::black));
            const int dimGreen = middleOf(image, Segment::Middle, cells.at(0).box).green();
            QVERIFY(dimGreen > 0 && dimGreen < unlit.green() / 2); // a dark segment is darker where all is dim
        }
    }

    void digitsFitTheirArea()
    {
        for (const QSizeF size : { QSizeF(800, 40), QSizeF(50, 100), QSizeF(0, 40), QSizeF(-8, -8) }) {
            const QRectF area(QPointF(4, 4), size);
            const QList<DigitCell> cells = digitCells(u"-8888.8"_s, area);
            QCOMPARE(cells.isEmpty(), size.isEmpty());
            for (int i = 0; !cells.isEmpty() && i < segmentCount; ++i) {
                for (const QRectF &box : { cells.constFirst().box, cells.constLast().box })
                    QVERIFY(area.contains(segmentPolygon(static_cast<Segment>(i), box).boundingRect()));
            }
        }
    }

    void clicksBecomePositions()
    {
        const std::tuple<int, qreal, qint64> cases[] = {
            { 601, 0, 0 },        { 601, 1, 100 },         { 601, 1.5, 150 }, { 601, 300, 30'000 },
            { 601, 600, 60'000 }, { 601, 600.75, 60'000 }, { 601, -40, 0 },   { 601, 4'000, 60'000 },
            { 1, 0, 0 },          { 2, 1, 60'000 },
        };
        for (const auto &[width, x, position] : cases) {
            for (const Qt::LayoutDirection direction : { Qt::LeftToRight, Qt::RightToLeft }) {
                MinuteScrubber minute(width);
                minute.scrubber.setLayoutDirection(direction);
                minute.sendMouse(QEvent::MouseButtonPress, x);
                const QString cause = u"%1 of %2:"_s.arg(x).arg(width);
                QCOMPARE(minute.requests(cause), u"%1 %2"_s.arg(cause).arg(position));
                QCOMPARE(minute.scrubber.positionMs(), position);
            }
        }
    }

    void draggingAsksForEveryNewPosition()
    {
        MinuteScrubber minute;
        minute.sendMouse(QEvent::MouseMove, 10); // not pressed yet
        minute.sendMouse(QEvent::MouseButtonPress, 100);
        minute.scrubber.setPositionMs(9'990); // a late report must not pull the cursor from the pointer
        for (const qreal x : { 100.0, 200.0, 200.0, -5.0, -9.0, 900.0 })
            minute.sendMouse(QEvent::MouseMove, x);
        minute.sendMouse(QEvent::MouseButtonRelease, 900);
        minute.sendMouse(QEvent::MouseMove, 300);
        QCOMPARE(minute.requests(), u" 10000 20000 0 60000"_s);
        minute.scrubber.setPositionMs(59'000);
        QCOMPARE(minute.scrubber.positionMs(), 59'000);

        minute.sendMouse(QEvent::MouseButtonPress, 100);
        minute.scrubber.clear(); // which ends the drag
        minute.scrubber.setDurationMs(60'000);
        minute.sendMouse(QEvent::MouseMove, 300);
        QCOMPARE(minute.requests(), u" 10000 20000 0 60000 10000"_s);
    }

    void keysMoveThePosition()
    {
        // Where a key takes the position from and to; nowhere, if it is not for the scrubber.
        for (const QString &story :
             { u"Right 20000 25000"_s, u"Left 20000 15000"_s, u"Shift+Right 20000 21000"_s, u"Shift+Left 20000 19000"_s,
               u"PgUp 20000 50000"_s, u"PgDown 40000 10000"_s, u"Home 20000 0"_s, u"End 20000 60000"_s,
               u"Left 2000 0"_s, u"Right 58000 60000"_s, u"Left 99000 55000"_s, u"Ctrl+Right 20000"_s, u"A 20000"_s }) {
            const QStringList parts = story.split(u' ');
            MinuteScrubber minute;
            minute.scrubber.setPositionMs(parts[1].toInt());
            const QKeyCombination key = QKeySequence(parts[0])[0];
            QKeyEvent event(QEvent::KeyPress, key.key(), key.keyboardModifiers());
            QCoreApplication::sendEvent(&minute.scrubber, &event);
            QCOMPARE(minute.requests(parts[0] + u' ' + parts[1]), story);
            QCOMPARE(event.isAccepted(), parts.size() == 3); // what is not taken goes on to the window
        }
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
            QCOMPARE(minute.requests(), duration == 0 ? QString() : u" 1000 0"_s);
        }
    }

    void scrubberSpeaks()
    {
        MinuteScrubber minute;
        QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(&minute.scrubber);
        minute.scrubber.clear();
        QCOMPARE(reader->text(QAccessible::Value), u"NO SIGNAL"_s);
        minute.scrubber.setAnalysing();
        QCOMPARE(reader->text(QAccessible::Value), u"ANALYSING\u2026"_s);
        minute.scrubber.setEnvelope({});
        minute.scrubber.setDurationMs(36'000'999);
        minute.scrubber.setPositionMs(83'000);
        QCOMPARE(reader->text(QAccessible::Value), u"0:01:23 of 10:00:00"_s);
        reader->valueInterface()->setCurrentValue(50'000'000);
        QCOMPARE(minute.requests(), u" 36000999"_s);
    }

    void columnsShowEveryPeakInItsPlaceAndBounded()
    {
        for (const int buckets : { 1, 7, 600, 60'000 }) {
            for (const int columns : { 1, 599, 600, 601, 3'840 }) {
                for (const int bucket : { 0, buckets / 3, buckets - 1 }) {
                    const QList<float> peaks = columnPeaks(silenceWithPeakAt(bucket, buckets), columns);
                    QCOMPARE(peaks.size(), columns);
                    QVERIFY(peaks.contains(1) && peaks.count(1) <= columns / buckets + 1);
                    const qreal shift = 1.0 * static_cast<int>(peaks.indexOf(1)) / columns - 1.0 * bucket / buckets;
                    QVERIFY(qAbs(shift) <= 1.0 / columns);
                }
            }
        }

        QCOMPARE(columnPeaks({ notANumber, -3, infinite, 7, 0.5F }, 5), QList<float>({ 0, 0, 1, 1, 0.5F }));
        QCOMPARE(columnPeaks({ notANumber, 0.25F }, 1), QList<float> { 0.25F });
        QCOMPARE(columnPeaks({}, 2), QList<float>({ 0, 0 }));
        QCOMPARE(columnPeaks({ 0.5F, 1, 0.25F }, 6, 5), QList<float>({ 0.5F, 0.5F, 1, 0.25F, 0, 0 }));
        QCOMPARE(columnPeaks({ 0.5F, 1, 0.25F }, 2, 6), QList<float>({ 1, 0 }));
        QCOMPARE(columnPeaks({ 1 }, -1), QList<float>());
    }

    // One bucket per device pixel, and one of them loud: it takes one pixel at every ratio, left up and right down.
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
        scrubber.setEnvelope({ { 1, notANumber }, { 1 }, {}, 0 }); // channels of different length
        for (const QSize size : { QSize(1, 40), QSize(40, 1), QSize(0, 0) }) {
            scrubber.resize(size);
            QVERIFY(imageOf(scrubber).width() >= size.width());
        }
    }

    void playedPartIsBrighterAndFollowsTheRatioOfTheWidth()
    {
        MinuteScrubber minute;
        Scrubber &scrubber = minute.scrubber;
        const QList<float> fiftySeconds(1'250, 0.9F);
        scrubber.setEnvelope({ fiftySeconds, fiftySeconds, {}, 0 });
        scrubber.setPositionMs(30'000);
        const auto greenAt = [&](qreal x) { return pixelAt(imageOf(scrubber), { x, 15 }).green(); };
        const int played = greenAt(280);
        const int unplayed = greenAt(320);
        QVERIFY(played > unplayed + 60);
        QCOMPARE(greenAt(490), unplayed);
        QVERIFY(unplayed > greenAt(510) + 30);
        scrubber.setPositionMs(60'000'000); // beyond the end
        QCOMPARE(greenAt(320), played);
        scrubber.resize(301, 60); // drawn anew: half the pixels for the same minute
        scrubber.setPositionMs(30'000);
        QCOMPARE(greenAt(130), played);
        QCOMPARE(greenAt(170), unplayed);
    }

    void labelsAreShortenedOnlyWhereTheyMustBe()
    {
        ElidingLabel label;
        label.setText(u"A <b>LONG</b>\r\nTITLE\nOF A SONG"_s);
        QCOMPARE(label.text(), u"A <b>LONG</b> TITLE OF A SONG"_s);
        label.resize(label.sizeHint());
        QVERIFY(!label.isShortened());
        QVERIFY(label.minimumSizeHint().width() < label.sizeHint().width() / 3);
        const auto askForTip = [&label] {
            QHelpEvent event(QEvent::ToolTip, QPoint(), label.mapToGlobal(QPoint()));
            QCoreApplication::sendEvent(&label, &event);
            return QToolTip::text();
        };
        QCOMPARE(askForTip(), QString());
        label.resize(label.width() - 1, label.height());
        QVERIFY(label.isShortened());
        QVERIFY(askForTip().contains(u"A &lt;b&gt;LONG&lt;/b&gt; TITLE OF A SONG"_s)); // no markup
        QCOMPARE(QAccessible::queryAccessibleInterface(&label)->text(QAccessible::Name),
                 label.text()); // read out in full
        QToolTip::hideText();
    }

    void lampsAnswerTheKeyboardAndTellThatTheyAreLit()
    {
        Lamp lamp(u"LINK"_s);
        lamp.resize(lamp.sizeHint());
        QTest::keyClick(&lamp, Qt::Key_Space);
        QVERIFY(!lamp.isLit()); // its owner decides
        lamp.setToggling(true);
        const QSignalSpy clicks(&lamp, &Lamp::clicked);
        for (const Qt::Key key : { Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter }) {
            QTest::keyClick(&lamp, key);
            QCOMPARE(lamp.isLit(), clicks.size() % 2 == 1);
            QCOMPARE(shines(pixelAt(imageOf(lamp), { lamp.width() / 2.0, 8 })), lamp.isLit());
            QCOMPARE(bool(QAccessible::queryAccessibleInterface(&lamp)->state().checked), lamp.isLit());
        }
        QCOMPARE(clicks.size(), 3);
    }

    void dimmingCoversWhatJoinsLater()
    {
        Panel panel;
        panel.resize(200, 100);
        panel.setDimmed(true);
        Lamp lamp(u"MONITOR"_s, &panel);
        lamp.setGeometry(60, 40, 80, 36);
        lamp.setLit(true);
        panel.show();
        QCOMPARE(panel.childAt(100, 48), &lamp); // the shade lets the mouse through
        const QImage dimmed = imageOf(panel);
        panel.setDimmed(false);
        const QImage bright = imageOf(panel);
        for (const QPointF point : { QPointF(100, 48), QPointF(20, 20) })
            QVERIFY(pixelAt(dimmed, point).green() < pixelAt(bright, point).green() * 3 / 4);
    }

    void levelsRiseAtOnceAndFallByCalls()
    {
        LevelMeter meter;
        meter.resize(meter.sizeHint());
        meter.setLevels(infinite, 0.5F);
        QCOMPARE(barSketch(meter, 0), QString(32, u'#'));
        QCOMPARE(barSketch(meter, 1), QString(16, u'#') + QString(16, u'.'));
        meter.setLevels(0, 0);
        const QString falling = barSketch(meter, 0);
        QVERIFY(falling.startsWith(QString(29, u'#')) && falling.endsWith(u".#")); // the peak is held
        for (int call = 0; call < 200; ++call)
            meter.setLevels(notANumber, -infinite);
        QCOMPARE(barSketch(meter, 0), QString(32, u'.'));
        meter.setLevels(1, 1);
        meter.reset();
        QCOMPARE(barSketch(meter, 1), QString(32, u'.'));
    }
};

QTEST_MAIN(TestVfd)

#include "tst_vfd.moc"
