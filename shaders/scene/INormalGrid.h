#pragma once
#include "frame/IMCUnknown.h"
#include "frame/Vectors.h"

inline constexpr GUID IID_INormalGrid
    = {0x22DFB5BC, 0x4B4A, 0x49FE, {0xA0, 0xA1, 0xBB, 0x1F, 0xDF, 0xDF, 0xDA, 0xC5}};

/// The grid of normals that a shader looks at, for its host to fill: one normal a cell, laid out by UV. Reached by
/// `QueryInterface` of the shader, after `ExtensionDataChanged`, and never while the shader shades. Cells never filled
/// hold zero vectors. With another edge all cells must be filled anew.
class INormalGrid : public IMCUnknown {
public:
    virtual int32_t GetEdge() = 0; ///< cells along U and along V, at least 1, as the last change gave it

    /// @param u, v    cells from 0, below the edge; cell (u, v) begins at UV (u / edge, v / edge)
    /// @param normal  of any length
    /// @return false, with nothing stored, for a cell outside the grid
    virtual bool SetNormal(int32_t u, int32_t v, const TVector3& normal) = 0;

protected:
    ~INormalGrid() = default;
};
