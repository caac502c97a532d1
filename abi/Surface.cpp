// Everything that a host and the library share beyond the six functions, within reach of an exported function, so
// that a description of the binary interface holds it. See scripts/abi.
#include "frame/HostServices.h"
#include "frame/I3DExShader.h"
#include "frame/IExDataExchanger.h"
#include "frame/IMFPart.h"
#include "frame/IShellDataComponent.h"
#include "frame/IShellShader.h"
#include "frame/SceneServices.h"
#include "frame/TMCException.h"
#include "module/ClassFactory.h"
#include "module/Exports.h"
#include "shaders/layers/MultiPassControl.h"
#include "shaders/layers/MultiPassManager.h"
#include "shaders/layers/Shadow_pass.h"
#include "shaders/layers/Super_mixer.h"
#include "shaders/layers/Super_mixer_top.h"
#include "shaders/mapping/Coordinate_Shift.h"
#include "shaders/mapping/Gray.h"
#include "shaders/mapping/Key.h"
#include "shaders/mapping/Location.h"
#include "shaders/optics/Fresnel.h"
#include "shaders/optics/Iridescent.h"
#include "shaders/patterns/Drip.h"
#include "shaders/patterns/Spoke.h"
#include "shaders/patterns/Weave.h"
#include "shaders/scene/Corners.h"
#include "shaders/scene/Curvature.h"
#include "shaders/scene/INormalGrid.h"
#include "shaders/scene/Lit.h"
#include "shaders/scene/Proximity.h"
#include "shaders/scene/Translucent.h"

extern "C" {

MC_EXPORT void LibraryInterfaces(IExClassFactory*, I3DExShader*, IExDataExchanger*, INormalGrid*) { }

MC_EXPORT void HostInterfaces(IShellShader*, IShellDataComponent*, ITreeElement*, IScene*, IGroup*,
    IRenderingModule*, ILight*, IInstance*, IMFPart*)
{ }

MC_EXPORT void HostServices(IMemoryUtilities*, IDebugUtilities*, IShellUtilities*, IShSafeUtilities*) { }

MC_EXPORT void ParameterRecords(Coordinate_ShiftParams*, CornersParams*, CurvatureParams*, DripParams*,
    FresnelParams*, GrayParams*, IridescentParams*, KeyParams*, LitParams*, LocationParams*,
    MultiPassControlParams*, MultiPassManagerParams*, ProximityParams*, Shadow_passParams*, SpokeParams*,
    Super_mixerParams*, Super_mixer_topParams*, TranslucentParams*, WeaveParams*)
{ }

MC_EXPORT void Attributes(TMFBooleanAttribute*, TMFReal32Attribute*) { }

MC_EXPORT void Thrown(TMCException*) { }
}
