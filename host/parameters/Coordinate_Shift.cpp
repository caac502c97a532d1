#include "shaders/mapping/Coordinate_Shift.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

fernwick::ParameterTable Coordinate_ShiftTable()
{
    return {"Coordinate_Shift", {kCoordinate_ShiftClassID}, kOutputSurface, sizeof(Coordinate_ShiftParams),
        "Ties what depends on position to an offset, or to another object of the scene.",
        {
            FIELD(Coordinate_ShiftParams, fMode, "Offset from",
                "Typed: the offset below. Object: the position of the named object, looked up in every "
                "sample.")
                .Choices({{"OFFM", "Typed"}, {"OBJM", "Object"}}),
            FIELD(Coordinate_ShiftParams, fObjectName, "Object", "Name of the scene element to follow."),
            FIELD(Coordinate_ShiftParams, fOffset, "Offset",
                "Subtracted from the coordinates that are switched on.")
                .Unit("scene units"),
            FIELD(Coordinate_ShiftParams, fShiftGlobal, "World #", "This world coordinate moves.")
                .Labels({"Move world X", "Move world Y", "Move world Z"}),
            FIELD(Coordinate_ShiftParams, fShiftLocal, "Object #", "This object coordinate moves.")
                .Labels({"Move object X", "Move object Y", "Move object Z"}),
            FIELD(Coordinate_ShiftParams, fSubShader, "Shader",
                "What is shaded at the moved point: a surface, a colour or a value."),
        }};
}
