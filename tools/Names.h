#pragma once
#include "host/parameters/ParameterTable.h"

/// The table of a class or source; null when there is none of this name.
const fernwick::ParameterTable* FindTable(std::string_view name);

/// The same for a name that must be one. Throws `UsageError`, with the nearest name.
const fernwick::ParameterTable& RequireTable(const std::string& name);

/// The names of all classes, then those of all sources.
std::vector<std::string> ClassAndSourceNames();
