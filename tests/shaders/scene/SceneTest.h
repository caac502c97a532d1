#pragma once
#include "tests/support/FakeScene.h"
#include "tests/support/ShaderTest.h"

using Reports = std::vector<std::string>;

inline FakeElement& AddAt(FakeScene& scene, const std::string& name, const TVector3& place)
{
    FakeElement& element = scene.Add(name);
    element.fTransform.fTranslation = place;
    return element;
}

/// Adds a shaded element whose rotation and scales must have no effect on its reference points: its origin is
/// (1, 0, 0) and its hot point (1, 2, 0) in the world.
inline FakeElement& AddShaded(FakeScene& scene)
{
    FakeElement& shaded = AddAt(scene, "Shaded", {1, 0, 0});
    const float turned[3][3] = {{0, 2, 0}, {2, 0, 0}, {0, 0, 2}};
    std::memcpy(shaded.fTransform.fMatrix, turned, sizeof turned);
    shaded.fHotPoint = {0, 2, 0};
    shaded.fTreeTransform.fUniformScale = 3;
    shaded.fTreeTransform.fScale = {5, 7, 9};
    return shaded;
}

/// An element as `ShadingIn::fInstance`.
inline IMCUnknown* AsInstance(FakeElement& element) { return static_cast<ITreeElement*>(&element); }

/// The value of a sample, over a 9 that stood there.
template <class Shader> float ValueOf(const Shader& shader, bool& fullArea, ShadingIn& in, float coverage = 1)
{
    float value = 9;
    EXPECT_EQ(shader->ShadeValue(value, fullArea, in), coverage);
    return value;
}

/// The colour of a sample, over nines with the alpha 0.25 that stood there.
template <class Shader> TMCColorRGBA ColorOf(const Shader& shader, bool& fullArea, ShadingIn& in)
{
    TMCColorRGBA color{9, 9, 9, 0.25f};
    EXPECT_EQ(shader->ShadeColor(color, fullArea, in), 1.0f);
    return color;
}

/// A routed shader in a scene.
class SceneTest : public ShaderTest {
protected:
    FakeScene fScene;
    FakeElement& fShaded = AddShaded(fScene);

    SceneTest() { fIn.fInstance = AsInstance(fShaded); }
};
