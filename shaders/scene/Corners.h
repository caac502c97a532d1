#pragma once
#include "frame/Layout.h"
#include "frame/Numbers.h"
#include "frame/ShaderOf.h"
#include "frame/SubShader.h"
#include "shaders/scene/INormalGrid.h"

/// Parameters of Corners, as the host writes them.
struct CornersParams {
    float fWidthPercent = 5;            ///< radius of the neighbourhood, percent of the grid's edge
    float fStepDivisor = 5;             ///< the radius divided by this is the distance between probes
    float fLevel = 50;                  ///< compared; nothing else reads it
    int32_t fCornerMode = Code("INSD"); ///< compared; nothing else reads it
    int32_t fGridOption = Code("Opt1"); ///< edge: "Opt1" to "Opt4" 256, 512, 1024, 2048 cells; any other 1
    SubShaderSlot fSubShader;           ///< connected, never called
};
static_assert(offsetof(CornersParams, fWidthPercent) == 0 && offsetof(CornersParams, fStepDivisor) == 4);
static_assert(offsetof(CornersParams, fLevel) == 8 && offsetof(CornersParams, fCornerMode) == 12);
static_assert(
    offsetof(CornersParams, fGridOption) == 16 && offsetof(CornersParams, fSubShader) == BySize(24, 20));
static_assert(sizeof(CornersParams) == BySize(32, 24));

/// Creases in UV space: the largest angle between the normal under the sample and normals probed along four
/// lines of a grid. It asks the host for nothing.
///
/// An object holds its largest grid and takes about 48 MiB: make it with `new`, which gives null when the
/// host refuses the memory.
class Corners final : public UnsizedShaderOf<Corners, CornersParams, TBasicShader> {
public:
    /// Answers `INormalGrid` too, by which its host fills the grid.
    MCErr QueryInterface(const GUID& id, void** out) override;
    bool SameParams(const CornersParams& other) const;
    MCErr ReportNeeds(ShadingFlags& flags) override { return Ask(flags, kNeedsUV | kNeedsNormalLocal); }
    int32_t GetOutputKinds() override { return kOutputValue; }
    MCErr ExtensionDataChanged() override;
    float ShadeValue(float& value, bool& fullArea, ShadingIn& in) override;

private:
    static constexpr int32_t kLargestGrid = 2048;
    static constexpr int32_t kGridRoom = kLargestGrid * kLargestGrid;
    static constexpr int32_t kBufferRoom = 65536;

    struct Boundary;
    struct Line;

    /// A member of its own behind all others and no base of the object, whose three faces, record and members thus
    /// stay where they are.
    class GridFace final : public INormalGrid {
    public:
        explicit GridFace(Corners& corners) : fCorners(corners) { }

        MCErr QueryInterface(const GUID& id, void** out) override { return fCorners.QueryInterface(id, out); }
        uint32_t AddRef() override { return fCorners.AddRef(); }
        uint32_t Release() override { return fCorners.Release(); }
        int32_t GetEdge() override { return fCorners.fGridSize; }
        bool SetNormal(int32_t u, int32_t v, const TVector3& normal) override;

    private:
        Corners& fCorners;
    };

    MCCountedPtr<IMCUnknown> fUnusedReference;
    ConnectedShader fShader;
    uint32_t fShaderKinds = 0;
    int32_t fGridSize = 1;                ///< edge, cells
    int32_t fRadius = 0;                  ///< cells
    int32_t fStep = 1;                    ///< cells between probes, at least 1
    int32_t fTotalSamples = 0;            ///< probes on all lines
    int32_t fSampleCount = 0;             ///< probes on one line
    float fAngleBuffer[kBufferRoom] = {}; ///< line by line; what a sample doesn't write is an earlier one's
    TVector3 fNormalGrid[kGridRoom];      ///< cell (u, v) at u * fGridSize + v
    TVector3 fCenterNormal;
    [[maybe_unused]] TMCColorRGBA fUnusedColor = {0, 0, 0, 0};
    GridFace fGridFace{*this};

    TVector3 Cell(int64_t u, int64_t v) const;
    Boundary BoundaryAround(int32_t u, int32_t v) const;
    void ProbeLine(int32_t index, Line line, const Boundary& in_bounds);
    float LargestAngle() const;
};
