// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "notices.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QTextDocument>

namespace epr {

namespace {

QMessageBox::StandardButton show(QMessageBox::Icon icon, QMessageBox::StandardButtons buttons, QWidget *parent,
                                 const QString &title, const QString &text)
{
    QMessageBox box(icon, title, text, buttons, parent);
    box.setTextFormat(Qt::PlainText);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

void showInformation(QWidget *parent, const QString &title, const QString &text)
{
    show(QMessageBox::Information, QMessageBox::Ok, parent, title, text);
}

void showWarning(QWidget *parent, const QString &title, const QString &text)
{
    show(QMessageBox::Warning, QMessageBox::Ok, parent, title, text);
}

bool warnAndOffer(QWidget *parent, const QString &title, const QString &text, const QString &offer)
{
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    const QAbstractButton *offered = box.addButton(offer, QMessageBox::HelpRole);
    box.setDefaultButton(QMessageBox::Ok);
    box.exec();
    return box.clickedButton() == offered;
}

void showCritical(QWidget *parent, const QString &title, const QString &text)
{
    show(QMessageBox::Critical, QMessageBox::Ok, parent, title, text);
}

bool askYesOrNo(QWidget *parent, const QString &title, const QString &question)
{
    return show(QMessageBox::Question, QMessageBox::Yes | QMessageBox::No, parent, title, question) == QMessageBox::Yes;
}

QLabel *plainLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QString plainToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpacePre) : text;
}

EmptyHint::EmptyHint(QAbstractScrollArea *view)
    : QLabel(view->viewport())
{
    constexpr int sideMargin = 24;
    setAlignment(Qt::AlignCenter);
    setContentsMargins(sideMargin, 0, sideMargin, 0); // none above: the list may be only a few lines high
    setWordWrap(true);
    setForegroundRole(QPalette::PlaceholderText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view->viewport()->installEventFilter(this);
}

bool EmptyHint::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QLabel::eventFilter(watched, event);
}

} // namespace epr
