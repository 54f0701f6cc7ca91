// The section dialog's hot-rolled list: SKRHotRollingListModel holds the shipped catalogue and
// the user's own sections (name, kg/m, m2/m per row); SKRHotRollingFilterModel shows the rows of
// one section type whose name holds the typed filter text.
#pragma once

#include "section_data/SKRHotRollingSection.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>

#include <vector>

class SKRHotRollingListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { NameColumn, WeightColumn, SurfaceColumn, ColumnCount };
    enum Role { SectionTypeRole = Qt::UserRole + 1, UserSectionRole };

    explicit SKRHotRollingListModel(QObject* parent = nullptr);

    // Reads every catalogue row of the types, then the user's rows of those types, from the
    // registered providers (an absent provider contributes nothing).
    void load(const QVector<int>& sectionTypes);
    // Why the last load left rows out (a database that failed under the read); empty when whole.
    const QString& loadError() const { return m_oLoadError; }
    void setSections(std::vector<skr::section::SKRHotRollingSection> sections);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    const skr::section::SKRHotRollingSection& section(int row) const { return m_oSections[row]; }
    // The row of a section name, -1 when the list has none.
    int rowOf(const QString& standardName) const;
    // User sections carry the "(ZDY)" mark.
    static bool isUserSection(const skr::section::SKRHotRollingSection& section);

private:
    std::vector<skr::section::SKRHotRollingSection> m_oSections;
    QString m_oLoadError;
};

class SKRHotRollingFilterModel : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit SKRHotRollingFilterModel(QObject* parent = nullptr);
    // Only rows of this type; 0 shows the rows of every type.
    void setSectionType(int sectionType);
    int sectionType() const { return m_iSectionType; }

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    int m_iSectionType = 0;
};
