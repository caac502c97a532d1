// The routes of the module `Fernwick_unrouted`, in place of the pack's.
#include "module/ClassRoutes.h"
#include "module/UnroutedClassIDs.h"
#include "shaders/layers/Shadow_pass.h"
#include "shaders/scene/Corners.h"
#include "shaders/scene/Curvature.h"

const ClassRoute kClassRoutes[] = {
    {*UnroutedClassID("Curvature"), &Make<Curvature>},
    {*UnroutedClassID("Corners"), &Make<Corners>},
    {*UnroutedClassID("Shadow_pass"), &Make<Shadow_pass>},
    {{}, nullptr},
};
