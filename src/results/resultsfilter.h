// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractProxyModel>

#include <vector>

namespace epr {

class ResultsModel;

/// The rows of a results model that match a text: members whose artist, title, file name or folder contain it in
/// whatever letter case, and groups with at least one such member.
///
/// A change of the text may add and remove rows in thousands of places, so it is one reset with the visible rows laid
/// out afresh in flat arrays. A general sort-and-filter proxy would announce every interval by itself.
class ResultsFilter final : public QAbstractProxyModel {
    Q_OBJECT

public:
    explicit ResultsFilter(ResultsModel *results, QObject *parent = nullptr);

    [[nodiscard]] bool isActive() const { return !m_needles.isEmpty(); }
    [[nodiscard]] qint64 hiddenTicks() const; ///< ticked members that do not match
    void setText(const QString &text); ///< as typed; blanks around it do not count

    [[nodiscard]] QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    [[nodiscard]] QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;
    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex &child) const override;
    using QObject::parent;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct VisibleGroup {
        int sourceRow = 0;
        int firstMember = 0; ///< into m_members
        int memberCount = 0;
    };

    void connectSource();
    void layOutRows();
    void appendGroup(int sourceRow, const QStringList &searchTexts);
    [[nodiscard]] bool matches(const QString &searchText) const;
    void forwardChange(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles);
    [[nodiscard]] const VisibleGroup &groupAt(int row) const { return m_groups[static_cast<std::size_t>(row)]; }

    ResultsModel *m_results;
    QStringList m_needles; ///< any of them may be found; empty = everything matches
    std::vector<VisibleGroup> m_groups;
    std::vector<int> m_members; ///< source rows within their groups, group after group, ascending within each
    std::vector<int> m_proxyRows; ///< per source group, its row here or -1
};

} // namespace epr
