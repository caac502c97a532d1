#include "frame/SceneRecords.h"
#include <cstring>

RayHitRecord::RayHitRecord(int32_t kind)
    : fHitDistance(0), // the host's to set on a hit; zero, so that a miss holds nothing random
      fShapeMatrix{}, fKind(kind), fHostDataA{}, fHostPointerA(nullptr), fHostDataB{}, fFinishHit(nullptr),
      fHostPointerB(nullptr), fFlags{1, 1}, fNeedFinish(0), fPadding{}
{
    constexpr uint32_t kAllBits = 0xFFFFF;
    constexpr float kOne = 1.0f;
    fBlock.fShading.fNormalGlobal[0] = kOne;
    fBlock.fShading.fNormalLocal[0] = kOne;
    std::memcpy(fBlock.fShading.fHostDataB + 8, &kAllBits, sizeof kAllBits);
    std::memcpy(fBlock.fHostData + 8, &kOne, sizeof kOne);
    std::memcpy(fBlock.fHostData + 20, &kOne, sizeof kOne);
}
