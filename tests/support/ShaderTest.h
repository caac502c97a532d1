#pragma once
#include "frame/SubShader.h"
#include "host/library/Library.h"
#include "host/library/ShaderWrapper.h"
#include "tests/support/FakeShader.h"
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// The library under test, opened once a program.
fernwick::Library& TestedLibrary();

/// The texts of the debug reports since the last call, in order: those of the library under test, or of `debug`.
std::vector<std::string> TakeReports();
std::vector<std::string> TakeReports(fernwick::DebugService& debug);

/// A shader made by the library's own factory inside the host's wrapper, with its record.
template <class Params> struct MadeShader {
    MCCountedPtr<fernwick::ShaderWrapper> fWrapper;

    explicit MadeShader(const GUID& classID)
        : fWrapper(fernwick::ShaderWrapper::Make(TestedLibrary(), classID))
    { }

    I3DExShader* operator->() const { return &fWrapper->Shader(); }
    I3DExShader& operator*() const { return fWrapper->Shader(); }
    Params& Record() const { return fWrapper->template Record<Params>(); }
    MCErr Changed() const { return fWrapper->Exchanger().ExtensionDataChanged(); }
};

/// Every test of shaders leaves the library as it found it: no component and no block more.
class ShaderTest : public testing::Test {
protected:
    ShaderTest();
    ~ShaderTest() override;

    ShadingIn fIn;
    bool fFullArea = true;

private:
    int64_t fBlocksBefore;
};

/// Plugs `shader` into a slot of a record, counted as the host counts it.
inline void Plug(SubShaderSlot& slot, const MCCountedPtr<FakeShader>& shader) { slot = shader.Get(); }

/// All four channels equal; NaN matches NaN.
MATCHER_P4(IsColor, red, green, blue, alpha, "")
{
    using testing::FloatEq;
    using testing::NanSensitiveFloatEq;
    const float expected[] = {static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue),
        static_cast<float>(alpha)};
    for (uint32_t channel = 0; channel < 4; ++channel)
        if (!testing::Matches(NanSensitiveFloatEq(expected[channel]))(arg[channel])) {
            *result_listener << "channel " << channel << " is " << arg[channel];
            return false;
        }
    return true;
}
