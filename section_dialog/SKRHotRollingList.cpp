// The hot-rolled list of the section dialog.
#include "section_dialog/SKRHotRollingList.h"

#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_spec/SKRUserSectionMark.h"

#include <QCoreApplication>

#include <exception>

using skr::section::SKRHotRollingSection;

namespace {
const QString kUserMark = skr::section::userSectionMark();

QString text(const char* source) { return QCoreApplication::translate("SKRSectionPolyDlg", source); }

// A provider's rows of the types. A refused read leaves its type out of the list and its reason
// in error, so that the dialog can say the list is incomplete.
template <typename Provider>
void appendRows(const QVector<int>& sectionTypes, std::vector<SKRHotRollingSection>& sections, QString& error) {
    auto* provider = skr::util::FetchInstance<Provider>();
    if (!provider) return;
    for (int type : sectionTypes) {
        try {
            const std::vector<SKRHotRollingSection> rows = provider->listByType(type);
            sections.insert(sections.end(), rows.begin(), rows.end());
        } catch (const std::exception& failure) {
            if (error.isEmpty()) error = skr::section::failureText(provider->table(), failure);
        }
    }
}
}  // namespace

SKRHotRollingListModel::SKRHotRollingListModel(QObject* parent) : QAbstractTableModel(parent) {}

void SKRHotRollingListModel::load(const QVector<int>& sectionTypes) {
    std::vector<SKRHotRollingSection> sections;
    m_oLoadError.clear();
    appendRows<skr::section::SKRHotRollingSectionDBProvider>(sectionTypes, sections, m_oLoadError);
    appendRows<skr::section::SKRUserHotRollingSectionDBProvider>(sectionTypes, sections, m_oLoadError);
    setSections(std::move(sections));
}

void SKRHotRollingListModel::setSections(std::vector<SKRHotRollingSection> sections) {
    beginResetModel();
    m_oSections = std::move(sections);
    endResetModel();
}

int SKRHotRollingListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_oSections.size());
}

int SKRHotRollingListModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant SKRHotRollingListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return QVariant();
    const SKRHotRollingSection& row = m_oSections[static_cast<size_t>(index.row())];
    if (role == SectionTypeRole) return row.sectionType;
    if (role == UserSectionRole) return isUserSection(row);
    if (role == Qt::TextAlignmentRole && index.column() != NameColumn) return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return QVariant();
    switch (index.column()) {
    case NameColumn: return QString::fromStdWString(row.standardName);
    case WeightColumn: return QString::number(row.weightMeter, 'f', 3);
    case SurfaceColumn: return QString::number(row.area, 'f', 4);
    default: return QVariant();
    }
}

QVariant SKRHotRollingListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case NameColumn: return text("规格");
    case WeightColumn: return text("延米重(kg/m)");
    case SurfaceColumn: return text("表面积(m2/m)");
    default: return QVariant();
    }
}

int SKRHotRollingListModel::rowOf(const QString& standardName) const {
    const std::wstring name = standardName.toStdWString();
    for (size_t i = 0; i < m_oSections.size(); ++i)
        if (m_oSections[i].standardName == name) return static_cast<int>(i);
    return -1;
}

bool SKRHotRollingListModel::isUserSection(const SKRHotRollingSection& section) {
    return QString::fromStdWString(section.standardName).endsWith(kUserMark);
}

SKRHotRollingFilterModel::SKRHotRollingFilterModel(QObject* parent) : QSortFilterProxyModel(parent) {
    setFilterKeyColumn(SKRHotRollingListModel::NameColumn);
    setFilterCaseSensitivity(Qt::CaseInsensitive);
}

void SKRHotRollingFilterModel::setSectionType(int sectionType) {
    if (sectionType == m_iSectionType) return;
    m_iSectionType = sectionType;
    invalidateFilter();
}

bool SKRHotRollingFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const {
    if (m_iSectionType != 0 &&
        sourceModel()->index(sourceRow, 0, sourceParent).data(SKRHotRollingListModel::SectionTypeRole).toInt() !=
            m_iSectionType)
        return false;
    return QSortFilterProxyModel::filterAcceptsRow(sourceRow, sourceParent);
}
