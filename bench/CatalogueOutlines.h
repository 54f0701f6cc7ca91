// The outline texts of the shipped catalogue: every row drawn with its radii, for the benchmarks
// that parse outlines or work out their figures.
#pragma once

#include <QString>

#include <vector>

namespace bxq {
namespace bench {

struct CatalogueOutline {
    QString name;  // the row's standard name
    QString text;
};

// Every row of the catalogue in the application data folder that can be drawn; empty without one.
std::vector<CatalogueOutline> catalogueOutlines();

}  // namespace bench
}  // namespace bxq
