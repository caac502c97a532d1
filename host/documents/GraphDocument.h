#pragma once
#include "frame/IShellShader.h"
#include "frame/MCCountedPtr.h"
#include "host/json/GraphError.h"
#include "host/json/ParseJson.h"
#include "host/parameters/FieldValue.h"
#include "host/scene/Scene.h"

namespace fernwick {

class DocumentFiles;

/// One shader of a document.
struct DocumentShader {
    std::string fName;
    const ParameterTable* fTable;        ///< of its class, or of its kind of source
    std::vector<FieldSetting> fSettings; ///< in the order of the document; a later one counts
    MCCountedPtr<IShellShader> fSource;  ///< ready to be asked by any thread; null for a class of the library
};

/// What a shader plugs in by place, in the order of the record. An emptied slot plugs in nothing.
std::vector<size_t> PluggedIn(const DocumentShader& shader);

/// What users know a shader by: its name, its class and the elements that its record names, such as
/// `wall (Lit, fLightName "Lamp")`.
/// @param record  of the live shader, with the settings in it
std::string TitleOf(const DocumentShader& shader, const void* record);

/// A graph of shaders as a file describes it, read and checked against the tables. Plain data: it needs no
/// library, and any number of threads may make their graphs of it.
///
/// A document is JSON with the keys `shaders`, `output` and, if wanted, `scene`:
///
///     {"shaders": {"key": {"class": "Key", "fMode": "KEYM", "fRedRange": [-30, 30], "fSubShader": "backdrop"},
///                  "backdrop": {"source": "picture", "file": "backdrop.png"}},
///      "output": "key",
///      "scene": {"elements": [{"name": "Lamp", "position": [0, 3, 0]}], "camera": "Lamp"}}
///
/// What a scene holds is told at `ReadScene`.
///
/// Fields that aren't set keep the defaults of the object. An array is given whole or by element
/// (`"fRange[3]": [30, 50]`), a nested record as an object, in part if wanted, or by field (`"fX.fEdgeA": 2`). A
/// code is given as its four characters or a choice's label, or as an integer, any of which is taken. A slot
/// takes the name of another shader; null or "" leaves it empty. A colour with alpha may go without it and is
/// opaque then. Files are found from the document's folder. A key `$schema` is for editors, which find the schema
/// of documents by it (see `GraphSchema`), and isn't read.
/// Values may change over frames: see `Keys`.
class GraphDocument {
public:
    /// Reads a file as `ReadGraphFile` does, at the frame 1. Throws `GraphError`, which names it.
    static GraphDocument Read(const std::filesystem::path& file);
    /// Reads a text, at the frame 1. Throws `GraphError`.
    /// @param folder  where relative file names start
    static GraphDocument Parse(const std::string& text, const std::filesystem::path& folder);
    /// Makes it of what is parsed, of one frame. Throws `GraphError`.
    /// @param files  what is read already, or gets it
    static GraphDocument Make(const Json& json, const std::filesystem::path& folder, DocumentFiles& files);

    /// All shaders, each behind those that it plugs in, and those that the output doesn't need behind the output.
    const std::vector<DocumentShader>& Shaders() const { return fShaders; }
    size_t OutputIndex() const { return fOutputIndex; }
    const DocumentShader& Output() const { return fShaders[fOutputIndex]; }
    uint32_t OutputKinds() const { return static_cast<uint32_t>(Output().fTable->fOutputKinds); }
    const std::optional<SceneDescription>& Scene() const { return fScene; }
    /// The same shaders in another scene.
    GraphDocument In(SceneDescription scene) const
    {
        GraphDocument document = *this;
        document.fScene = std::move(scene);
        return document;
    }
    /// The same document with another one of its shaders as the output.
    /// @param output  its place among `Shaders`
    GraphDocument WithOutput(size_t output) const
    {
        GraphDocument document = *this;
        document.fOutputIndex = output;
        return document;
    }
    /// What is taken as it is and may yet be a slip: a place and what is expected there (see `FindDoubts`), or what a
    /// name finds that several elements have.
    const std::vector<std::string>& Doubts() const { return fDoubts; }

private:
    std::vector<DocumentShader> fShaders;
    size_t fOutputIndex = 0;
    std::optional<SceneDescription> fScene;
    std::vector<std::string> fDoubts;

    GraphDocument() = default;
};

} // namespace fernwick
