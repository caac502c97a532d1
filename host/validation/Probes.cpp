#include "host/validation/Probes.h"
#include <cstring>

namespace fernwick::validation {

namespace {

TTransform3D RandomTransform(Random& random)
{
    TTransform3D transform;
    if (random.OneIn(2))
        for (auto& row : transform.fMatrix)
            for (float& number : row)
                number = random.Float();
    transform.fTranslation = random.Vector();
    return transform;
}

LightState RandomLight(Random& random)
{
    LightState state;
    state.fKind = random.OneIn(4) ? random.Integer() : static_cast<int32_t>(1 + random.Below(3));
    state.fLightColor = {random.Float(), random.Float(), random.Float()};
    for (float* const number : {&state.fOuterAngle, &state.fInnerAngle, &state.fNearRange, &state.fFarRange})
        *number = random.Float();
    return state;
}

std::string ReferencesText(uint32_t count, const std::string& name)
{
    return count == 1 ? "" : "references to " + name + ": expected 1, came " + std::to_string(count);
}

} // namespace

std::string Held(IMCUnknown& object, const std::string& name)
{
    return ReferencesText(ReferencesOf(object), name);
}

MCErr ProbeShader::QueryInterface(const GUID& id, void** out)
{
    Connecting("QueryInterface", DigestOf(id));
    return Component::QueryInterface(id, out);
}

uint32_t ProbeShader::AddRef()
{
    Connecting("AddRef");
    return Component::AddRef();
}

uint32_t ProbeShader::Release()
{
    Connecting("Release");
    return Component::Release();
}

uint32_t ProbeShader::GetOutputKinds()
{
    Connecting("GetOutputKinds");
    return fKinds;
}

void ProbeShader::Connecting(const char* operation, uint64_t with) const
{
    if (fLog != nullptr)
        fLog->fConnecting.push_back({operation, fSlot, with});
}

template <class Result>
void ProbeShader::Shading(
    const char* operation, const ShadingIn& in, const Result& result, bool fullArea) const
{
    if (fLog != nullptr)
        fLog->Shading({operation, fSlot, DigestOf(in), DigestOf(result) + static_cast<uint64_t>(fullArea)});
}

Random ProbeShader::Answers(const ShadingIn& in) const
{
    uint32_t words[3];
    std::memcpy(words, &in.fUV, 8);
    std::memcpy(words + 2, &in.fPointLocal, 4);
    return Random(words[0] ^ (uint64_t{words[1]} << 20) ^ (uint64_t{words[2]} << 32) ^ fSalt);
}

void ProbeShader::GetShadingFlags(ShadingFlags& flags)
{
    Connecting("GetShadingFlags", DigestOf(flags));
    flags.fNeeds |= kNeedsAll;
    flags.fDependencyBits = 0;
}

int32_t ProbeShader::ShadeSurface(ShadingOut& result, ShadingIn& in)
{
    Shading("ShadeSurface", in, result, false);
    Random answers = Answers(in);
    for (TMCColorRGB* const color : {&result.fSecondColor, &result.fThirdColor, &result.fFourthColor})
        *color = {answers.Float(), answers.Float(), answers.Float()};
    result.fSampledBlock.fSampleCount = answers.Integer();
    result.fSingleBlock.fCount = answers.Integer();
    result.fSingleBlock.fSwitch = static_cast<uint8_t>(answers.Bits());
    result.fVectorBlock.fLocal = answers.OneIn(2);
    result.fScalarA = answers.Float();
    bool fullArea = false;
    AnswerColor(result.fColor, fullArea, in);
    return answers.OneIn(4) ? 0 : 1;
}

float ProbeShader::ShadeValue(float& value, bool& fullArea, ShadingIn& in)
{
    Shading("ShadeValue", in, value, fullArea);
    Random answers = Answers(in);
    fullArea = answers.OneIn(2);
    value = answers.Float();
    return 1;
}

float ProbeShader::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    Shading("ShadeColor", in, color, fullArea);
    AnswerColor(color, fullArea, in);
    return 1;
}

