// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "helpdialogs.h"

#include "application.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>

#include <algorithm>

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

QString withoutMnemonic(QString text)
{
    return text.remove(u'&');
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

/// What is being filled: headings over rows of a command and its key.
struct ShortcutsDialog::Column {
    explicit Column(QHBoxLayout *columns)
        : grid(new QGridLayout)
    {
        auto *column = new QVBoxLayout;
        column->addLayout(grid);
        column->addStretch();
        columns->addLayout(column);
        grid->setHorizontalSpacing(24);
        grid->setVerticalSpacing(6);
    }

    QGridLayout *grid;

    void addHeading(const QString &text)
    {
        auto *label = new QLabel(text);
        QFont font = label->font();
        font.setBold(true);
        label->setFont(font);
        grid->addWidget(label, grid->rowCount(), 0, 1, 2);
    }

    void addKey(const QString &command, const QString &key)
    {
        const int row = grid->rowCount();
        auto *keyLabel = new QLabel(key);
        keyLabel->setAccessibleName(u"%1: %2"_s.arg(command, key));
        grid->addWidget(new QLabel(command), row, 0);
        grid->addWidget(keyLabel, row, 1);
    }
};

ShortcutsDialog::ShortcutsDialog(const QMenuBar *menuBar, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Keyboard shortcuts"));
    auto *content = new QWidget;
    auto *columns = new QHBoxLayout(content);
    columns->setSpacing(6 * fontMetrics().averageCharWidth());
    const QList<QAction *> menus = menuBar->actions();
    constexpr qsizetype menusOnTheLeft = 4; // with which both columns are about as long
    const qsizetype onTheLeft = std::min(menusOnTheLeft, menus.size());
    Column left(columns);
    addMenus(left, menus.first(onTheLeft));
    Column right(columns);
    addMenus(right, menus.sliced(onTheLeft));
    addResultsKeys(right);

    auto *scroll = new QScrollArea; // takes the focus, so that the arrow keys scroll
    scroll->setWidget(content);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(scroll);
    layout->addWidget(buttons);
    const QSize wanted = content->sizeHint() + QSize(80, 80);
    resize(wanted.boundedTo(screen()->availableSize() * 4 / 5));
}

void ShortcutsDialog::addMenus(Column &column, const QList<QAction *> &menus)
{
    for (const QAction *menu : menus) {
        bool hasHeading = false;
        const QList<QAction *> actions = menu->menu() ? menu->menu()->actions() : QList<QAction *>();
        for (const QAction *action : actions) {
            if (action->shortcut().isEmpty())
                continue;
            if (!hasHeading)
                column.addHeading(withoutMnemonic(menu->text()));
            hasHeading = true;
            column.addKey(withoutMnemonic(action->text()), action->shortcut().toString(QKeySequence::NativeText));
        }
    }
}

void ShortcutsDialog::addResultsKeys(Column &column)
{
    const auto key = [](const QKeySequence &keys) { return keys.toString(QKeySequence::NativeText); };
    column.addHeading(tr("In the results"));
    column.addKey(tr("Tick or untick the copy"), key(Qt::Key_Space));
    column.addKey(tr("Close or open the group"), tr("%1, %2").arg(key(Qt::Key_Left), key(Qt::Key_Right)));
    column.addKey(tr("All commands for the copy"), tr("Menu key, %1").arg(key(Qt::SHIFT | Qt::Key_F10)));
    column.addHeading(tr("On a waveform of the player"));
    column.addKey(tr("Five seconds back or on"), tr("%1, %2").arg(key(Qt::Key_Left), key(Qt::Key_Right)));
    column.addKey(tr("To the beginning or the end"), tr("%1, %2").arg(key(Qt::Key_Home), key(Qt::Key_End)));
}

} // namespace epr
