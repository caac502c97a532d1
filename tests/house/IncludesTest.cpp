#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A folder, which stands for all below it that have no row of their own, and the folders whose headers its files may
/// include beside its own, parted by spaces.
struct Room {
    std::string_view fFolder;
    std::string_view fMayInclude;
};

#define SHADERS "shaders/mapping shaders/optics shaders/scene shaders/layers shaders/patterns"

/// The house, from the ground up: a room knows only rooms above its own row.
constexpr Room kHouse[] = {
    {"frame", ""},
    {"optics", "frame"},
    {"shaders", "frame"},
    {"shaders/mapping", "frame"},
    {"shaders/optics", "frame optics shaders"},
    {"shaders/scene", "frame shaders"},
    {"shaders/layers", "frame"},
    {"shaders/patterns", "frame"},
    {"module", "frame " SHADERS},
    {"host/files", ""},
    {"host/threads", ""},
    {"host/library", "frame module host/files"},
    {"host/parameters", "frame module " SHADERS},
    {"host/json", "frame host/parameters"},
    {"host/sources", "frame host/files host/library host/parameters"},
    {"host/geometry", "frame host/threads"},
    {"host/scene", "frame host/library host/geometry"},
    {"host/documents",
        "frame host/files host/library host/parameters host/json host/sources host/geometry host/scene"},
    {"host/pictures", "frame host/files host/threads"},
    {"host/formats", "frame host/files host/threads host/sources host/pictures"},
    {"host/shading",
        "frame module shaders/optics shaders/scene host/threads host/library host/parameters host/json "
        "host/sources "
        "host/geometry host/scene host/documents host/pictures"},
    {"host/validation", "frame module host/library host/parameters"},
    {"tools",
        "frame host/files host/library host/parameters host/json host/sources host/documents host/pictures "
        "host/shading"
        " host/validation"},
    {"tools/pictures",
        "host/files host/formats host/library host/parameters host/json host/sources host/documents "
        "host/pictures "
        "host/shading tools"},
    {"python/native",
        "frame host/files host/library host/parameters host/json host/sources host/geometry host/scene "
        "host/documents "
        "host/pictures host/shading host/validation"},
    {"web/native",
        "frame module host/threads host/library host/json host/sources host/geometry host/documents "
        "host/pictures "
        "host/shading"},
};

/// The innermost room that holds a file of the tree, given from its root; null when none does.
const Room* RoomOf(std::string_view path)
{
    const Room* found = nullptr;
    for (const Room& room : kHouse)
        if (path.starts_with(room.fFolder) && path.substr(room.fFolder.size()).starts_with('/')
            && (found == nullptr || room.fFolder.size() > found->fFolder.size()))
            found = &room;
    return found;
}

/// The folders that a room names, one by one.
std::vector<std::string> Named(const Room& room)
{
    std::istringstream names{std::string(room.fMayInclude)};
    return {std::istream_iterator<std::string>(names), {}};
}

bool MayInclude(const Room& room, std::string_view folder)
{
    const std::vector<std::string> named = Named(room);
    return folder == room.fFolder || std::ranges::find(named, folder) != named.end();
}

/// What the line includes of the tree; nothing for any other line.
std::string_view IncludedBy(std::string_view line)
{
    constexpr std::string_view kStart = "#include \"";
    if (!line.starts_with(kStart))
        return {};
    line.remove_prefix(kStart.size());
    return line.substr(0, line.find('"'));
}

TEST(Includes, LeadOnlyToRoomsBelow)
{
    int read = 0;
    for (const char* const top :
        {"frame", "optics", "shaders", "module", "host", "tools", "python", "web/native"})
        for (const fs::path& path : fs::recursive_directory_iterator(fs::path(FERNWICK_SOURCE) / top)) {
            if (path.extension() != ".h" && path.extension() != ".cpp")
                continue;
            const std::string file = path.lexically_relative(FERNWICK_SOURCE).generic_string();
            const Room* const room = RoomOf(file);
            ASSERT_NE(room, nullptr) << file << " lies in no room of the table";
            std::ifstream lines(path);
            for (std::string line; std::getline(lines, line);) {
                const std::string_view included = IncludedBy(line);
                if (included.empty())
                    continue;
                ++read;
                const Room* const other = RoomOf(included);
                ASSERT_NE(other, nullptr) << file << " includes " << included << ", which lies in no room";
                EXPECT_TRUE(MayInclude(*room, other->fFolder))
                    << file << " may not include " << included << ": " << room->fFolder
                    << " doesn't stand on " << other->fFolder;
            }
        }
    EXPECT_GT(read, 500); // the tree was there
}

TEST(Includes, AreToldForEachRoomFromTheGroundUp)
{
    for (const Room* room = std::begin(kHouse); room != std::end(kHouse); ++room)
        for (const std::string& below : Named(*room))
            EXPECT_TRUE(
                std::any_of(std::begin(kHouse), room, [&](const Room& one) { return one.fFolder == below; }))
                << room->fFolder << " stands on " << below << ", which doesn't lie below it";
}

} // namespace