void ProbeShader::AnswerColor(TMCColorRGBA& color, bool& fullArea, const ShadingIn& in) const
{
    Random answers = Answers(in);
    fullArea = answers.OneIn(2);
    color = {answers.Float(), answers.Float(), answers.Float(), answers.Float()};
}

class ProbeScene::Element final : public Component<ITreeElement, IID_ITreeElement>,
                                  public ILight,
                                  public IInstance {
public:
    Element(ProbeScene& scene, Part part, Random& random)
        : fScene(scene), fPart(part), fTransform(RandomTransform(random)),
          fLightTransform(RandomTransform(random)), fState(RandomLight(random)), fHotPoint(random.Vector()),
          fBrightness(random.Float())
    { }

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        fScene.Connecting("QueryInterface", fPart, DigestOf(id));
        if (SameGuid(id, IID_ILight))
            *out = static_cast<ILight*>(this);
        else if (SameGuid(id, IID_IInstance))
            *out = static_cast<IInstance*>(this);
        else
            return Component::QueryInterface(id, out);
        AddRef();
        return MC_S_OK;
    }
    uint32_t AddRef() override
    {
        fScene.Connecting("AddRef", fPart);
        return Component::AddRef();
    }
    uint32_t Release() override
    {
        fScene.Connecting("Release", fPart);
        return Component::Release();
    }

    void GetScene(IScene** out) override
    {
        Asked("GetScene");
        fScene.Give(out, static_cast<IScene*>(&fScene));
    }
    void GetName(TMCString& name) override
    {
        Asked("GetName");
        if (Speaks())
            name = fPart == kLight ? "Light" : "";
    }
    void GetFirstChild(ITreeElement** out) override
    {
        Asked("GetFirstChild");
        GivePart(out, fPart == kRoot ? At(kShaded) : nullptr);
    }
    void GetNextSibling(ITreeElement** out) override
    {
        Asked("GetNextSibling");
        GivePart(out, fPart == kShaded ? At(kLight) : nullptr);
    }
    void GetParent(ITreeElement** out) override
    {
        Asked("GetParent");
        GivePart(out, fPart == kRoot ? nullptr : At(kRoot));
    }
    void GetHotPoint(TVector3& hotPoint) override
    {
        Asked("GetHotPoint");
        if (Speaks())
            hotPoint = fHotPoint;
    }
    void GetBoundingBox(TBBox3D&, int32_t mode, bool) override { Asked("GetBoundingBox", DigestOf(mode)); }
    void GetNameScratch(TMCString& text) override
    {
        Asked("GetNameScratch");
        if (Speaks())
            text = fPart == kLight ? "Light" : "";
    }
    void GetGlobalTransform(TTransform3D& transform) override
    {
        Asked("GetGlobalTransform");
        if (Speaks())
            transform = fTransform;
    }
    void GetTreeTransform(TTreeTransform& transform) override
    {
        Asked("GetTreeTransform");
        if (Speaks())
            transform.fSecondVector = fTransform.fTranslation;
    }
    void GetLightTransform(TTransform3D& transform) override
    {
        Asked("GetLightTransform");
        if (Speaks())
            transform = fLightTransform;
    }
    void GetLightParameter(int32_t parameter, float& value) override
    {
        Asked("GetLightParameter", DigestOf(parameter));
        if (Speaks())
            value = fBrightness;
    }
    void GetDirection(const TVector3& point, TVector3& direction, float& distance) override
    {
        Asked("GetDirection", DigestOf(point));
        if (!Speaks())
            return;
        direction = fLightTransform.fTranslation - point;
        distance = static_cast<float>(Length(direction));
    }
    void GetLightState(LightState& state) override
    {
        Asked("GetLightState");
        if (Speaks())
            state = fState;
    }
    bool CastRay(RayHitParams& params) override
    {
        const TVector3 ray[] = {params.fRay->fOrigin, params.fRay->fDirection};
        const float limits[] = {params.fNearLimit, params.fFarLimit};
        const uint64_t digest = DigestOf(ray) + DigestOf(limits);
        Asked("CastRay", digest);
        Random answers(digest);
        if (!Speaks() || answers.OneIn(4))
            return false;
        RayHitRecord& hit = *params.fHit;
        hit.fHitDistance = answers.Float();
        for (TVector3* const derivative : {&hit.fBlock.fShading.fDerivU, &hit.fBlock.fShading.fDerivV})
            *derivative = answers.Vector();
        for (auto& row : hit.fShapeMatrix)
            for (float& number : row)
                number = answers.Float();
        hit.fFinishHit = answers.OneIn(2) ? &Finish : nullptr;
        return true;
    }

