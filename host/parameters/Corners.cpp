#include "shaders/scene/Corners.h"
#include "host/parameters/Notation.h"

fernwick::ParameterTable CornersTable()
{
    return {"Corners", {}, kOutputValue, sizeof(CornersParams),
        "Creases in UV space, from a grid of normals.",
        {
            FIELD(CornersParams, fWidthPercent, "Radius", "Of the neighbourhood, of the grid's edge.")
                .Unit("%"),
            FIELD(CornersParams, fStepDivisor, "Step divisor",
                "The radius divided by this is the distance between probes."),
            FIELD(CornersParams, fLevel, "Level", "Kept for documents."),
            FIELD(CornersParams, fCornerMode, "Mode", "Kept for documents.").Choices({{"INSD", "Inside"}}),
            FIELD(CornersParams, fGridOption, "Grid", "Edge of the grid in cells.")
                .Choices({{"Opt1", "256"}, {"Opt2", "512"}, {"Opt3", "1024"}, {"Opt4", "2048"}}),
            FIELD(CornersParams, fSubShader, "Shader", "Connected, never called."),
        }};
}
