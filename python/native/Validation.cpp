#include "host/validation/Validation.h"
#include "host/library/Library.h"
#include "python/native/Rooms.h"
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

using fernwick::validation::Check;
using fernwick::validation::Finding;
using Findings = std::vector<std::map<std::string, std::string>>;

std::vector<std::pair<std::string, std::string>> Checks()
{
    std::vector<std::pair<std::string, std::string>> checks;
    for (const Check& check : fernwick::validation::AllChecks())
        checks.emplace_back(check.name, check.protects);
    return checks;
}

/// @param name  of a check; empty for looking whether the library can be loaded
Findings Validate(const std::string& path, const std::string& name, const std::string& className,
    uint64_t seed, int records, double timeLimit)
{
    fernwick::validation::Job job;
    job.library = std::filesystem::absolute(path);
    job.seed = seed;
    job.records = records;
    job.timeLimit = std::chrono::milliseconds(static_cast<int64_t>(timeLimit * 1000));
    if (!className.empty() && (job.onlyClass = fernwick::FindClass(className)) == nullptr)
        throw py::key_error(className);
    if (name.empty()) {
        if (const std::string trouble = LoadTrouble(job); !trouble.empty())
            throw fernwick::LibraryError(trouble);
        return {};
    }
    for (const Check& check : fernwick::validation::AllChecks())
        if (check.name == name) {
            Findings findings;
            for (const Finding& finding : Run(check, job))
                findings.push_back({{"class", finding.className}, {"what", finding.what},
                    {"field", finding.field}, {"value", finding.value},
                    {"seed", std::to_string(finding.seed)}, {"replay", finding.replay}});
            return findings;
        }
    throw py::key_error(name);
}

} // namespace

void AddValidation(py::module_& module)
{
    module.def("validation_checks", &Checks);
    module.def("validate", &Validate, py::arg("path"), py::arg("check"), py::arg("class_name"),
        py::arg("seed"), py::arg("records"), py::arg("time_limit"));
}
