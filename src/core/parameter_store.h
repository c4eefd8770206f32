// parameters.xml: one element a setting, read at each start of a run, written one setting at a time. A
// missing or broken file gives the defaults and is written anew. Any thread; the file is guarded by
// g_parameterLock.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "core/parameter.h"
#include "core/version.h"

namespace skl {

using BoolList = std::vector<BoolParameter*>;
using IntList = std::vector<IntParameter*>;
using StringList = std::vector<StringParameter*>;

/// The six lists, in the order of reading and of appending.
struct ParameterLists {
    BoolList hidden, checks;
    IntList numbers, combos;
    StringList texts, liveTexts;
};
const ParameterLists& gf_parameterLists();

void gf_readParameters(const BoolList& list1, const BoolList& list2, const IntList& list3,
                       const IntList& list4, const StringList& list5, const StringList& list6);
void gf_migrateParameters();
void gf_saveParameter(const BoolParameter& parameter);
void gf_saveParameter(const IntParameter& parameter);
void gf_saveParameter(const StringParameter& parameter);
void gf_removeParameter(const Parameter& parameter);
/// Reads MAIN_WINDOW_X and MAIN_WINDOW_Y alone, without a log line, if the file parses.
void gf_readWindowPlace();

}  // namespace skl
