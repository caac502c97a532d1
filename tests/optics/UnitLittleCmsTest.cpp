#include "optics/ColorSystem.h"
#include "optics/ColorSystems.h"
#include "tests/optics/ExpectNear.h"
#include <lcms2.h>
#include <string>

namespace {

using namespace ColorSystems;

cmsCIEXYZ Cms(const Float3& xyz) { return {xyz[0], xyz[1], xyz[2]}; }
cmsCIExyY CmsxyY(const Float3& xyY) { return {xyY[0], xyY[1], 1}; }
Float3 FromCms(const cmsCIEXYZ& xyz)
{
    return {static_cast<float>(xyz.X), static_cast<float>(xyz.Y), static_cast<float>(xyz.Z)};
}

/// Little CMS's way from XYZ under a white to R, G, B of the primaries of a system under that white.
Float3 LittleCmsRGB(const ColorSystem& primaries, const Float3& white, const Float3& xyz)
{
    const cmsCIExyY cmsWhite = CmsxyY(white);
    const cmsCIExyYTRIPLE triple
        = {CmsxyY(primaries.xyYRed), CmsxyY(primaries.xyYGreen), CmsxyY(primaries.xyYBlue)};
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, 1);
    cmsToneCurve* const curves[] = {curve, curve, curve};
    const cmsHPROFILE display = cmsCreateRGBProfile(&cmsWhite, &triple, curves);
    const cmsHPROFILE space = cmsCreateXYZProfile();
    const cmsHTRANSFORM transform = cmsCreateTransform(
        space, TYPE_XYZ_DBL, display, TYPE_RGB_DBL, INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE);
    const cmsCIEXYZ whiteXYZ = Cms(XyYToXYZ({white[0], white[1], 1}));
    const cmsCIEXYZ color = Cms(xyz);
    cmsCIEXYZ adapted;
    cmsAdaptToIlluminant(&adapted, &whiteXYZ, cmsD50_XYZ(), &color);
    double rgb[3];
    cmsDoTransform(transform, &adapted, rgb, 1);
    cmsDeleteTransform(transform);
    cmsCloseProfile(space);
    cmsCloseProfile(display);
    cmsFreeToneCurve(curve);
    return {static_cast<float>(rgb[0]), static_cast<float>(rgb[1]), static_cast<float>(rgb[2])};
}

const Float3 kColors[] = {{0.3f, 0.3f, 0.2f}, {0.45f, 0.4f, 0.5f}, {0.2f, 0.25f, 0.05f},
    {0.312713f, 0.329016f, 1}, {0.6f, 0.33f, 0.1f}};

TEST(Lab, AgreesWithLittleCms)
{
    for (const ColorSystem* system : {&sRGBSystem, &Source, &CIEsystem}) {
        const Float3 white = XyYToXYZ(system->xyYWhite);
        const cmsCIEXYZ cmsWhite = Cms(white);
        for (Float3 xyY : kColors)
            for (const float Y : {xyY[2], 0.004f, 0.0f}) { // 0.004 lies on the straight part
                xyY[2] = Y;
                const Float3 xyz = XyYToXYZ(xyY);
                const cmsCIEXYZ cmsColor = Cms(xyz);
                cmsCIELab lab;
                cmsXYZ2Lab(&cmsWhite, &lab, &cmsColor);
                const Float3 expected
                    = {static_cast<float>(lab.L), static_cast<float>(lab.a), static_cast<float>(lab.b)};
                ExpectNear(XYZToLab(xyz, white), expected, 2e-4f);
                if (Y > 0.01f)
                    ExpectNear(LabToXYZ(expected, white), xyz, 2e-6f);
            }
    }
}

TEST(AdaptToWhite, IsTheBradfordTransformOfLittleCms)
{
    for (const auto& [from, to] : {std::pair{&sRGBSystem, &Source}, {&CIEsystem, &sRGBSystem},
             {&Source, &MyMonitor}, {&sRGBSystem, &sRGBSystem}})
        for (const Float3& xyY : kColors) {
            const cmsCIEXYZ source = Cms(XyYToXYZ(from->xyYWhite));
            const cmsCIEXYZ destination = Cms(XyYToXYZ(to->xyYWhite));
            const cmsCIEXYZ color = Cms(XyYToXYZ(xyY));
            cmsCIEXYZ expected;
            cmsAdaptToIlluminant(&expected, &source, &destination, &color);
            ExpectNear(AdaptToWhite(*from, *to, xyY[0], xyY[1], xyY[2]), FromCms(expected), 2e-6f);
        }
}

TEST(XyYToRGB, AgreesWithLittleCmsBeyondTheCubeToo)
{
    for (const auto& [primaries, white] : {std::pair{&sRGBSystem, &sRGBSystem}, {&AdobeRGB, &sRGBSystem},
             {&MyMonitor, &MyMonitor}, {&sRGBSystem, &Source}}) {
        const std::string what = std::string(primaries->fName) + " " + white->fName;
        for (const auto& [x, y, Y] : kColors) {
            const Float3 xyz = AdaptToWhite(*primaries, *white, x, y, Y);
            const Float3 expected = LittleCmsRGB(*primaries, white->xyYWhite, xyz);
            ExpectNear(XyYToRGB(*primaries, *white, x, y, Y), expected, 1e-4f, what);
        }
        const auto [x, y, Y] = primaries->xyYWhite;
        ExpectNear(XyYToRGB(*primaries, *white, x, y, 1), {1, 1, 1}, 2e-6f, what);
    }
}

} // namespace
