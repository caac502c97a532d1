#pragma once
#include "host/shading/Bake.h"
#include "host/shading/Graph.h"
#include "tests/support/ShaderTest.h"
#include <random>

/// Bakes the shader `output` out of `shaders`, the inside of a document's `shaders` object.
inline fernwick::Picture BakeText(
    const std::string& shaders, fernwick::BakeJob job, const std::string& rest = "")
{
    const auto document = fernwick::GraphDocument::Parse(
        R"({"shaders": {)" + shaders + R"(}, "output": "output")" + rest + '}', "/nowhere");
    auto picture = fernwick::Bake(TestedLibrary(), document, job);
    EXPECT_TRUE(picture);
    return *std::move(picture);
}

/// The picture in a file, its numbers as they are.
inline fernwick::Picture ReadBack(const std::filesystem::path& file, int width, int height)
{
    return BakeText(
        R"("output": {"source": "picture", "encoding": "linear", "file": ")" + file.string() + "\"}",
        {.width = width, .height = height});
}

/// A folder of one test's own, empty at first and gone with it.
class FreshFolder {
public:
    FreshFolder()
        : fPath(std::filesystem::path(testing::TempDir())
            / ("fernwick_" + std::to_string(std::random_device()())))
    {
        std::filesystem::create_directories(fPath);
    }
    ~FreshFolder() { std::filesystem::remove_all(fPath); }
    FreshFolder(const FreshFolder&) = delete;
    FreshFolder& operator=(const FreshFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return fPath / name; }
    const std::filesystem::path& Path() const { return fPath; }

private:
    std::filesystem::path fPath;
};

inline std::vector<std::string> FilesIn(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    return names;
}
