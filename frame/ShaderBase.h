#pragma once
#include "frame/TBasicShader.h"

/// A shader without panel events of its own: every event is answered with 1.
class ShaderBase : public TBasicShader {
public:
    int32_t HandleEvent(uint32_t, void*, void*) override { return 1; }

protected:
    ~ShaderBase() = default;
};
