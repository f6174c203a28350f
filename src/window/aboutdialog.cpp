// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "aboutdialog.h"

#include "metadata.h"

#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace epr {

using namespace Qt::StringLiterals;

namespace {

QLabel *centredLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

// Scaled to the screen's own pixels, so that it stays sharp at any display scale.
QPixmap scaledLogo(qreal pixelRatio)
{
    constexpr QSizeF place(400, 70);
    const QPixmap logo(u":/icons/logo.png"_s);
    if (logo.isNull())
        return {};
    const QSize pixels(qRound(place.width() * pixelRatio), qRound(place.height() * pixelRatio));
    QPixmap scaled = logo.scaled(pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(pixelRatio);
    return scaled;
}

} // namespace

AboutDialog::AboutDialog(QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About %1").arg(metadata::applicationName()));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setMinimumWidth(505);
    resize(505, 360);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 18);
    layout->setSpacing(0);
    addLogo(layout);
    addTexts(layout);
    addButtons(layout);
}

void AboutDialog::addLogo(QVBoxLayout *layout)
{
    auto *logo = centredLabel(metadata::applicationName());
    const QPixmap pixmap = scaledLogo(devicePixelRatioF());
    if (pixmap.isNull()) {
        QFont font = logo->font();
        font.setBold(true);
        font.setPointSize(font.pointSize() + 12);
        logo->setFont(font);
    } else {
        logo->setPixmap(pixmap);
        logo->setAccessibleName(metadata::applicationName());
    }
    layout->addWidget(logo);
    layout->addSpacing(14);
}

void AboutDialog::addTexts(QVBoxLayout *layout)
{
    auto *version = centredLabel(tr("Version %1").arg(metadata::version()));
    QFont bold = version->font();
    bold.setBold(true);
    version->setFont(bold);
    auto *description = centredLabel(metadata::description());
    description->setWordWrap(true);
    auto *rights = centredLabel(metadata::rightsNotice());
    rights->setWordWrap(true);
    auto *links =
        new QLabel(u"<div style='text-align:center'><a href=\"%1\">%1</a><br><a href=\"%2\">%2</a></div>"_s.arg(
            metadata::makerUrl(), metadata::authorUrl()));
    links->setOpenExternalLinks(true);
    links->setTextInteractionFlags(Qt::TextBrowserInteraction);
    auto *licences = centredLabel(
        tr("<span style='color:palette(mid); font-size:small'>Uses Chromaprint's fpcalc and FFmpeg under the LGPL. "
           "Licence and source details are in the ffmpeg folder.</span>"));
    licences->setTextFormat(Qt::RichText);
    licences->setWordWrap(true);

    layout->addWidget(version);
    layout->addSpacing(4);
    layout->addWidget(description);
    layout->addSpacing(16);
    layout->addWidget(rights);
    layout->addSpacing(16);
    layout->addWidget(links);
    layout->addSpacing(12);
    layout->addWidget(licences);
}

void AboutDialog::addButtons(QVBoxLayout *layout)
{
    auto *ok = new QPushButton(tr("OK"));
    ok->setDefault(true);
    ok->setMinimumWidth(96);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(ok);
    layout->addLayout(row);
}

} // namespace epr
