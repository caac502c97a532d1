#pragma once
#include "host/parameters/ParameterTable.h"
#include "module/UnroutedClassIDs.h"
#include "tests/support/ShaderTest.h"

/// A shader of any class, made by the factory of the module that has one, with its record as bytes.
struct AnyShader {
    MCCountedPtr<fernwick::ShaderWrapper> fWrapper;

    /// @param twin  of the other identifier, if the class has two
    static AnyShader Make(const fernwick::ParameterTable& table, bool twin = false)
    {
        using fernwick::ShaderWrapper;
        if (const GUID* const unrouted = UnroutedClassID(table.fName))
            return {ShaderWrapper::Make(TestedLibrary().Unrouted(), *unrouted)};
        const GUID& classID = twin ? table.fClassIDs.back() : table.fClassIDs.front();
        return {ShaderWrapper::Make(TestedLibrary(), classID)};
    }

    I3DExShader* operator->() const { return &**this; }
    I3DExShader& operator*() const { return fWrapper->Shader(); }
    char* Record() const { return &fWrapper->Record<char>(); }
    MCErr Changed() const { return fWrapper->Exchanger().ExtensionDataChanged(); }
    bool IsSameAs(const AnyShader& other) const { return (*this)->SameParameters(&*other) != 0; }
};
