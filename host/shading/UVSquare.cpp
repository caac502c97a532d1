#include "host/shading/UVSquare.h"
#include "host/shading/Graph.h"

namespace fernwick {

UVSquare::UVSquare(const Graph& graph)
    : UVSquare(graph.SceneOrNull() != nullptr ? &graph.SceneOrNull()->ShadedObject() : nullptr)
{ }

UVSquare::UVSquare(SceneElement* element) : fInstance(element)
{
    if (element != nullptr)
        fToWorld = element->Transform();
    fNormal = Turned({0, 0, 1});
    fDerivU = Turned({1, 0, 0});
    fDerivV = Turned({0, 1, 0});
}

TVector3 UVSquare::Turned(const TVector3& vector) const
{
    TVector3 turned;
    for (uint32_t row = 0; row < 3; ++row)
        for (uint32_t column = 0; column < 3; ++column)
            turned[row] += fToWorld.fMatrix[row][column] * vector[column];
    return turned;
}

} // namespace fernwick
