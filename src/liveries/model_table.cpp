// The built-in model table: folder name of a stock aircraft, without any leading path, to its ICAO type.
#include "liveries/reference_db.h"

namespace skl {

const StringMap<std::string> modelTable = {
    {"Asobo_FlightDesignCT", "FDCT"},
    {"Asobo_Longitude", "C700"},
    {"Asobo_VL3", "VL3"},
    {"Asobo_Savage_Cub", "SAVG"},
    {"Asobo_Savage_ShockUltra", "SAVG"},
    {"Asobo_XCub", "CC19"},
    {"Asobo_Pitts", "PTS2"},
    {"Asobo_SR22", "SR22"},
    {"Asobo_Icon", "A5"},
    {"Asobo_TBM930", "TBM9"},
    {"Asobo_KingAir350", "B350"},
    {"Asobo_E330", "E300"},
    {"Asobo_DV20", "DV20"},
    {"Asobo_DR400", "DR40"},
    {"Asobo_DA40_TDI", "DA40"},
    {"Asobo_Cap10C", "CP10"},
    {"Asobo_CJ4", "C25C"},
    {"Asobo_C152", "C152"},
    {"Asobo_C152_Aerobat", "C152"},
    {"Asobo_C172sp_AS1000", "C172"},
    {"Asobo_C172sp_classic", "C172"},
    {"Asobo_Bonanza_G36", "BE36"},
    {"Asobo_Baron_G58", "B58T"},
    {"Asobo_B747_8i", "B748"},
    {"Asobo_B787_10", "B78X"},
    {"Asobo_208B_GRAND_CARAVAN_EX", "C208"},
    {"Asobo_A320_NEO", "A20N"},
    {"FlyByWire_A320_NEO", "A20N"},
    {"Asobo_DA62", "DA62"},
    {"Asobo_DA40_NG", "DA40"},
};

}  // namespace skl