private:
    ProbeScene& fScene;
    Part fPart;
    TTransform3D fTransform;
    TTransform3D fLightTransform;
    LightState fState;
    TVector3 fHotPoint;
    float fBrightness;

    /// The two derivatives change places, so that a hit that isn't finished shows.
    static void Finish(RayHitRecord* hit)
    {
        if (hit->fNeedFinish != 0)
            std::swap(hit->fBlock.fShading.fDerivU, hit->fBlock.fShading.fDerivV);
    }

    void Asked(const char* operation, uint64_t with = 0) const { fScene.Asked(operation, fPart, with); }
    bool Speaks() const { return fScene.fHospitality != Hospitality::kLeavesUntouched; }
    Element* At(Part part) const { return fScene.fElements[part].Get(); }
    void GivePart(ITreeElement** out, Element* part) { fScene.Give<ITreeElement>(out, part); }
};

ProbeScene::ProbeScene(Hospitality hospitality, Random& random) : fHospitality(hospitality)
{
    for (const Part part : {kRoot, kShaded, kLight})
        fElements.push_back(MakeCounted<Element>(*this, part, random));
}

ProbeScene::~ProbeScene() = default;

IMCUnknown* ProbeScene::Instance() { return static_cast<ITreeElement*>(fElements[kShaded].Get()); }

std::string ProbeScene::Held()
{
    constexpr const char* kNames[] = {"the scene's root", "the shaded element", "the scene's light"};
    std::string held = ReferencesText(fCount, "the scene");
    for (const Part part : {kRoot, kShaded, kLight})
        if (held.empty())
            held = validation::Held(static_cast<ITreeElement&>(*fElements[part]), kNames[part]);
    return held;
}

void ProbeScene::Connecting(const char* operation, uint32_t part, uint64_t with) const
{
    if (fLog != nullptr)
        fLog->fConnecting.push_back({operation, part, with});
}

void ProbeScene::Asked(const char* operation, uint32_t part, uint64_t with) const
{
    if (fLog != nullptr)
        fLog->Shading({operation, part, with});
}

template <class Face> void ProbeScene::Give(Face** out, Face* object) const
{
    if (fHospitality == Hospitality::kLeavesUntouched)
        return;
    Face* const given = fHospitality == Hospitality::kGives ? object : nullptr;
    if (given != nullptr)
        given->AddRef();
    *out = given;
}

MCErr ProbeScene::QueryInterface(const GUID& id, void** out)
{
    return fElements[kRoot]->QueryInterface(id, out); // the root group's; nobody asks the other faces
}

uint32_t ProbeScene::AddRef()
{
    Connecting("AddRef", kScene);
    return ++fCount;
}

uint32_t ProbeScene::Release()
{
    Connecting("Release", kScene);
    return --fCount;
}

void ProbeScene::GetRootGroup(IGroup** out)
{
    Asked("GetRootGroup", kScene);
    Give(out, static_cast<IGroup*>(this));
}

void ProbeScene::GetTreeByName(ITreeElement** out, const TMCString& name)
{
    Asked("GetTreeByName", kScene, DigestOf(name.GetText(), name.GetLength()));
    const bool known = !name.IsEmpty() && static_cast<unsigned char>(name.GetText()[0]) % 8 != 0;
    Give<ITreeElement>(out, known ? fElements[kLight].Get() : nullptr);
}

void ProbeScene::GetRenderingModule(IRenderingModule** out)
{
    Asked("GetRenderingModule", kScene);
    Give(out, static_cast<IRenderingModule*>(this));
}

void ProbeScene::GetRenderingCameraName(TMCString& name)
{
    Asked("GetRenderingCameraName", kScene);
    if (fHospitality != Hospitality::kLeavesUntouched)
        name = "Light";
}

} // namespace fernwick::validation
