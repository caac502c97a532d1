#include "host/validation/Validation.h"
#include "tools/Checks.h"
#include "tools/Commands.h"
#include "tools/Interrupt.h"
#include "tools/LibraryOption.h"
#include <fmt/core.h>
#include <nlohmann/json.hpp>
#include <regex>

namespace {

using fernwick::validation::Check;
using fernwick::validation::Finding;

constexpr const char* kValidateFooter =
    R"(Each check runs in a process of its own, those of the classes once a class, so that a crash or a hang is a
finding and not the end. A hang is what takes more processor time than the limit, or stands still for as long: how busy
the machine is doesn't count. A finding tells the seed, and the command that shows it again. Exit status 1: there are
findings.

Examples:
  fernwick validate build/release/Fernwick_shaders.so
  fernwick validate Fernwick_shaders.so --only 'fuzz|leaks' --class Fresnel --seed 7 --records 20000
  fernwick validate --list)";

struct ValidateOptions {
    std::string library;
    std::string named; ///< with the option
    bool list = false;
    std::string only;
    std::string className;
    bool json = false;
    uint64_t seed = 1;
    int records = 2000;
    double timeLimit = 60;
};

struct Result {
    const Check* check;
    std::vector<Finding> findings;
};

std::vector<const Check*> ChosenChecks(const std::string& only)
{
    std::vector<const Check*> chosen;
    try {
        const std::regex pattern(only);
        for (const Check& check : fernwick::validation::AllChecks())
            if (std::regex_search(check.name.begin(), check.name.end(), pattern))
                chosen.push_back(&check);
    } catch (const std::regex_error&) {
        throw UsageError(fmt::format("--only \"{}\" is no regular expression", only));
    }
    if (chosen.empty())
        throw UsageError(fmt::format("no check is called \"{}\"; --list names them", only));
    return chosen;
}

fernwick::validation::Job JobOf(const ValidateOptions& options)
{
    if (!options.library.empty() && !options.named.empty())
        throw UsageError("the library is named twice");
    fernwick::validation::Job job;
    job.library = std::filesystem::absolute(FindLibrary(options.library + options.named));
    job.seed = options.seed;
    job.records = options.records;
    job.timeLimit = std::chrono::milliseconds(static_cast<int64_t>(options.timeLimit * 1000));
    job.cancel = &WatchForInterrupt();
    if (!options.className.empty()) {
        job.onlyClass = fernwick::FindClass(options.className);
        if (job.onlyClass == nullptr || job.onlyClass->fClassIDs.empty())
            throw UsageError(fmt::format(
                "no class with a route is called \"{}\"; `fernwick list` names them", options.className));
    }
    return job;
}

void StopIfCancelled(const fernwick::validation::Job& job)
{
    if (*job.cancel)
        throw Interrupted();
}

void Print(const Result& result)
{
    fmt::print("{:<8}{}\n", result.findings.empty() ? "ok" : "FAILED", result.check->name);
    if (!result.findings.empty())
        fmt::print("  protects  {}\n", result.check->protects);
    for (const Finding& finding : result.findings) {
        fmt::print("  {}{}{}\n", finding.className, finding.className.empty() ? "" : ": ", finding.what);
        if (!finding.field.empty())
            fmt::print("    field   {}\n    value   {}\n", finding.field, finding.value);
        fmt::print("    seed    {}\n    replay  {}\n", finding.seed, finding.replay);
    }
    std::fflush(stdout);
}

nlohmann::ordered_json JsonOf(const Result& result)
{
    auto findings = nlohmann::ordered_json::array();
    for (const Finding& finding : result.findings)
        findings.push_back({{"class", finding.className}, {"what", finding.what}, {"field", finding.field},
            {"value", finding.value}, {"seed", finding.seed}, {"replay", finding.replay}});
    return {{"check", result.check->name}, {"protects", result.check->protects},
        {"passed", result.findings.empty()}, {"findings", findings}};
}

void List(const std::vector<const Check*>& checks, bool json)
{
    auto listed = nlohmann::ordered_json::array();
    for (const Check* const check : checks) {
        if (json)
            listed.push_back({{"check", check->name}, {"protects", check->protects}});
        else
            fmt::print("{:<18}  {}\n", check->name, check->protects);
    }
    if (json)
        fmt::print("{}\n", listed.dump(2));
}

void RunValidate(const ValidateOptions& options)
{
    const std::vector<const Check*> checks = ChosenChecks(options.only);
    if (options.list) {
        List(checks, options.json);
        return;
    }
    const fernwick::validation::Job job = JobOf(options);
    const std::string trouble = fernwick::validation::LoadTrouble(job);
    StopIfCancelled(job);
    if (!trouble.empty())
        throw std::runtime_error(trouble);
    auto results = nlohmann::ordered_json::array();
    size_t faults = 0;
    for (const Check* const check : checks) {
        const Result result{check, Run(*check, job)};
        StopIfCancelled(job);
        faults += result.findings.size();
        if (options.json)
            results.push_back(JsonOf(result));
        else
            Print(result);
    }
    if (options.json)
        fmt::print("{}\n",
            nlohmann::ordered_json{{"library", job.library.string()}, {"seed", job.seed},
                {"passed", faults == 0}, {"checks", results}}
                .dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
    if (faults != 0)
        throw std::runtime_error(fmt::format("{}: findings: {}", job.library.string(), faults));
}

} // namespace

void AddValidateCommand(CLI::App& app)
{
    const auto options = std::make_shared<ValidateOptions>();
    CLI::App& command = *app.add_subcommand("validate", "Looks for faults in a build of the library.");
    command
        .add_option("library", options->library, "The library (else FERNWICK_LIBRARY, else near the command)")
        ->type_name("LIBRARY");
    AddLibraryOption(command, options->named); // which texts of a wrong library name
    command.add_flag("--list", options->list, "Names the checks and what each protects, and runs none");
    command.add_option("--only", options->only, "Runs the checks whose names match")->type_name("REGEX");
    command.add_option("--class", options->className, "Checks one class")->type_name("CLASS");
    command.add_flag("--json", options->json, "Prints JSON");
    command.add_option("--seed", options->seed, "Start of the random numbers")
        ->type_name("N")
        ->capture_default_str();
    command.add_option("--records", options->records, "Random records a class")
        ->type_name("N")
        ->check(WholeNumber(1, 1'000'000'000))
        ->capture_default_str();
    command
        .add_option(
            "--time-limit", options->timeLimit, "Processor time of one check on one class, in seconds")
        ->type_name("S")
        ->check(AnyNumber(0.1, 86400))
        ->capture_default_str();
    command.footer(kValidateFooter);
    command.callback([options] { RunValidate(*options); });
}
