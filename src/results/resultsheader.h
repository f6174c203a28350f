// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHeaderView>

class QMenu;

namespace epr {

enum class GroupKey;
class ResultsModel;
struct GroupOrder;

/// The headings of the results: a click sorts the groups, a second one the other way round, a third as the scan had
/// them. Columns but the first can be moved and hidden, and are as wide as their texts need until one is dragged.
class ResultsHeader final : public QHeaderView {
    Q_OBJECT

public:
    explicit ResultsHeader(QWidget *parent);

    void follow(ResultsModel *model); ///< once, when the view has it

    QMenu *columnMenu() const { return m_columnMenu; }
    QMenu *sortMenu() const { return m_sortMenu; }

    /// Each column as its name and width, "title:240", 0 where it is as its texts need; "-title:0" when it is hidden.
    QStringList arrangement() const;

    /// Names that are not known are passed over, columns that are not named stay as they are. A name without a width
    /// shows an optional column, as earlier versions stored it.
    void arrange(const QStringList &columns);
    void arrangeAsBefore(); ///< before anybody moved, hid or dragged one

    void fit(); ///< to the texts, unless the operator has chosen widths

protected:
    void initStyleOptionForIndex(QStyleOptionHeader *option, int column) const override;
    void paintSection(QPainter *painter, const QRect &rect, int column) const override;

private:
    void fillColumnMenu();
    void fillSortMenu();
    void addSorting(const QString &text, const GroupOrder &order, int column);
    void onSectionResized(int section);
    int lastShown() const;

    ResultsModel *m_model = nullptr;
    QMenu *m_columnMenu;
    QMenu *m_sortMenu;
    bool m_isFitting = false;
    bool m_isChosen = false; ///< the operator has dragged a column: the widths are theirs from now on
};

} // namespace epr
