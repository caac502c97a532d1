#include "frame/SceneLookup.h"
#include "frame/DebugReport.h"
#include "frame/Query.h"

void FindShadedTree(const ShadingIn& in, MCCountedPtr<ITreeElement>& tree, MCCountedPtr<IScene>& scene)
{
    tree = nullptr;
    scene = nullptr;
    if (in.fInstance == nullptr) {
        MC_REPORT("shadingIn.fInstance");
        return;
    }
    Query(*in.fInstance, IID_ITreeElement, tree);
    if (tree)
        tree->GetScene(scene.Address());
}

bool HasScene(const MCCountedPtr<IScene>& scene)
{
    if (scene)
        return true;
    MC_REPORT("scene");
    return false;
}

bool FindTreeByName(const MCCountedPtr<IScene>& scene, const TMCString255& name, const char* report,
    MCCountedPtr<ITreeElement>& tree)
{
    scene->GetTreeByName(tree.Address(), TMCString255(name));
    if (tree)
        return true;
    MC_REPORT(report);
    return false;
}

void ReadRenderingCameraName(IRenderingModule& renderingModule, TMCString255& name)
{
    TMCString255 fetched(name); // what a module that stores nothing leaves
    renderingModule.GetRenderingCameraName(fetched);
    name = fetched;
}

TVector3 GlobalPosition(ITreeElement& tree)
{
    TTransform3D transform;
    tree.GetGlobalTransform(transform);
    return transform.fTranslation;
}
