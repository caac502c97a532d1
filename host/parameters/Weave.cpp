#include "shaders/patterns/Weave.h"
#include "host/parameters/Notation.h"
#include "module/ClassIDs.h"

namespace {

constexpr int32_t kFree = Code("FREE"); // Basic makes all threads like the first

} // namespace

fernwick::ParameterTable WeaveTable()
{
    static const WeaveParams standard{};
    fernwick::ParameterTable table{"Weave", {kWeaveClassID}, kOutputColor | kOutputVector,
        sizeof(WeaveParams),
        "Woven cloth: up to five warp and five weft threads a tile, in colour and as a bent normal.",
        {
            FIELD(WeaveParams, fWeaveMode, "Cloth",
                "Basic: a plain weave of two equal threads each way, written into the pattern and the "
                "widths. Free: as set below.")
                .Choices({{"BSCM", "Basic"}, {kFree, "Free"}}),
            FIELD(WeaveParams, fPattern, "Crossing of weft # and warp #",
                "The warp thread lies on top; otherwise the weft thread.")
                .OnlyWith("fWeaveMode", kFree),
            FIELD(WeaveParams, fDisplaceBefore, "Displacement before tiling",
                "How far the first shader moves the sample in UV.")
                .Unit("%"),
            FIELD(WeaveParams, fDisplaceAfter, "Displacement in the tile",
                "How far the second shader moves the sample inside its tile.")
                .Unit("%"),
            FIELD(WeaveParams, fRoundAcross, "Round across", "Threads are rounded across their width."),
            FIELD(WeaveParams, fRoundAlong, "Round along",
                "Threads are rounded along the stretch between two crossings under the others."),
            FIELD(WeaveParams, fProfileAcross, "Flatness across", "The larger, the flatter."),
            FIELD(WeaveParams, fProfileAlong, "Flatness along", "The larger, the flatter."),
            FIELD(WeaveParams, fWarpGap, "Gap of the warp",
                "Between warp threads, in the unit of their widths."),
            FIELD(WeaveParams, fWeftGap, "Gap of the weft",
                "Between weft threads, in the unit of their widths."),
            FIELD(WeaveParams, fRepeatU, "Tiles along U", "Per unit of U.").AtLeast(0).Loose(),
            FIELD(WeaveParams, fRepeatV, "Tiles along V", "Per unit of V.").AtLeast(0).Loose(),
            FIELD(WeaveParams, fWarpWidth, "Width of warp #", "Relative to the other widths and the gap.")
                .OnlyWith("fWeaveMode", kFree, 1),
            FIELD(WeaveParams, fWeftWidth, "Width of weft #", "Relative to the other widths and the gap.")
                .OnlyWith("fWeaveMode", kFree, 1),
            FIELD(WeaveParams, fMask, "Mask", "Threads white and gaps black instead of the colours."),
            FIELD(WeaveParams, fMaskInvert, "Invert mask", "Threads black and gaps white."),
            FIELD(WeaveParams, fDisplaceBeforeSubShader, "First displacement",
                "Moves both coordinates before tiling."),
            FIELD(WeaveParams, fDisplaceAfterSubShader, "Second displacement",
                "Moves both coordinates inside the tile."),
            FIELD(WeaveParams, fGapSubShader, "Gaps", "What shows between the threads."),
            FIELD(WeaveParams, fWarpSubShader, "Warp #",
                "Colour of warp thread #. The threads in use end at the first empty slot.")
                .OnlyWith("fWeaveMode", kFree, 1),
            FIELD(WeaveParams, fWeftSubShader, "Weft #",
                "Colour of weft thread #. The threads in use end at the first empty slot.")
                .OnlyWith("fWeaveMode", kFree, 1),
            FIELD(WeaveParams, fAlongUV, "V along the thread",
                "A thread's shader gets the place along the thread as its V, 0 to 1."),
            FIELD(WeaveParams, fAcrossUV, "U across the thread",
                "A thread's shader gets the place across the thread as its U, 0 to 1."),
        }};
    table.fStandard = &standard;
    return table;
}
