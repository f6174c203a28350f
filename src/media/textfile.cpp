// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "textfile.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>

namespace epr {

namespace {

constexpr qint64 sniffedBytes = 4096; // sound without a single control character in so many is none
constexpr qint64 tagHeaderSize = 10;
constexpr int maxTags = 16;

// What decoders go by, which do not mind what follows.
constexpr QByteArrayView signatures[] { "#EXTM3U", "ffconcat version", "[playlist]", "<?xml", "<MPD" };

// Decoders step over ID3v2 tags, so a text may stand behind them.
void skipTags(QFile &file)
{
    for (int count = 0; count < maxTags; ++count) {
        const QByteArray header = file.peek(tagHeaderSize);
        if (header.size() < tagHeaderSize || !header.startsWith("ID3"))
            return;
        qint64 size = 0;
        for (qsizetype i = 6; i < tagHeaderSize; ++i)
            size = size << 7 | (header.at(i) & 0x7F);
        const bool hasFooter = (header.at(5) & 0x10) != 0;
        file.seek(file.pos() + tagHeaderSize + size + (hasFooter ? tagHeaderSize : 0));
    }
}

bool isControl(char16_t unit)
{
    return (unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\f' && unit != '\r') || unit == 0x7F;
}

bool hasControls(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return isControl(c.unicode()); });
}

bool isUtf16Text(QByteArrayView bytes, QStringDecoder::Encoding encoding)
{
    QStringDecoder decoder(encoding);
    const QString text = decoder(bytes.first(bytes.size() / 2 * 2));
    return !text.isEmpty() && !decoder.hasError() && !hasControls(text);
}

// Without a byte order mark every other byte of Western text is zero, as in no sound: there, zeros come in numbers.
bool hasZerosAt(QByteArrayView bytes, qsizetype first)
{
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if ((bytes[i] == 0) != (i % 2 == first))
            return false;
    }
    return bytes.size() >= 4;
}

// Of an older character set if it is no UTF-8. What has no line end in 4 KiB, or starts as a frame of MPEG audio, is
// not.
bool isByteText(QByteArrayView bytes)
{
    if (std::any_of(bytes.begin(), bytes.end(), [](char c) { return isControl(static_cast<uchar>(c)); }))
        return false;
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    if (!decoder.hasError())
        return !text.isEmpty();
    return bytes.front() != '\xFF' && (bytes.contains('\n') || bytes.contains('\r'));
}

bool isText(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return false;
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF"))
        return isUtf16Text(bytes, QStringDecoder::Utf16);
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    const QByteArrayView content = bytes.trimmed();
    const auto isStart = [content](QByteArrayView signature) { return content.startsWith(signature); };
    return std::any_of(std::begin(signatures), std::end(signatures), isStart) || isByteText(bytes)
        || (hasZerosAt(bytes, 1) && isUtf16Text(bytes, QStringDecoder::Utf16LE))
        || (hasZerosAt(bytes, 0) && isUtf16Text(bytes, QStringDecoder::Utf16BE));
}

} // namespace

bool looksLikeText(const QString &path)
{
    if (!QFileInfo(path).isFile()) // opening a pipe would wait for a writer
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    skipTags(file);
    return isText(file.read(sniffedBytes));
}

} // namespace epr
