#include "host/shading/Render.h"
#include "tests/support/BakeText.h"
#include <algorithm>
#include <cstring>

using namespace fernwick;

namespace {

const std::filesystem::path kExamples = FERNWICK_EXAMPLES;

/// Whether every byte of `picture` is that of `other`, or, without another, of its own first pixel.
bool SameBytes(const Picture& picture, const Picture* other = nullptr)
{
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x) {
            const TMCColorRGBA& expected = other != nullptr ? other->At(x, y) : picture.At(0, 0);
            if (std::memcmp(&picture.At(x, y), &expected, sizeof expected) != 0)
                return false;
        }
    return true;
}

/// Whether anything in the scene has a shape, so that the graph is there to be rendered.
bool HasShape(const std::vector<ElementDescription>& elements)
{
    return std::ranges::any_of(elements, [](const ElementDescription& element) {
        return element.fGeometry != nullptr || HasShape(element.fChildren);
    });
}

class ExamplesTest : public ShaderTest { };

TEST_F(ExamplesTest, EveryGraphMakesAPicture)
{
    TestedLibrary().Unrouted(); // opened now, since its start reports the services that the host withholds
    int graphs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(kExamples)) {
        if (entry.path().extension() != ".json")
            continue;
        SCOPED_TRACE(entry.path().filename());
        const auto document = GraphDocument::Read(entry.path());
        const bool isVector = document.OutputKinds() == kOutputVector;
        TakeReports();
        const auto picture = document.Scene() && HasShape(document.Scene()->fElements)
            ? Render(TestedLibrary(), document, {.width = 19, .height = 19, .samples = 1})
            : Bake(TestedLibrary(), document,
                {.width = 19,
                    .height = 19,
                    .channels = {isVector ? BakeChannel::kNormal : BakeChannel::kColor}});
        const std::vector<std::string> reports = TakeReports();
        const bool isComplete = reports.empty();
        EXPECT_TRUE(isComplete || !document.Scene())
            << "reports: " << testing::PrintToString(reports).substr(0, 200);
        EXPECT_TRUE(!isComplete || !SameBytes(*picture)) << "the picture is one flat colour";
        ++graphs;
    }
    EXPECT_GT(graphs, 0);
}

// Ten mixers of ten leaves each, under a mixer. The alpha of nested mixers grows from sample to sample.
TEST_F(ExamplesTest, AHundredLeavesAreTheSameBitsOnTwoThreads)
{
    const auto document = GraphDocument::Read(kExamples / "mix-hundred.json");
    BakeJob job{.width = 256, .height = 256, .threads = 1};
    const Picture alone = *Bake(TestedLibrary(), document, job);
    for (int repetition = 0; repetition < 3; ++repetition) {
        job.threads = 2;
        EXPECT_TRUE(SameBytes(*Bake(TestedLibrary(), document, job), &alone));
    }
}

} // namespace
