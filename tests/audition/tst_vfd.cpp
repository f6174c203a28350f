// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "badge.h"
#include "columnpeaks.h"
#include "elidinglabel.h"
#include "lamp.h"
#include "levelmeter.h"
#include "panel.h"
#include "scrubber.h"
#include "segmentgeometry.h"
#include "sevensegment.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <limits>
#include <memory>
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
    QPalette palette = widget.palette();
    palette.setColor(QPalette::Window, Qt::black);
    widget.setPalette(palette);
    return widget.grab().toImage();
}

QColor pixelAt(const QImage &image, QPointF point)
{
    point *= image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(point.x()), static_cast<int>(point.y()));
}

QPointF middleOf(const QPolygonF &polygon)
{
    return std::accumulate(polygon.begin(), polygon.end(), QPointF()) / static_cast<qreal>(polygon.size());
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
        const QColor pixel = pixelAt(image, middleOf(segmentPolygon(static_cast<Segment>(i), box)));
        if (shines(pixel))
            letters += QChar(u'a' + i);
        else if (pixel != unlit)
            letters += u'?';
    }
    return letters;
}

// A minute on 601 pixels: 100 ms each.
std::unique_ptr<Scrubber> minuteScrubber(int width = 601)
{
    auto scrubber = std::make_unique<Scrubber>();
    scrubber->resize(width, 60);
    scrubber->setAnalysing();
    scrubber->setDurationMs(60'000);
    return scrubber;
}

void sendMouse(QWidget &widget, QEvent::Type type, qreal x)
{
    const QPointF point(x, widget.height() / 2.0);
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, point, widget.mapToGlobal(point), button, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

QList<qint64> requestsIn(const QSignalSpy &spy)
{
    QList<qint64> positions;
    for (const QList<QVariant> &arguments : spy)
        positions << arguments.first().toLongLong();
    return positions;
}

QAccessibleInterface *accessible(QWidget &widget)
{
    return QAccessible::queryAccessibleInterface(&widget);
}

QList<float> silenceWithPeakAt(qsizetype bucket, qsizetype buckets)
{
    QList<float> values(buckets, 0.0F);
    values[bucket] = 1;
    return values;
}

// Which segments of a bar shine, as "#" and "." from left to right.
QString barSketch(LevelMeter &meter, int bar)
{
    constexpr int segments = 32;
    const QImage image = imageOf(meter);
    const int y = image.height() * (2 * bar + 1) / 4;
    QString runs;
    QRgb last = 0;
    for (int x = 0; x < image.width(); ++x) {
        const QRgb pixel = image.pixel(x, y);
        const QColor colour(pixel);
        const bool isSegment = colour.hsvSaturation() > 120 && colour.value() > 20;
        if (isSegment && pixel != last)
            runs += shines(colour) ? u'#' : u'.';
        last = pixel;
    }
    return runs.right(segments);
}

} // namespace

class TestVfd : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"^(QPainter|QPixmap|QFont|QWidget)"_s)); }

    void digitsLightTheirSegments_data()
    {
        QTest::addColumn<QString>("letters");
        const char *const table[][2] = { { "-", "g" },     { "0", "abcdef" },  { "1", "bc" },     { "2", "abdeg" },
                                         { "3", "abcdg" }, { "4", "bcfg" },    { "5", "acdfg" },  { "6", "acdefg" },
                                         { "7", "abc" },   { "8", "abcdefg" }, { "9", "abcdfg" }, { "_", "d" },
                                         { " ", "" },      { "A", "" },        { "/", "" },       { ";", "" } };
        for (const auto &row : table)
            QTest::newRow(row[0]) << QString::fromLatin1(row[1]);
    }

    // Between two full neighbours, whose glow must not make a dark segment look lit.
    void digitsLightTheirSegments()
    {
        QFETCH(QString, letters);
        SevenSegment display;
        display.setText(u'8' + QString::fromLatin1(QTest::currentDataTag()) + u'8');
        display.resize(240, 108);
        const QList<DigitCell> cells = digitCells(display.text(), display.digitArea());
        QCOMPARE(cells.size(), 3);
        const QImage image = imageOf(display);
        QCOMPARE(litLetters(image, cells.at(1).box), letters);
        QCOMPARE(litLetters(image, cells.at(2).box), u"abcdefg"_s);
    }

    void dotsReplaceTheSegments_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("dots");
        QTest::newRow("colon") << u"1:2"_s << 2;
        QTest::newRow("full stop") << u"1.2"_s << 1;
    }

    void dotsReplaceTheSegments()
    {
        QFETCH(QString, text);
        QFETCH(int, dots);
        SevenSegment display;
        display.setText(text);
        display.setDim(true); // without glow
        display.resize(240, 108);
        const DigitCell cell = digitCells(text, display.digitArea()).at(1);
        const QImage image = imageOf(display);
        const QList<QRectF> boxes = dotBoxes(cell.character, cell.box);
        QCOMPARE(boxes.size(), dots);
        for (const QRectF &box : boxes) {
            QVERIFY(shines(pixelAt(image, box.center())));
            QCOMPARE(pixelAt(image, box.topLeft() + QPointF(0.5, 0.5)), QColor(Qt::black)); // it is round
        }
        for (const Segment segment : { Segment::Top, Segment::Middle })
            QCOMPARE(pixelAt(image, middleOf(segmentPolygon(segment, cell.box))), QColor(Qt::black));
    }

    void dimDigitsHaveFainterDarkSegments()
    {
        SevenSegment display;
        QCOMPARE(display.text(), u"0:00:00"_s);
        display.resize(display.sizeHint() * 3);
        const QRectF box = digitCells(display.text(), display.digitArea()).constFirst().box;
        const QPointF middle = middleOf(segmentPolygon(Segment::Middle, box));
        QCOMPARE(pixelAt(imageOf(display), middle), unlit);
        display.setDim(true);
        const QColor faint = pixelAt(imageOf(display), middle);
        QVERIFY(qAbs(faint.green() - 51 * 120 / 255) <= 1 && qAbs(faint.blue() - 46 * 120 / 255) <= 1);
    }

    void digitsFitTheirArea_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::newRow("as wide as needed") << QSizeF(800, 40);
        QTest::newRow("too narrow") << QSizeF(50, 100);
        QTest::newRow("one pixel") << QSizeF(1, 1);
        QTest::newRow("no width") << QSizeF(0, 40);
        QTest::newRow("less than nothing") << QSizeF(-8, -8);
    }

    void digitsFitTheirArea()
    {
        QFETCH(QSizeF, size);
        const QRectF area(QPointF(4, 4), size);
        const QList<DigitCell> cells = digitCells(u"-0:04:05.7"_s, area);
        QCOMPARE(cells.isEmpty(), size.isEmpty());
        for (const DigitCell &cell : cells) {
            for (int i = 0; i < segmentCount && dotBoxes(cell.character, cell.box).isEmpty(); ++i) {
                const QRectF bounds = segmentPolygon(static_cast<Segment>(i), cell.box).boundingRect();
                QVERIFY(area.adjusted(-0.01, -0.01, 0.01, 0.01).contains(bounds));
            }
        }
    }

    void clicksBecomePositions_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<qreal>("x");
        QTest::addColumn<qint64>("position");
        QTest::newRow("left edge") << 601 << 0.0 << qint64 { 0 };
        QTest::newRow("first pixel") << 601 << 1.0 << qint64 { 100 };
        QTest::newRow("between pixels") << 601 << 1.5 << qint64 { 150 };
        QTest::newRow("middle") << 601 << 300.0 << qint64 { 30'000 };
        QTest::newRow("right edge") << 601 << 600.0 << qint64 { 60'000 };
        QTest::newRow("last part of the last pixel") << 601 << 600.75 << qint64 { 60'000 };
        QTest::newRow("left of it") << 601 << -40.0 << qint64 { 0 };
        QTest::newRow("right of it") << 601 << 4000.0 << qint64 { 60'000 };
        QTest::newRow("one pixel wide") << 1 << 0.0 << qint64 { 0 };
        QTest::newRow("two pixels wide") << 2 << 1.0 << qint64 { 60'000 };
    }

    void clicksBecomePositions()
    {
        QFETCH(int, width);
        QFETCH(qreal, x);
        QFETCH(qint64, position);
        for (const Qt::LayoutDirection direction : { Qt::LeftToRight, Qt::RightToLeft }) {
            const auto scrubber = minuteScrubber(width);
            scrubber->setLayoutDirection(direction);
            scrubber->setPositionMs(12'345);
            const QSignalSpy spy(scrubber.get(), &Scrubber::seekRequested);
            sendMouse(*scrubber, QEvent::MouseButtonPress, x);
            QCOMPARE(requestsIn(spy), QList<qint64> { position });
            QCOMPARE(scrubber->positionMs(), position);
        }
    }

    void draggingAsksForEveryNewPosition()
    {
        const auto scrubber = minuteScrubber();
        const QSignalSpy spy(scrubber.get(), &Scrubber::seekRequested);
        sendMouse(*scrubber, QEvent::MouseMove, 10); // not pressed yet
        sendMouse(*scrubber, QEvent::MouseButtonPress, 100);
        scrubber->setPositionMs(9'990); // a late report must not pull the cursor from the pointer
        for (const qreal x : { 100.0, 200.0, 200.0, -5.0, -9.0, 900.0 })
            sendMouse(*scrubber, QEvent::MouseMove, x);
        sendMouse(*scrubber, QEvent::MouseButtonRelease, 900);
        sendMouse(*scrubber, QEvent::MouseMove, 300);
        QCOMPARE(requestsIn(spy), QList<qint64>({ 10'000, 20'000, 0, 60'000 }));
        scrubber->setPositionMs(59'000);
        QCOMPARE(scrubber->positionMs(), 59'000);
    }

    void clearingEndsTheDrag()
    {
        const auto scrubber = minuteScrubber();
        sendMouse(*scrubber, QEvent::MouseButtonPress, 100);
        scrubber->clear();
        scrubber->setDurationMs(60'000);
        const QSignalSpy spy(scrubber.get(), &Scrubber::seekRequested);
        sendMouse(*scrubber, QEvent::MouseMove, 300);
        QCOMPARE(spy.size(), 0);
    }

    void keysMoveThePosition_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<qint64>("from");
        QTest::addColumn<qint64>("to"); // below 0 = the key is not for the scrubber
        const Qt::KeyboardModifiers none = Qt::NoModifier;
        const Qt::KeyboardModifiers shift = Qt::ShiftModifier;
        const Qt::KeyboardModifiers control = Qt::ControlModifier;
        QTest::newRow("right") << Qt::Key_Right << none << qint64 { 20'000 } << qint64 { 25'000 };
        QTest::newRow("left") << Qt::Key_Left << none << qint64 { 20'000 } << qint64 { 15'000 };
        QTest::newRow("fine right") << Qt::Key_Right << shift << qint64 { 20'000 } << qint64 { 21'000 };
        QTest::newRow("fine left") << Qt::Key_Left << shift << qint64 { 20'000 } << qint64 { 19'000 };
        QTest::newRow("page up") << Qt::Key_PageUp << none << qint64 { 20'000 } << qint64 { 50'000 };
        QTest::newRow("page down") << Qt::Key_PageDown << none << qint64 { 40'000 } << qint64 { 10'000 };
        QTest::newRow("home") << Qt::Key_Home << none << qint64 { 20'000 } << qint64 { 0 };
        QTest::newRow("end") << Qt::Key_End << none << qint64 { 20'000 } << qint64 { 60'000 };
        QTest::newRow("left at the start") << Qt::Key_Left << none << qint64 { 2'000 } << qint64 { 0 };
        QTest::newRow("right at the end") << Qt::Key_Right << none << qint64 { 58'000 } << qint64 { 60'000 };
        QTest::newRow("from beyond the end") << Qt::Key_Left << none << qint64 { 99'000 } << qint64 { 55'000 };
        QTest::newRow("shortcut") << Qt::Key_Right << control << qint64 { 20'000 } << qint64 { -1 };
        QTest::newRow("deck key") << Qt::Key_A << none << qint64 { 20'000 } << qint64 { -1 };
    }

    void keysMoveThePosition()
    {
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(qint64, from);
        QFETCH(qint64, to);
        const auto scrubber = minuteScrubber();
        scrubber->setPositionMs(from);
        const QSignalSpy spy(scrubber.get(), &Scrubber::seekRequested);
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(scrubber.get(), &event);
        QCOMPARE(requestsIn(spy), to < 0 ? QList<qint64>() : QList<qint64> { to });
        QCOMPARE(event.isAccepted(), to >= 0); // what is not taken goes on to the window
    }

    void withoutADurationAClickBelongsToTheDeck()
    {
        Panel panel;
        auto *scrubber = new Scrubber(&panel);
        panel.resize(200, 100);
        scrubber->setGeometry(0, 0, 200, 50);
        panel.show();
        const QSignalSpy panelSpy(&panel, &Panel::clicked);
        const QSignalSpy seekSpy(scrubber, &Scrubber::seekRequested);
        QTest::mouseClick(scrubber, Qt::LeftButton, {}, QPoint(100, 20));
        QTest::keyClick(scrubber, Qt::Key_End);
        QCOMPARE(panelSpy.size(), 1);
        QCOMPARE(seekSpy.size(), 0);
        scrubber->setDurationMs(1'000);
        QTest::mouseClick(scrubber, Qt::LeftButton, {}, QPoint(199, 20));
        QCOMPARE(panelSpy.size(), 1);
        QCOMPARE(requestsIn(seekSpy), QList<qint64> { 1'000 });
    }

    void scrubberSpeaks()
    {
        Scrubber scrubber;
        QAccessibleInterface *reader = accessible(scrubber);
        QCOMPARE(reader->role(), QAccessible::Slider);
        QCOMPARE(reader->text(QAccessible::Value), u"NO SIGNAL"_s);
        scrubber.setAnalysing();
        QCOMPARE(reader->text(QAccessible::Value), u"ANALYSING\u2026"_s);
        scrubber.setEnvelope({});
        scrubber.setDurationMs(245'999);
        scrubber.setPositionMs(83'000);
        QCOMPARE(reader->text(QAccessible::Value), u"0:01:23 of 0:04:05"_s);
        const QSignalSpy spy(&scrubber, &Scrubber::seekRequested);
        reader->valueInterface()->setCurrentValue(500'000);
        QCOMPARE(requestsIn(spy), QList<qint64> { 245'999 });
        scrubber.setDurationMs(36'000'000);
        scrubber.setPositionMs(35'999'000);
        QCOMPARE(scrubber.valueText(), u"9:59:59 of 10:00:00"_s);
        scrubber.clear();
        QCOMPARE(scrubber.valueText(), u"NO SIGNAL"_s);
        QCOMPARE(scrubber.positionMs(), 0);
    }

    void noPeakIsLostAtAnyWidth()
    {
        for (const int buckets : { 1, 2, 7, 600, 60'000 }) {
            for (const int columns : { 1, 2, 599, 600, 601, 3'840 }) {
                for (const int bucket : { 0, buckets / 3, buckets / 2, buckets - 1 }) {
                    const QList<float> peaks = columnPeaks(silenceWithPeakAt(bucket, buckets), columns);
                    QCOMPARE(peaks.size(), columns);
                    const auto lit = peaks.count(1);
                    QVERIFY2(lit >= 1 && lit <= columns / buckets + 1, qPrintable(u"%1 of %2"_s.arg(lit).arg(columns)));
                    const qreal shift = 1.0 * static_cast<int>(peaks.indexOf(1)) / columns - 1.0 * bucket / buckets;
                    QVERIFY(qAbs(shift) <= 1.0 / columns); // and it stands in its place
                }
            }
        }
    }

    void columnsAreBounded()
    {
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
        scrubber.setEnvelope({});
        QImage image = imageOf(scrubber);
        QCOMPARE(image.width(), qRound(200 * scrubber.devicePixelRatioF()));
        const int loud = image.width() / 4 + 3;
        const int loudRight = loud + 9;
        Envelope envelope;
        envelope.left = silenceWithPeakAt(loud, image.width());
        envelope.right = silenceWithPeakAt(loudRight, image.width());
        scrubber.setEnvelope(envelope);
        image = imageOf(scrubber);
        const auto brightPixelsIn = [&image, loud](int y) {
            QList<int> bright;
            for (int x = loud - 5; x < loud + 15; ++x) {
                if (image.pixelColor(x, y).green() > 50)
                    bright << x;
            }
            return bright;
        };
        QCOMPARE(brightPixelsIn(image.height() / 4), QList<int> { loud });
        QCOMPARE(brightPixelsIn(image.height() * 3 / 4), QList<int> { loudRight });
    }

    void playedPartIsBrighterAndFollowsTheRatioOfTheWidth()
    {
        const auto scrubber = minuteScrubber();
        Envelope envelope;
        envelope.left.fill(0.9F, 1'250); // the first 50 s
        envelope.right = envelope.left;
        scrubber->setEnvelope(envelope);
        scrubber->setPositionMs(30'000);
        const auto greenAt = [&](qreal x) { return pixelAt(imageOf(*scrubber), { x, 15 }).green(); };
        const int played = greenAt(280);
        const int unplayed = greenAt(320);
        QVERIFY(played > unplayed + 60);
        QCOMPARE(greenAt(490), unplayed);
        QVERIFY(unplayed > greenAt(510) + 30);
        scrubber->setPositionMs(60'000'000); // beyond the end
        QCOMPARE(greenAt(320), played);
        scrubber->setPositionMs(-5);
        QCOMPARE(greenAt(280), unplayed);
        scrubber->resize(301, 60); // drawn anew: half the pixels for the same minute
        scrubber->setPositionMs(30'000);
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
        QCOMPARE(accessible(label)->text(QAccessible::Name), label.text()); // read out in full
        QToolTip::hideText();
    }

    void lampsAnswerTheKeyboard_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("space") << Qt::Key_Space;
        QTest::newRow("return") << Qt::Key_Return;
        QTest::newRow("enter") << Qt::Key_Enter;
    }

    void lampsAnswerTheKeyboard()
    {
        QFETCH(Qt::Key, key);
        Lamp lamp(u"LINK"_s);
        const QSignalSpy clicks(&lamp, &Lamp::clicked);
        const QSignalSpy changes(&lamp, &Lamp::toggled);
        QTest::keyClick(&lamp, key);
        QCOMPARE(clicks.size(), 1);
        QVERIFY(!lamp.isLit()); // its owner decides
        lamp.setToggling(true);
        QTest::keyClick(&lamp, key);
        QVERIFY(lamp.isLit());
        lamp.setLit(false);
        QCOMPARE(clicks.size(), 2);
        QCOMPARE(changes.size(), 2);
    }

    void lampsShowAndTellThatTheyAreLit()
    {
        Lamp lamp(u"PLAY"_s);
        lamp.resize(lamp.sizeHint());
        const QPointF light(lamp.width() / 2.0, 8);
        QVERIFY(!shines(pixelAt(imageOf(lamp), light)));
        QVERIFY(!accessible(lamp)->state().checked);
        lamp.setLit(true);
        QVERIFY(shines(pixelAt(imageOf(lamp), light)));
        QVERIFY(accessible(lamp)->state().checked);
        lamp.setCaption(u"PAUSE"_s);
        QCOMPARE(accessible(lamp)->text(QAccessible::Name), u"PAUSE"_s);
    }

    void dimmingCoversWhatJoinsLater()
    {
        Panel panel;
        panel.resize(200, 100);
        panel.setDimmed(true);
        auto *lamp = new Lamp(u"MONITOR"_s, &panel);
        lamp->setGeometry(60, 40, 80, 36);
        lamp->setLit(true);
        panel.show();
        const QImage dimmed = imageOf(panel);
        panel.setDimmed(false);
        const QImage bright = imageOf(panel);
        for (const QPointF point : { QPointF(100, 48), QPointF(20, 20) })
            QVERIFY(pixelAt(dimmed, point).green() < pixelAt(bright, point).green() * 3 / 4);
        panel.setDimmed(true);
        QCOMPARE(panel.childAt(100, 48), lamp); // the shade lets the mouse through
    }

    void levelsRiseAtOnceAndFallByCalls()
    {
        LevelMeter meter;
        meter.resize(meter.sizeHint());
        meter.setLevels(1, 0.5F);
        QCOMPARE(barSketch(meter, 0), QString(32, u'#'));
        QCOMPARE(barSketch(meter, 1), QString(16, u'#') + QString(16, u'.'));
        meter.setLevels(0, 0);
        const QString falling = barSketch(meter, 0);
        QVERIFY(falling.startsWith(QString(29, u'#')) && falling.contains(u'.') && falling.endsWith(u'#')); // held peak
        for (int call = 0; call < 200; ++call)
            meter.setLevels(notANumber, -infinite);
        QCOMPARE(barSketch(meter, 0), QString(32, u'.'));
        meter.setLevels(infinite, 5);
        QCOMPARE(barSketch(meter, 1), QString(32, u'#'));
        meter.reset();
        QCOMPARE(barSketch(meter, 1), QString(32, u'.'));
    }

    void tinyWidgetsPaint()
    {
        SevenSegment digits;
        Scrubber scrubber;
        scrubber.setEnvelope({ { 1, notANumber }, { 1 }, {}, 0 }); // channels of different length
        scrubber.setDurationMs(1);
        LevelMeter meter;
        meter.setLevels(1, 1);
        Panel panel;
        Lamp lamp(u"PLAY"_s);
        Badge badge;
        badge.setText(u"FLAC"_s);
        for (QWidget *widget : std::initializer_list<QWidget *> { &digits, &scrubber, &meter, &panel, &lamp, &badge }) {
            for (const QSize size : { QSize(1, 1), QSize(1, 40), QSize(40, 1), QSize(9, 9), QSize(0, 0) }) {
                widget->resize(size);
                const QSizeF expected = QSizeF(size) * widget->devicePixelRatioF();
                QVERIFY(qAbs(imageOf(*widget).width() - expected.width()) < 1);
            }
        }
    }
};

QTEST_MAIN(TestVfd)

#include "tst_vfd.moc"
