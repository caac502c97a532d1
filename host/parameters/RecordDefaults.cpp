#include "host/parameters/RecordDefaults.h"
#include "host/parameters/FieldValue.h"
#include "shaders/layers/MultiPassControl.h"
#include "shaders/layers/MultiPassManager.h"
#include "shaders/layers/Super_mixer.h"
#include "shaders/layers/Super_mixer_top.h"
#include "shaders/mapping/Coordinate_Shift.h"
#include "shaders/mapping/Gray.h"
#include "shaders/mapping/Key.h"
#include "shaders/mapping/Location.h"
#include "shaders/optics/Fresnel.h"
#include "shaders/optics/Iridescent.h"
#include "shaders/patterns/Drip.h"
#include "shaders/patterns/Spoke.h"
#include "shaders/patterns/Weave.h"
#include "shaders/scene/Lit.h"
#include "shaders/scene/Proximity.h"
#include "shaders/scene/Translucent.h"
#include <fmt/format.h>

namespace fernwick {

namespace {

using Comparer = std::string (*)(const ParameterTable& table, const void* record);

template <class Params> std::string Compare(const ParameterTable& table, const void* record)
{
    const Params defaults{};
    for (const Field& field : table.fFields) {
        const std::string expected = ValueText(field, ReadField(field, &defaults));
        const std::string came = ValueText(field, ReadField(field, record));
        if (expected != came)
            return fmt::format("{}: expected {}, came {}", field.fName, expected, came);
    }
    return "";
}

struct RecordRow {
    std::string_view className;
    Comparer compare;
};

#define RECORD_OF(name)                                                                                      \
    {                                                                                                        \
#name, &Compare < name##Params>                                                                      \
    }
constexpr RecordRow kRows[] = {RECORD_OF(Coordinate_Shift), RECORD_OF(Drip), RECORD_OF(Fresnel),
    RECORD_OF(Gray), RECORD_OF(Iridescent), RECORD_OF(Key), RECORD_OF(Lit), RECORD_OF(Location),
    RECORD_OF(MultiPassControl), RECORD_OF(MultiPassManager), RECORD_OF(Proximity), RECORD_OF(Spoke),
    RECORD_OF(Super_mixer), RECORD_OF(Super_mixer_top), RECORD_OF(Translucent), RECORD_OF(Weave)};
#undef RECORD_OF

} // namespace

std::string WrongDefault(const ParameterTable& table, const void* record)
{
    for (const RecordRow& row : kRows)
        if (row.className == table.fName)
            return row.compare(table, record);
    return "no defaults are known of " + table.fName;
}

} // namespace fernwick
