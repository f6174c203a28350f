// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journalfile.h"

#include "fileproblems.h"
#include "nativefile.h"

#include <QCoreApplication>
#include <QJsonDocument>

namespace epr {

namespace {

constexpr qsizetype maxLineBytes = 1048576; // two of the longest paths that Windows has, every character escaped

} // namespace

Result<> JournalFile::read(const QString &path, const LineFn &each)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    QByteArray buffer(maxLineBytes + 1, Qt::Uninitialized); // and the end that readLine() gives a text
    qint64 got = 0;
    while ((got = file.readLine(buffer.data(), buffer.size())) > 0) {
        if (buffer.at(got - 1) == '\n')
            each(QJsonDocument::fromJson(QByteArray::fromRawData(buffer.constData(), got)).object());
        else if (got == maxLineBytes)
            return failure(QCoreApplication::translate("epr::Cleanup", "The file has a line that is too long"));
    }
    // A file that cannot be read is never at its end, but it has no more lines either.
    if (file.error() != QFileDevice::NoError)
        return failure(file.errorString());
    return {};
}

Result<> JournalFile::create(const QString &path)
{
    m_file.setFileName(path);
    if (m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return {};
    return failure(m_file.errorString());
}

Result<> JournalFile::append(const QList<QJsonObject> &lines)
{
    QByteArray bytes;
    for (const QJsonObject &line : lines) // compact JSON has no line break of its own, whatever the file names have
        bytes += QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
    if (m_file.write(bytes) == bytes.size() && nativefile::flushToDisk(m_file))
        return {};
    return failure(writeErrorOf(m_file));
}

void JournalFile::remove()
{
    m_file.close();
    m_file.remove();
}

} // namespace epr
