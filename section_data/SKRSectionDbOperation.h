// SKRSectionDbOperation: the store of user-drawn custom polygon sections in the project database
// (tables "CustomPoly" and "CustomPolyType"), used by the host's custom section dialogs.
#pragma once

#include "plugin/BXQExtendGlobal.h"

#include <QByteArray>
#include <QString>

namespace ndp {
class CDatabase;
class CDBTable;
class CPolygon;
}  // namespace ndp

// One custom polygon section as the dialogs exchange it with the store.
struct BXQEXTEND_EXPORT SKRCustomPolyInfo {
    int id = 0;
    QString description;
    ndp::CPolygon* polygon = nullptr;  // not owned; null is written as an empty outline
    double insertPointX = 0.0;
    double insertPointY = 0.0;
    QString horzSpace;
    QString vertSpace;
    QByteArray vectorDrawingInfo;  // opaque bytes of the drawing that produced the outline
};

class BXQEXTEND_EXPORT SKRSectionDbOperation {
public:
    // Throws std::invalid_argument "cannot accept:DB is nullptr ;CustomPoly doesn't exist;
    // CustomPolyType doesn't exist" for a null database or one without either table. Every
    // operation throws skr::section::SKRDatabaseError (naming the file) when the database fails
    // under its reads, so that a failed read is never taken for a missing row.
    explicit SKRSectionDbOperation(ndp::CDatabase* db);

    // Adds a new custom polygon with a new type row of its own, fills in info's id (last ID + 1)
    // and description ("自定义截面" followed by the id), and flushes. False only when the
    // database refuses the new rows.
    bool addCustomPoly(SKRCustomPolyInfo& info);
    // Rewrites the custom polygon with info's id and flushes; false when there is none.
    // Throws std::invalid_argument "Invalid Query String!" when the table refuses the query.
    bool updateCustomPoly(const SKRCustomPolyInfo& info);
    // Deletes every custom polygon with that id, without flushing; false when there was none.
    bool removeCustomPoly(int id);

    // Read the custom polygon with that id into info, replacing all of it, and its outline into
    // polygon, which the caller owns (info.polygon is pointed at it); a row without an outline
    // gives an empty polygon. Only the second reader fills in the drawing bytes. False, with
    // info and polygon unchanged, when there is no such row or its outline is unreadable (error
    // says which). A refused query throws as in updateCustomPoly.
    bool readCustomPoly(int id, SKRCustomPolyInfo& info, ndp::CPolygon& polygon, QString* error = nullptr);
    bool readCustomPolyWithDrawing(int id, SKRCustomPolyInfo& info, ndp::CPolygon& polygon,
                                   QString* error = nullptr);

private:
    bool readById(int id, bool withDrawing, SKRCustomPolyInfo& info, ndp::CPolygon& polygon, QString* error);
    int nextId(ndp::CDBTable* table) const;

    ndp::CDatabase* m_pDatabase;
    ndp::CDBTable* m_pCustomPoly;
    ndp::CDBTable* m_pCustomPolyType;
};
