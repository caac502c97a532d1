#include "host/scene/Instance.h"
#include "host/scene/Placement.h"
#include "host/scene/Scene.h"

namespace fernwick {

namespace {

/// The rotation times the matrix times the inverse rotation: the same derivative in world space.
void TurnShape(const ShapeMatrix& shape, const TTransform3D& place, float (&turned)[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            double sum = 0;
            for (int k = 0; k < 3; ++k)
                for (int l = 0; l < 3; ++l)
                    sum += static_cast<double>(place.fMatrix[i][k]) * shape.fRows[k][l] * place.fMatrix[j][l];
            turned[i][j] = static_cast<float>(sum);
        }
}

} // namespace

void FillSample(const SurfacePoint& point, const TTransform3D& place, ShadingIn& in)
{
    in.fPointLocal = point.fPoint;
    in.fNormalLocal = point.fNormal;
    in.fUV = point.fUV;
    in.fPointGlobal = Placed(place, point.fPoint);
    in.fNormalGlobal = Turned(place, point.fNormal);
    in.fDerivU = Turned(place, point.fDerivU);
    in.fDerivV = Turned(place, point.fDerivV);
}

MCErr Instance::QueryInterface(const GUID& id, void** out) { return fElement.QueryInterface(id, out); }

uint32_t Instance::AddRef() { return fElement.AddRef(); }

uint32_t Instance::Release() { return fElement.Release(); }

bool Instance::CastRay(RayHitParams& params)
{
    const TTransform3D& place = fElement.Transform();
    const TTransform3D toLocal = Inverse(place);
    const std::optional<SurfaceHit> hit = fGeometry->Cast(Placed(toLocal, params.fRay->fOrigin),
        Turned(toLocal, params.fRay->fDirection), params.fNearLimit, params.fFarLimit);
    if (!hit)
        return false;
    RayHitRecord& record = *params.fHit;
    FillSample(fGeometry->PointAt(*hit), place, record.fBlock.fShading);
    record.fHitDistance = hit->fDistance;
    record.fHitPoint = record.fBlock.fShading.fPointGlobal;
    TurnShape(fGeometry->ShapeAt(*hit), place, record.fShapeMatrix);
    record.fFinishHit = nullptr;
    return true;
}

} // namespace fernwick
