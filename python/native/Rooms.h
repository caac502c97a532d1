#pragma once
#include <pybind11/pybind11.h>

// What the module offers, by the room of the host that does it.

void AddErrors(pybind11::module_& module);
void AddLibrary(pybind11::module_& module);
void AddTables(pybind11::module_& module);
void AddPictures(pybind11::module_& module);
void AddMeshes(pybind11::module_& module);
void AddGraphs(pybind11::module_& module);
void AddBakes(pybind11::module_& module);
void AddRenders(pybind11::module_& module);
void AddSamples(pybind11::module_& module);
void AddValidation(pybind11::module_& module);
void AddProcessor(pybind11::module_& module);
