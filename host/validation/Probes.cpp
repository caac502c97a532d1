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

} // namespace

Random ProbeShader::Answers(const ShadingIn& in) const
{
    uint32_t words[3];
    std::memcpy(words, &in.fUV, 8);
    std::memcpy(words + 2, &in.fPointLocal, 4);
    return Random(words[0] ^ (uint64_t{words[1]} << 20) ^ (uint64_t{words[2]} << 32) ^ fSalt);
}

void ProbeShader::GetShadingFlags(ShadingFlags& flags)
{
    flags.fNeeds |= kNeedsAll;
    flags.fDependencyBits = 0;
}

int32_t ProbeShader::ShadeSurface(ShadingOut& result, ShadingIn& in)
{
    Random answers = Answers(in);
    for (TMCColorRGB* const color : {&result.fSecondColor, &result.fThirdColor, &result.fFourthColor})
        *color = {answers.Float(), answers.Float(), answers.Float()};
    result.fSampledBlock.fSampleCount = answers.Integer();
    result.fSingleBlock.fCount = answers.Integer();
    result.fSingleBlock.fSwitch = static_cast<uint8_t>(answers.Bits());
    result.fVectorBlock.fLocal = answers.OneIn(2);
    result.fScalarA = answers.Float();
    bool fullArea = false;
    ShadeColor(result.fColor, fullArea, in);
    return answers.OneIn(4) ? 0 : 1;
}

float ProbeShader::ShadeValue(float& value, bool& fullArea, ShadingIn& in)
{
    Random answers = Answers(in);
    fullArea = answers.OneIn(2);
    value = answers.Float();
    return 1;
}

float ProbeShader::ShadeColor(TMCColorRGBA& color, bool& fullArea, ShadingIn& in)
{
    Random answers = Answers(in);
    fullArea = answers.OneIn(2);
    color = {answers.Float(), answers.Float(), answers.Float(), answers.Float()};
    return 1;
}

class ProbeScene::Element final : public Component<ITreeElement, IID_ITreeElement>, public ILight {
public:
    Element(ProbeScene& scene, Random& random)
        : fScene(scene), fTransform(RandomTransform(random)), fLightTransform(RandomTransform(random)),
          fState(RandomLight(random)), fHotPoint(random.Vector()), fBrightness(random.Float())
    { }

    MCErr QueryInterface(const GUID& id, void** out) override
    {
        if (!SameGuid(id, IID_ILight))
            return Component::QueryInterface(id, out);
        *out = static_cast<ILight*>(this);
        AddRef();
        return MC_S_OK;
    }
    uint32_t AddRef() override { return Component::AddRef(); }
    uint32_t Release() override { return Component::Release(); }

    void GetScene(IScene** out) override { fScene.Give(out, static_cast<IScene*>(&fScene)); }
    void GetName(TMCString& name) override
    {
        if (Speaks())
            name = this == fScene.fElements[kLight].Get() ? "Light" : "";
    }
    void GetFirstChild(ITreeElement** out) override
    {
        GivePart(out, this == At(kRoot) ? At(kShaded) : nullptr);
    }
    void GetNextSibling(ITreeElement** out) override
    {
        GivePart(out, this == At(kShaded) ? At(kLight) : nullptr);
    }
    void GetParent(ITreeElement** out) override { GivePart(out, this == At(kRoot) ? nullptr : At(kRoot)); }
    void GetHotPoint(TVector3& hotPoint) override
    {
        if (Speaks())
            hotPoint = fHotPoint;
    }
    void GetBoundingBox(TBBox3D&, int32_t, bool) override { }
    void GetNameScratch(TMCString& text) override { GetName(text); }
    void GetGlobalTransform(TTransform3D& transform) override
    {
        if (Speaks())
            transform = fTransform;
    }
    void GetTreeTransform(TTreeTransform& transform) override
    {
        if (Speaks())
            transform.fSecondVector = fTransform.fTranslation;
    }
    void GetLightTransform(TTransform3D& transform) override
    {
        if (Speaks())
            transform = fLightTransform;
    }
    void GetLightParameter(int32_t, float& value) override
    {
        if (Speaks())
            value = fBrightness;
    }
    void GetDirection(const TVector3& point, TVector3& direction, float& distance) override
    {
        if (!Speaks())
            return;
        direction = fLightTransform.fTranslation - point;
        distance = static_cast<float>(Length(direction));
    }
    void GetLightState(LightState& state) override
    {
        if (Speaks())
            state = fState;
    }

private:
    ProbeScene& fScene;
    TTransform3D fTransform;
    TTransform3D fLightTransform;
    LightState fState;
    TVector3 fHotPoint;
    float fBrightness;

    bool Speaks() const { return fScene.fHospitality != Hospitality::kLeavesUntouched; }
    Element* At(Part part) const { return fScene.fElements[part].Get(); }
    void GivePart(ITreeElement** out, Element* part) { fScene.Give<ITreeElement>(out, part); }
};

ProbeScene::ProbeScene(Hospitality hospitality, Random& random) : fHospitality(hospitality)
{
    for (int i = 0; i < 3; ++i)
        fElements.push_back(MakeCounted<Element>(*this, random));
}

ProbeScene::~ProbeScene() = default;

IMCUnknown* ProbeScene::Instance() { return static_cast<ITreeElement*>(fElements[kShaded].Get()); }

bool ProbeScene::IsLetGo()
{
    bool letGo = fCount == 1;
    for (const auto& element : fElements)
        letGo = letGo && ReferencesOf(*element) == 1;
    return letGo;
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

void ProbeScene::GetRootGroup(IGroup** out) { Give(out, static_cast<IGroup*>(this)); }

void ProbeScene::GetTreeByName(ITreeElement** out, const TMCString& name)
{
    const bool known = !name.IsEmpty() && static_cast<unsigned char>(name.GetText()[0]) % 8 != 0;
    Give<ITreeElement>(out, known ? fElements[kLight].Get() : nullptr);
}

void ProbeScene::GetRenderingModule(IRenderingModule** out)
{
    Give(out, static_cast<IRenderingModule*>(this));
}

void ProbeScene::GetRenderingCameraName(TMCString& name)
{
    if (fHospitality != Hospitality::kLeavesUntouched)
        name = "Light";
}

} // namespace fernwick::validation
