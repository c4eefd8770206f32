// LiveriesScanned.xml: what a scan has found, for the starts that follow. A `meta` section, then `liveries`
// with a `liv` a livery: airl, type, cargo="true" (cargo liveries only), title, atcid (those with a
// registration only).
#pragma once

namespace skl {

/// Sorts by airline, type and title, byte-wise and stable.
void lf_sortScannedLiveries();
/// Writes scannedLiveries in their order; nothing if there are none.
void gf_writeLiveriesFile();
/// Replaces scannedLiveries. Throws UserErrorException 51, 52, 533 or 999.
void gf_readLiveriesFile();

}  // namespace skl
