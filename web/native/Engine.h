#pragma once
#include "host/documents/DocumentFiles.h"
#include "host/documents/GraphDocument.h"
#include "host/geometry/Mesh.h"
#include "host/library/Library.h"
#include "host/library/ReportCounts.h"
#include "host/shading/Bake.h"
#include <cstddef>
#include <deque>

/// Numbers of pixels on their way out, four a pixel, as the request wants them.
struct EncodedPixels {
    int fWidth;
    int fHeight;
    std::vector<std::byte> fBytes;
};

/// What the page asks of the pack and the host, in JSON. Whatever throws here is told as the reply.
class Engine {
public:
    Engine();

    /// All classes and sources with their fields and defaults, and a scene around each shape.
    fernwick::Json Tables() const;

    void GivePicture(const std::string& name, std::shared_ptr<const fernwick::GivenPicture> picture);
    void GiveMesh(const std::string& name, std::shared_ptr<const fernwick::Geometry> mesh);
    void Forget(const std::string& name);

    /// What there is to know of a graph before it is baked.
    fernwick::Json Check(const fernwick::Json& request);

    /// Bakes or renders a region.
    EncodedPixels Bake(const fernwick::Json& request);

    /// Fills the margin of a picture of floats that was baked onto a mesh, by region.
    /// @param pixels  all of the picture's, from the top
    EncodedPixels FillMargin(const fernwick::Json& request, std::span<TMCColorRGBA> pixels);

    /// A shape of `kShadeShapes` in the coordinates of its element.
    fernwick::MeshDescription ShapeMesh(const std::string& shape);

    /// The text of what was thrown with the JSON pointer to the place that it names, of the graph of a request.
    fernwick::Json ProblemOf(const std::string& text, const fernwick::Json& request) const;

private:
    struct Document;
    struct Onto;

    fernwick::Library fLibrary;
    fernwick::ReportCounts fReports;
    fernwick::DocumentFiles fFiles;
    std::deque<std::shared_ptr<const Document>> fDocuments; // read last, the newest first
    std::shared_ptr<const Onto> fOnto;                      // baked onto last

    std::shared_ptr<const Document> Read(const std::string& text, double frame);
    std::shared_ptr<const Onto> PutOnto(const fernwick::Json& request, const fernwick::BakeJob& job);
    std::vector<std::string> TryOut(const fernwick::GraphDocument& document, fernwick::BakeChannel channel);
    void ForgetDocuments();
};
