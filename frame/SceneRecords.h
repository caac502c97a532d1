#pragma once
#include "frame/Colors.h"
#include "frame/Layout.h"
#include "frame/ShadingIn.h"
#include "frame/Vectors.h"

/// A light at one moment, filled by the host.
struct LightState {
    int32_t fKind = 0; ///< 1: no range and no cone; 3: a range and a cone; any other: a range and no cone
    TMCColorRGB fLightColor = TMCColorRGB::kBlack; ///< with the light's brightness already in it
    TMCColorRGB fSecondColor = TMCColorRGB::kBlack;
    TVector3 fVectors[2];
    float fOuterAngle = 0; ///< outer cone angle, degrees
    float fInnerAngle = 0; ///< inner cone angle, degrees
    float fNearRange = 0;  ///< up to this distance the light is at full strength
    float fFarRange = 0;   ///< beyond this distance the light has no effect
};
static_assert(offsetof(LightState, fKind) == 0 && offsetof(LightState, fLightColor) == 4);
static_assert(offsetof(LightState, fSecondColor) == 16 && offsetof(LightState, fVectors) == 28);
static_assert(offsetof(LightState, fOuterAngle) == 52 && offsetof(LightState, fInnerAngle) == 56);
static_assert(offsetof(LightState, fNearRange) == 60 && offsetof(LightState, fFarRange) == 64);
static_assert(sizeof(LightState) == 68);

/// The rotation inside a `TTreeTransform`: a matrix, taken to come first, and what the host keeps beside it.
struct TTreeRotation {
    float fMatrix[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    uint8_t fHostData[20] = {};
};
static_assert(sizeof(TTreeRotation) == 56 && offsetof(TTreeRotation, fHostData) == 36);

/// The full transform of a scene element, with scale.
struct TTreeTransform {
    int32_t fMode = 0;
    TVector3 fFirstVector;
    float fMatrix[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    TTreeRotation fRotation;
    TVector3 fSecondVector;
    float fUniformScale = 1;
    TVector3 fScale{1, 1, 1};
};
static_assert(offsetof(TTreeTransform, fFirstVector) == 4 && offsetof(TTreeTransform, fMatrix) == 16);
static_assert(offsetof(TTreeTransform, fRotation) == 52 && offsetof(TTreeTransform, fSecondVector) == 108);
static_assert(offsetof(TTreeTransform, fUniformScale) == 120 && offsetof(TTreeTransform, fScale) == 124);
static_assert(sizeof(TTreeTransform) == 136);

/// An axis-aligned box; a fresh one is empty.
struct TBBox3D {
    TVector3 fMin{1.0e20f, 1.0e20f, 1.0e20f};
    TVector3 fMax{-1.0e20f, -1.0e20f, -1.0e20f};
};
static_assert(sizeof(TBBox3D) == 24 && offsetof(TBBox3D, fMax) == 12);

/// A ray; the direction need not be normalised, and distances are counted in its length.
struct TRay3D {
    TVector3 fOrigin;
    TVector3 fDirection;
    TVector3 fHostVectors[3];
    TVector3 fLastVector;
    uint8_t fFlags = 0; ///< the two low bits are the host's and stay clear
    uint8_t fPadding[3] = {};
};
static_assert(offsetof(TRay3D, fDirection) == 12 && offsetof(TRay3D, fHostVectors) == 24);
static_assert(offsetof(TRay3D, fLastVector) == 60 && offsetof(TRay3D, fFlags) == 72 && sizeof(TRay3D) == 76);

/// The shading block of a hit: the fields of `ShadingIn` and what the host keeps behind them.
struct HitShadingBlock {
    ShadingIn fShading;
    uint8_t fHostData[32] = {};
};
static_assert(
    sizeof(HitShadingBlock) == BySize(248, 244) && offsetof(HitShadingBlock, fHostData) == BySize(216, 212));

/// What a ray found, filled by the host.
struct RayHitRecord {
    using Finisher = void (*)(RayHitRecord* record);

    explicit RayHitRecord(int32_t kind);

    HitShadingBlock fBlock;
    double fHitDistance; ///< in lengths of the ray's direction
    TVector3 fHitPoint;
    TTransform3D fTransforms[2];
    float fShapeMatrix[3][3]; ///< derivative of the normal, row by row
    TVector3 fVectors[2];
    int32_t fKind;
    uint8_t fHostDataA[28];
    void* fHostPointerA;
    TVector3 fHostVector;
    uint8_t fHostDataB[12];
    Finisher fFinishHit; ///< set by the host on a hit; completes the derivatives
    void* fHostPointerB;
    uint8_t fFlags[2];
    uint8_t fNeedFinish;
    uint8_t fPadding[5];
};
static_assert(offsetof(RayHitRecord, fBlock) == 0 && offsetof(RayHitRecord, fHitDistance) == 248);
static_assert(offsetof(RayHitRecord, fHitPoint) == 256 && offsetof(RayHitRecord, fTransforms) == 268);
static_assert(offsetof(RayHitRecord, fShapeMatrix) == 364 && offsetof(RayHitRecord, fVectors) == 400);
static_assert(offsetof(RayHitRecord, fKind) == 424 && offsetof(RayHitRecord, fHostDataA) == 428);
static_assert(
    offsetof(RayHitRecord, fHostPointerA) == 456 && offsetof(RayHitRecord, fHostVector) == BySize(464, 460));
static_assert(offsetof(RayHitRecord, fHostDataB) == BySize(476, 472)
    && offsetof(RayHitRecord, fFinishHit) == BySize(488, 484));
static_assert(offsetof(RayHitRecord, fHostPointerB) == BySize(496, 488)
    && offsetof(RayHitRecord, fFlags) == BySize(504, 492));
static_assert(
    offsetof(RayHitRecord, fNeedFinish) == BySize(506, 494) && sizeof(RayHitRecord) == BySize(512, 504));

/// One ray query.
struct RayHitParams {
    RayHitParams(TRay3D& ray, RayHitRecord& hit) : fRay(&ray), fHit(&hit) { }

    float fNearLimit = 0;
    float fFarLimit = 1.0e30f;
    TRay3D* fRay;
    RayHitRecord* fHit;
    uint32_t fWords[3] = {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
    uint8_t fPadding[4] = {};
    uint64_t fLastWords[2] = {};
};
static_assert(offsetof(RayHitParams, fFarLimit) == 4 && offsetof(RayHitParams, fRay) == 8);
static_assert(
    offsetof(RayHitParams, fHit) == BySize(16, 12) && offsetof(RayHitParams, fWords) == BySize(24, 16));
static_assert(offsetof(RayHitParams, fLastWords) == BySize(40, 32) && sizeof(RayHitParams) == BySize(56, 48));
