// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
//
// A review that is decided by a script, to be killed: "FILE SEED". It says when it did each step, in ms since 1970.
#include "reviewkeeper.h"

#include "reviewscript.h"

#include <QCoreApplication>

#include <cstdio>

using namespace epr;
using namespace epr::test;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    Review review;
    ReviewKeeper keeper(review, arguments.at(1));
    ReviewScript script(arguments.at(2).toUInt());
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &review, [&] {
        script.step(review);
        std::printf("%lld\n", static_cast<long long>(QDateTime::currentMSecsSinceEpoch()));
        std::fflush(stdout);
    });
    QObject::connect(&keeper, &ReviewKeeper::opened, &review, [&] {
        ReviewScript::begin(review);
        keeper.keep({});
        timer.start(2);
    });
    keeper.open();
    return QCoreApplication::exec();
}
