// SKRPolyImgTableModel: the section groups and their types as a table of pictures, the left side
// of the section dialog. Each group is a title row spanning the table, followed by its types,
// a few to a row, each shown by its picture and name.
#pragma once

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <QPixmap>
#include <QVector>

class SKRPolyImgTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Role { PolyIdRole = Qt::UserRole + 1, GroupIdRole };

    struct Item {
        int groupId = 0;
        int polyId = 0;  // 0 on a group's title row
        QString name;
        QString pictureName;
        QPixmap picture;  // drawn by the caller (custom sections); else the named resource
    };

    explicit SKRPolyImgTableModel(int columns = 3, QObject* parent = nullptr);

    // The groups in order, each with its types in order; groups without types are left out.
    void setGroups(const QVector<Item>& groups, const QVector<Item>& types);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    bool isGroupRow(int row) const;
    // The cell of a section type; invalid when the table has none.
    QModelIndex indexOfType(int polyId) const;
    // The item of a cell; null for an empty cell.
    const Item* itemAt(const QModelIndex& index) const;

    static QSize iconSize() { return QSize(72, 72); }

private:
    int m_iColumns;
    QVector<QVector<Item>> m_oRows;  // a title row holds one item
    mutable QHash<QString, QPixmap> m_oIcons;
};

// Draws a type's picture above its name.
class SKRPolyImgDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};
