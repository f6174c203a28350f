// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "accessibility.h"

#include "labels.h"
#include "panel.h"
#include "scrubber.h"
#include "sevensegment.h"

#include <QAccessibleWidget>

namespace epr::vfd {

namespace {

class ScrubberInterface final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit ScrubberInterface(Scrubber *scrubber)
        : QAccessibleWidget(scrubber, QAccessible::Slider)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? scrubber()->valueText() : QAccessibleWidget::text(kind);
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QVariant currentValue() const override { return scrubber()->positionMs(); }
    void setCurrentValue(const QVariant &value) override { scrubber()->seek(value.toLongLong()); }
    QVariant maximumValue() const override { return scrubber()->durationMs(); }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 1000; }

private:
    Scrubber *scrubber() const { return static_cast<Scrubber *>(object()); }
};

// What is shown is the name; where the owner has given one ("Bit rate"), it is the value beside it.
class TextInterface final : public QAccessibleWidget {
public:
    explicit TextInterface(QWidget *widget)
        : QAccessibleWidget(widget, QAccessible::StaticText)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const bool isNamed = !widget()->accessibleName().isEmpty();
        const bool isShownText = isNamed ? kind == QAccessible::Value : kind == QAccessible::Name;
        return isShownText ? widget()->property("text").toString() : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface *interfaceFor(const QString &, QObject *object)
{
    if (auto *scrubber = qobject_cast<Scrubber *>(object))
        return new ScrubberInterface(scrubber);
    if (auto *panel = qobject_cast<Panel *>(object))
        return new QAccessibleWidget(panel, QAccessible::Grouping);
    const bool hasText =
        qobject_cast<ElidingLabel *>(object) || qobject_cast<Badge *>(object) || qobject_cast<SevenSegment *>(object);
    return hasText ? new TextInterface(static_cast<QWidget *>(object)) : nullptr;
}

} // namespace

void installAccessibility()
{
    QAccessible::installFactory(interfaceFor); // a second time changes nothing
}

void announceText(QWidget *widget)
{
    QAccessibleEvent event(widget,
                           widget->accessibleName().isEmpty() ? QAccessible::NameChanged : QAccessible::ValueChanged);
    QAccessible::updateAccessibility(&event);
}

void announceValue(Scrubber *scrubber, qint64 positionMs)
{
    QAccessibleValueChangeEvent event(scrubber, positionMs);
    QAccessible::updateAccessibility(&event);
}

} // namespace epr::vfd
