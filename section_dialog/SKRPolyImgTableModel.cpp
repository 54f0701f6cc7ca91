// The section dialog's table of section pictures.
#include "section_dialog/SKRPolyImgTableModel.h"

#include <QFont>
#include <QIcon>

SKRPolyImgTableModel::SKRPolyImgTableModel(int columns, QObject* parent)
    : QAbstractTableModel(parent), m_iColumns(std::max(1, columns)) {}

void SKRPolyImgTableModel::setGroups(const QVector<Item>& groups, const QVector<Item>& types) {
    beginResetModel();
    m_oRows.clear();
    for (const Item& group : groups) {
        QVector<Item> members;
        for (const Item& type : types)
            if (type.groupId == group.groupId) members << type;
        if (members.isEmpty()) continue;
        m_oRows.push_back({group});
        for (int i = 0; i < members.size(); i += m_iColumns) m_oRows.push_back(members.mid(i, m_iColumns));
    }
    endResetModel();
}

int SKRPolyImgTableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_oRows.size(); }

int SKRPolyImgTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_iColumns; }

bool SKRPolyImgTableModel::isGroupRow(int row) const {
    return row >= 0 && row < m_oRows.size() && m_oRows[row].size() == 1 && m_oRows[row][0].polyId == 0;
}

const SKRPolyImgTableModel::Item* SKRPolyImgTableModel::itemAt(const QModelIndex& index) const {
    if (!index.isValid() || index.row() >= m_oRows.size()) return nullptr;
    const QVector<Item>& row = m_oRows[index.row()];
    if (isGroupRow(index.row())) return index.column() == 0 ? &row[0] : nullptr;
    return index.column() < row.size() ? &row[index.column()] : nullptr;
}

QVariant SKRPolyImgTableModel::data(const QModelIndex& index, int role) const {
    const Item* item = itemAt(index);
    if (!item) return QVariant();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: return item->name;
    case PolyIdRole: return item->polyId;
    case GroupIdRole: return item->groupId;
    case Qt::TextAlignmentRole:
        return item->polyId == 0 ? int(Qt::AlignLeft | Qt::AlignVCenter) : int(Qt::AlignHCenter | Qt::AlignBottom);
    case Qt::FontRole:
        if (item->polyId == 0) {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        return QVariant();
    case Qt::DecorationRole: {
        if (!item->picture.isNull()) return item->picture;
        if (item->polyId == 0 || item->pictureName.isEmpty()) return QVariant();
        auto cached = m_oIcons.find(item->pictureName);
        if (cached == m_oIcons.end()) {
            // The thumbnail (the shape alone); the dimensioned picture only where there is none.
            QPixmap picture(QStringLiteral(":/images/SKRSectionPoly/thumbs/") + item->pictureName);
            if (picture.isNull()) picture = QPixmap(QStringLiteral(":/images/SKRSectionPoly/") + item->pictureName);
            if (!picture.isNull() && picture.size() != iconSize())
                picture = picture.scaled(iconSize(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
            cached = m_oIcons.insert(item->pictureName, picture);
        }
        return cached.value();
    }
    default: return QVariant();
    }
}

Qt::ItemFlags SKRPolyImgTableModel::flags(const QModelIndex& index) const {
    return itemAt(index) ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

QModelIndex SKRPolyImgTableModel::indexOfType(int polyId) const {
    for (int row = 0; row < m_oRows.size(); ++row)
        for (int column = 0; column < m_oRows[row].size(); ++column)
            if (polyId != 0 && m_oRows[row][column].polyId == polyId) return index(row, column);
    return QModelIndex();
}

void SKRPolyImgDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.data(SKRPolyImgTableModel::PolyIdRole).toInt() == 0) return;
    option->decorationPosition = QStyleOptionViewItem::Top;
    option->decorationAlignment = Qt::AlignHCenter | Qt::AlignTop;
    option->displayAlignment = Qt::AlignHCenter | Qt::AlignBottom;
}
