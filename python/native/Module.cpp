#include "python/native/Rooms.h"

PYBIND11_MODULE(_native, module)
{
    module.attr("version") = FERNWICK_VERSION;
    AddErrors(module);
    AddLibrary(module);
    AddTables(module);
    AddPictures(module);
    AddMeshes(module);
    AddGraphs(module);
    AddBakes(module);
    AddRenders(module);
    AddSamples(module);
    AddValidation(module);
    AddProcessor(module);
}
