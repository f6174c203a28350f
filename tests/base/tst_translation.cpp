// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "application.h"
#include "progress.h"

#include <QLocale>
#include <QTest>

using namespace Qt::StringLiterals;

class TestTranslation : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // In a language that nobody has translated yet, so the English catalogue must step in.
    void pluralsAreEnglish()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        epr::translation::install();
        for (const auto &[minutes, words] :
             { std::pair(1, u"about 1 minute left"_s), { 2, u"about 2 minutes left"_s } }) {
            epr::ProgressEstimate estimate;
            estimate.add(0, 20 + minutes * 600, 0);
            estimate.add(20, 20 + minutes * 600, 2000);
            QVERIFY2(estimate.text().endsWith(words), qUtf8Printable(estimate.text()));
        }
    }
};

QTEST_GUILESS_MAIN(TestTranslation)
#include "tst_translation.moc"
