#include "tools/Names.h"
#include "host/json/Nearest.h"
#include "host/sources/Sources.h"
#include "tools/Commands.h"
#include <fmt/core.h>

const fernwick::ParameterTable* FindTable(std::string_view name)
{
    const fernwick::SourceKind* const source = fernwick::FindSource(name);
    return source != nullptr ? &source->fTable : fernwick::FindClass(name);
}

const fernwick::ParameterTable& RequireTable(const std::string& name)
{
    const fernwick::ParameterTable* const table = FindTable(name);
    if (table == nullptr)
        throw UsageError(fmt::format("there is no class or source \"{}\"{}\n  `fernwick list` names them",
            name, fernwick::NearestHint(name, ClassAndSourceNames())));
    return *table;
}

std::vector<std::string> ClassAndSourceNames()
{
    std::vector<std::string> names;
    for (const fernwick::ParameterTable& table : fernwick::AllClasses())
        names.push_back(table.fName);
    const std::vector<std::string> sources = fernwick::SourceNames();
    names.insert(names.end(), sources.begin(), sources.end());
    return names;
}
