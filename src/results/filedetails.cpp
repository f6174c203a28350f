// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "filedetails.h"

#include "displaytext.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QMessageBox>
#include <QRegularExpression>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

struct FileDetails {
    Q_DECLARE_TR_FUNCTIONS(epr::FileDetails)
};

QString hashText(const QString &hash)
{
    return hash.isEmpty() ? FileDetails::tr("not computed") : hash;
}

// The names must not wrap, and non-breaking spaces are the one way of saying so that a table cell heeds.
QString htmlLine(QString name, const QString &valueHtml)
{
    name.replace(u' ', QChar::Nbsp);
    return u"<tr><td><b>%1</b></td><td style='padding-left:12px'>%2</td></tr>"_s.arg(name.toHtmlEscaped(), valueHtml);
}

// A word that is wider than the box would be cut off, so a very long one may break. There is a command of its own for
// copying a path.
QString line(const QString &name, QString value)
{
    static const QRegularExpression longWord(u"(\\S{48})(?=\\S)"_s);
    value.replace(longWord, u"\\1\u200b"_s);
    return htmlLine(name, value.toHtmlEscaped());
}

// Small, so that 64 characters that nobody reads find room on a small screen.
QString hashLine(const QString &name, const QString &hash)
{
    return htmlLine(name, u"<small>%1</small>"_s.arg(hashText(hash)));
}

} // namespace

QString fileDetailsHtml(const TrackInfo &track)
{
    QString lines = line(FileDetails::tr("File"), track.fileName);
    lines += line(FileDetails::tr("Folder"), QDir::toNativeSeparators(folderOf(track)));
    lines += line(FileDetails::tr("Artist"), displayArtist(track));
    lines += line(FileDetails::tr("Title"), displayTitle(track));
    lines += line(FileDetails::tr("Album"), track.tags.album);
    lines += line(FileDetails::tr("Duration"), durationText(track.stream.durationMs));
    lines += line(FileDetails::tr("Quality"), qualityText(track));
    lines += line(FileDetails::tr("Size"), sizeText(track.size));
    lines += line(FileDetails::tr("Modified"), QLocale().toString(track.mtime, FileDetails::tr("d MMM yyyy h:mm ap")));
    lines += hashLine(FileDetails::tr("SHA-256 of the file"), track.fullHash);
    lines += hashLine(FileDetails::tr("SHA-256 of the audio"), track.audioHash);
    if (!track.error.isEmpty())
        lines += line(FileDetails::tr("Note"), track.error);
    return u"<table cellspacing='2'>%1</table>"_s.arg(lines);
}

void showFileDetails(const TrackInfo &track, QWidget *parent)
{
    QMessageBox box(QMessageBox::NoIcon, FileDetails::tr("File details"), fileDetailsHtml(track), QMessageBox::Ok,
                    parent);
    box.setTextFormat(Qt::RichText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.exec();
}

} // namespace epr
