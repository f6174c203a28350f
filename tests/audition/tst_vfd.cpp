// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "scrubber.h"

#include <QTest>

using namespace epr;
using namespace epr::vfd;

namespace {

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
