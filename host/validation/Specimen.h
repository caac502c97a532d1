#pragma once
#include "frame/I3DExShader.h"
#include "frame/IExDataExchanger.h"
#include "frame/SubShader.h"
#include "host/library/Library.h"
#include "host/parameters/ParameterTable.h"

namespace fernwick::validation {

/// An object of the library, held as by a host without wrappers.
class Specimen {
public:
    /// Throws `LibraryError` when the object isn't made.
    Specimen(const Library& library, const ParameterTable& table) : Specimen(library, table.fClassIDs.front())
    { }
    Specimen(const Library& library, const GUID& classID);

    I3DExShader& Shader() const { return *fShader; }
    IExDataExchanger& Exchanger() const { return *fExchanger; }
    char* Record() const { return static_cast<char*>(fExchanger->GetExtensionDataBuffer()); }
    SubShaderSlot& Slot(const Field& field) const
    {
        return *reinterpret_cast<SubShaderSlot*>(Record() + field.fOffset);
    }
    MCErr Changed() const { return fExchanger->ExtensionDataChanged(); }

private:
    MCCountedPtr<I3DExShader> fShader;
    MCCountedPtr<IExDataExchanger> fExchanger;
};

/// Where a field's data lie in a record. A string's table of operations and its padding are no data.
struct FieldPlace {
    size_t start;
    size_t size; ///< bytes
};
FieldPlace PlaceOf(const Field& field);

/// The slots of a class.
std::vector<const Field*> SlotsOf(const ParameterTable& table);

/// The first field in which two records of the class differ, with both values; empty for none. Slots don't count.
std::string DifferenceOf(const ParameterTable& table, const void* left, const void* right);

/// A copy of a record's data, to be compared with what becomes of it.
class RecordCopy {
public:
    RecordCopy(const ParameterTable& table, const Specimen& object)
        : fTable(table), fObject(object), fBytes(object.Record(), object.Record() + table.fRecordSize)
    { }

    /// The first field that isn't as it was, with what was expected and what came; empty for none.
    /// @param derived   fields that the table calls derived may change
    /// @param written   names of further fields that may
    std::string Change(bool derived, std::string_view written) const;

private:
    const ParameterTable& fTable;
    const Specimen& fObject;
    std::vector<char> fBytes;
};

/// What the check loads: the library with the host's own services.
struct Subject {
    explicit Subject(const std::filesystem::path& path) : library(path, utilities) { }

    MCCountedPtr<Utilities> utilities = MakeCounted<Utilities>();
    Library library;

    MemoryService& Memory() const { return utilities->Memory(); }
    /// Makes an object in memory that is full of `byte`.
    Specimen MakeIn(uint8_t byte, const GUID& classID) const;
    /// What is left in the library's hands, in words that begin with `when`; empty for nothing.
    std::string Remains(const std::string& when = "after the last release") const;
};

} // namespace fernwick::validation
