// Which types can stand in for a type that has no livery. Rebuilt with the catalogue.
#pragma once

namespace skl {

/// Fills similarAvailable and similarByAirline from the database's rows and the catalogue's tables.
void lf_buildSimilarTypes();

}  // namespace skl
