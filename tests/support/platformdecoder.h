// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "temporarylibrary.h"

#include <QAudioBuffer>
#include <QAudioDecoder>
#include <QTest>
#include <QUrl>

namespace epr::test {

/// Whether a plain wave file can be decoded here at all, tried without any code of ours. Only on Windows may it be
/// otherwise: Wine's Media Foundation lacks the decoders where some plug-ins are not installed.
inline bool platformDecodesWaves()
{
#ifdef Q_OS_WIN
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("plain.wav"));
    writeFile(path, waveOf(100));
    QAudioDecoder decoder;
    decoder.setSource(QUrl::fromLocalFile(path));
    decoder.start();
    const auto ended = [&decoder] { return decoder.bufferAvailable() || decoder.error() != QAudioDecoder::NoError; };
    return QTest::qWaitFor(ended, 20000) && decoder.bufferAvailable();
#else
    return true;
#endif
}

} // namespace epr::test
