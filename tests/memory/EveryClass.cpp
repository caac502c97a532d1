// Lives the life of the library and of every class, in memory that holds nothing, for scripts/memcheck to watch.
#include "host/validation/FuzzCase.h"
#include "host/validation/Sheet.h"
#include "module/UnroutedClassIDs.h"
#include <cstdio>
#include <cstdlib>

using namespace fernwick;
using namespace fernwick::validation;

namespace {

/// Comparing the answers of two objects reads all of them.
std::string LiveThrough(
    const Library& library, const ParameterTable& table, const GUID& classID, uint64_t seed)
{
    FuzzCase fuzz(table, seed);
    {
        const Specimen left(library, classID);
        const Specimen right(library, classID);
        for (const Specimen* const object : {&left, &right}) {
            fuzz.Apply(*object);
            object->Changed();
        }
        for (int i = 0; i < 4; ++i) {
            const ShadingIn sample = fuzz.NextSample();
            Sheet leftSheet(sample);
            Sheet rightSheet(sample);
            leftSheet.Ask(left.Shader());
            rightSheet.Ask(right.Shader());
            if (const char* const operation = leftSheet.DifferenceFrom(rightSheet))
                return std::string(operation) + " answers two things";
        }
    }
    return fuzz.Held();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return EXIT_FAILURE;
    const auto utilities = MakeCounted<Utilities>();
    utilities->Memory().LeaveUnset();
    {
        const Library library(argv[1], utilities);
        for (const ParameterTable& table : AllClasses()) {
            const GUID* const unrouted = UnroutedClassID(table.fName);
            // An object of Corners is so large that one pair has to do.
            const uint64_t seeds = table.fName == "Corners" ? 1 : 20;
            for (uint64_t seed = 1; seed <= seeds; ++seed) {
                const std::string fault = LiveThrough(unrouted != nullptr ? library.Unrouted() : library,
                    table, unrouted != nullptr ? *unrouted : table.fClassIDs.front(), seed);
                if (fault.empty())
                    continue;
                std::fprintf(stderr, "%s with seed %d: %s\n", table.fName.c_str(), static_cast<int>(seed),
                    fault.c_str());
                return EXIT_FAILURE;
            }
        }
    }
    return utilities->Memory().LiveBlocks() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
