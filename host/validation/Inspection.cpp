#include "host/validation/Inspection.h"
#include "frame/TMCException.h"
#include "host/library/Library.h"
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace fernwick::validation {

namespace {

/// A word of a shell's line.
std::string Quoted(const std::string& text)
{
    std::string quoted = "'";
    for (const char character : text)
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return quoted + "'";
}

std::string ReplayText(const Check& check, const Job& job, const ParameterTable* table, uint64_t seed,
    const std::string& options)
{
    std::string line = fmt::format("fernwick validate {} --only '^{}$' --seed {}{}",
        Quoted(job.library.string()), check.name, seed, options);
    if (table != nullptr)
        line += " --class " + table->fName;
    if (job.timeLimit != Job().timeLimit)
        line += fmt::format(" --time-limit {}", static_cast<double>(job.timeLimit.count()) / 1000);
    return line;
}

} // namespace

void Inspection::Found(const std::string& what, const std::string& field, const std::string& value,
    uint64_t seed, const std::string& options)
{
    if (!fTold.insert(what).second)
        return;
    const nlohmann::json finding = {{"what", what}, {"field", field}, {"value", value}, {"seed", seed},
        {"replay", ReplayText(fCheck, fJob, fTable, seed, options)}};
    fTeller(finding.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace));
}

std::vector<Finding> Inspection::Read(
    const Check& check, const Job& job, const ParameterTable* table, const Ending& ending)
{
    const std::string className = table != nullptr ? table->fName : "";
    std::vector<Finding> findings;
    std::istringstream lines(ending.lines);
    for (std::string line; std::getline(lines, line);) {
        const auto told = nlohmann::json::parse(line, nullptr, false);
        if (!told.is_object() || !told.contains("replay")) // cut by a crash, or the module's
            continue;
        findings.push_back(
            {className, told["field"], told["value"], told["what"], told["seed"], told["replay"]});
    }
    if (!ending.trouble.empty())
        findings.push_back(
            {className, "", "", fmt::format("{} while {}", ending.trouble, ending.activity.text), job.seed,
                ReplayText(check, job, table, job.seed, "")});
    return findings;
}

std::string AnswerText(MCErr status, const void* object)
{
    return fmt::format("{:#x} and {}", status, object == nullptr ? "null" : "an object");
}

std::string StatusText(MCErr status) { return fmt::format("{:#x}", status); }

std::string FaultOfException(const std::string& doing)
{
    const std::string fault = doing + ": expected no exception, came ";
    try {
        throw;
    } catch (const LibraryError& error) { // of the host, and a sentence by itself
        return error.what();
    } catch (const TMCException& exception) {
        return fmt::format("{}TMCException {:#x}", fault, exception.fErrorCode);
    } catch (const std::exception& exception) {
        return fmt::format("{}\"{}\"", fault, exception.what());
    } catch (...) {
        return fault + "an unknown one";
    }
}

} // namespace fernwick::validation
