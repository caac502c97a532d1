#include "bench/Bench.h"
#include "frame/SceneLookup.h"
#include "host/Scene.h"
#include "shaders/scene/Proximity.h"
#include "shaders/scene/Translucent.h"

namespace {

constexpr GUID kProximityID = {0xCCE54E2B, 0x7650, 0x4059, {0x81, 0x9F, 0x78, 0x6B, 0x24, 0x9F, 0x25, 0xBC}};
constexpr GUID kTranslucentID
    = {0x999C3DA8, 0x7456, 0x4FB4, {0xA4, 0x81, 0x27, 0x00, 0xFC, 0xFE, 0x74, 0x9D}};

using Scene = MCCountedPtr<fernwick::Scene>;

/// A scene of branches of ten elements, every second one a lamp; root and shaded object count too.
Scene MakeScene(int count)
{
    fernwick::SceneDescription description;
    for (int i = 2; i < count; ++i) {
        const std::string name = (i % 2 == 0 ? "Lamp " : "Plate ") + std::to_string(i);
        const TVector3 place(static_cast<float>(i % 7), static_cast<float>(i % 5), static_cast<float>(i % 3));
        auto& siblings = i % 10 == 2 ? description.fElements : description.fElements.back().fChildren;
        siblings.push_back({.fName = name, .fPlace = {.fTranslation = place}});
    }
    return fernwick::MakeCounted<fernwick::Scene>(description);
}

IMCUnknown* InstanceOf(const Scene& scene) { return static_cast<ITreeElement*>(&scene->ShadedObject()); }

/// The walk that group mode can't avoid: every element's name, and the distance to those of the group.
void Walk(ITreeElement& tree, const TVector3& from, TMCStringOf<1023>& name, float& best)
{
    tree.GetName(name);
    if (std::strncmp(name.GetText(), "Lamp", 4) == 0) {
        const float distance = static_cast<float>(Length(GlobalPosition(tree) - from));
        if (best > distance)
            best = distance;
    }
    MCCountedPtr<ITreeElement> child;
    tree.GetFirstChild(child.Address());
    while (child) {
        Walk(*child, from, name, best);
        MCCountedPtr<ITreeElement> next;
        child->GetNextSibling(next.Address());
        child = next;
    }
}

MeasuredShader<ProximityParams> MakeProximity(const char* target, bool single)
{
    const MeasuredShader<ProximityParams> proximity(kProximityID);
    proximity.Record().fTargetName = target;
    proximity.Record().fSingleObject = single;
    proximity.Record().fReference = Code("Opt3");
    proximity.Changed();
    return proximity;
}

void AddProximity(int count)
{
    const Scene scene = MakeScene(count);
    const Samples samples = MakeSamples(InstanceOf(scene));
    const auto proximity = MakeProximity("Lamp", false);
    const auto walk = [=](size_t i) {
        TMCStringOf<1023> name;
        float best = 1e7f;
        Walk(scene->Root(), (*samples)[i].fPointGlobal, name, best);
        return best;
    };
    const std::string row = Section::kProximity + "/" + std::to_string(count) + " elements";
    AddPass(row + kMeasured, [=, keep = scene](size_t i) { return proximity.Value((*samples)[i]); });
    AddPass(row + kReference, walk);
}

} // namespace

void AddScene()
{
    for (const int count : {10, 100, 1000})
        AddProximity(count);

    const Scene scene = MakeScene(10);
    const Samples samples = MakeSamples(InstanceOf(scene));
    const auto proximity = MakeProximity("Lamp 8", true);
    AddPass(Section::kHost + "/Proximity ShadeValue, one object" + kMeasured,
        [=, keep = scene](size_t i) { return proximity.Value((*samples)[i]); });

    const MeasuredShader<TranslucentParams> translucent(kTranslucentID);
    translucent.Record().fCameraName = "Plate 3";
    translucent.Record().fLightName = "Lamp 8";
    translucent.Changed();
    AddPass(Section::kHost + "/Translucent ShadeColor" + kMeasured,
        [=, keep = scene](size_t i) { return translucent.Color((*samples)[i]); });
}
