#include "tests/support/ShaderTest.h"
#include <cstring>

namespace {

constexpr GUID kKeyID = {0x379752D6, 0xC5EB, 0x4173, {0xB3, 0xE4, 0xFF, 0x72, 0x77, 0x69, 0x48, 0x3A}};

/// An operation by its place, as a host finds it that another compiler made.
template <class Operation> Operation OperationAt(size_t place, I3DExShader& shader)
{
    void** operations;
    std::memcpy(&operations, static_cast<void*>(&shader), sizeof operations);
    return reinterpret_cast<Operation>(operations[place]);
}

TMCColorRGB WhiteOf(I3DExShader& shader)
{
#ifdef _WIN32 // a record comes back in room that the caller names after `this`
    TMCColorRGB room{9, 9, 9};
    EXPECT_EQ((OperationAt<TMCColorRGB* (*)(I3DExShader*, TMCColorRGB*)>(42, shader)(&shader, &room)), &room);
    return room;
#else // three floats come back in registers
    return OperationAt<TMCColorRGB (*)(I3DExShader*)>(42, shader)(&shader);
#endif
}

class CallingConventionTest : public ShaderTest { };

TEST_F(CallingConventionTest, WhiteComesBackAsThePlatformReturnsARecord)
{
    const auto made = fernwick::ShaderWrapper::Make(TestedLibrary(), kKeyID);
    I3DExShader& shader = made->Shader();
    for (const TMCColorRGB& white : {WhiteOf(shader), shader.GetWhite()}) {
        EXPECT_EQ(white.fRed, 1);
        EXPECT_EQ(white.fGreen, 1);
        EXPECT_EQ(white.fBlue, 1);
    }
    EXPECT_EQ(OperationAt<float (*)(I3DExShader*)>(43, shader)(&shader), 1.0f); // GetUnitScale, next to it
}

} // namespace
