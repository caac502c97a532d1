#include "bench/Report.h"
#include "bench/Bench.h"
#include <algorithm>
#include <fmt/format.h>
#include <fstream>

namespace {

enum class Unit { kNanoseconds, kMicroseconds, kMegapixels };
enum class Compared { kRatio, kRatioAndBudget, kDifference };

struct SectionText {
    std::string key;
    const char* title;
    const char* measured;
    const char* reference;
    Unit unit;
    Compared compared;
    const char* counted; ///< what the last column counts; empty for no column
};

const SectionText kSections[] = {
    {Section::kShading, "Shading operations without host calls, ns a sample", "shader", "plain loop",
        Unit::kNanoseconds, Compared::kRatioAndBudget, "allocations"},
    {Section::kDispatch, "Dispatch, ns a call", "operation", "empty loop", Unit::kNanoseconds,
        Compared::kDifference, "allocations"},
    {Section::kHost, "Shading operations with host calls, ns a sample", "shader", "same calls inline",
        Unit::kNanoseconds, Compared::kRatio, "allocations"},
    {Section::kProximity, "`Proximity` in group mode, ns a sample", "shader", "bare walk", Unit::kNanoseconds,
        Compared::kRatio, "allocations"},
    {Section::kChange, "Parameter changes, microseconds, beside the powers that the spectrum needs", "change",
        "powers", Unit::kMicroseconds, Compared::kRatio, ""},
    {Section::kGamut, "Search of the gamut at a change of `Fresnel`, microseconds", "time", "",
        Unit::kMicroseconds, Compared::kRatio, "cells visited"},
    {Section::kShare, "What the host adds to a bake, ns a pixel", "bake", "its samples", Unit::kNanoseconds,
        Compared::kDifference, ""},
    {Section::kThroughput, "Throughput, million pixels a second", "two threads", "one thread",
        Unit::kMegapixels, Compared::kRatio, ""},
    {Section::kWork, "Processor time of both, ns a pixel", "two threads", "one thread", Unit::kNanoseconds,
        Compared::kRatio, ""},
};

/// What a call of a shader may cost beside the plain loop, ns.
constexpr double kDispatchBudget = 1;

double InUnit(double seconds, Unit unit)
{
    switch (unit) {
    case Unit::kNanoseconds:
        return seconds * 1e9;
    case Unit::kMicroseconds:
        return seconds * 1e6;
    case Unit::kMegapixels:
        break;
    }
    return 1e-6 / seconds;
}

std::string Number(double number) { return fmt::format("{:.{}f}", number, number < 100 ? 2 : 0); }

} // namespace

double Report::Column::Median() const
{
    std::vector<double> sorted = fSeconds;
    std::ranges::sort(sorted);
    return sorted[sorted.size() / 2];
}

double Report::Column::Spread() const
{
    const auto [least, most] = std::ranges::minmax(fSeconds);
    return (most - least) / 2 / Median();
}

void Report::ReportRuns(const std::vector<Run>& runs)
{
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration)
            continue;
        const std::string& name = run.run_name.function_name;
        const size_t rowStart = name.find('/') + 1;
        const size_t rowEnd = name.rfind('/');
        const std::string section = name.substr(0, rowStart - 1);
        const std::string row = name.substr(rowStart, rowEnd - rowStart);

        const bool isMeasured = name.substr(rowEnd).starts_with(kMeasured);
        const auto add = [&](const std::string& key, double seconds) {
            Row& target
                = fRows[key][run.family_index - (isMeasured ? 0 : 1)]; // a reference follows its measured
            target.fName = row;
            Column& column = isMeasured ? target.fMeasured : target.fReference;
            column.fSeconds.push_back(
                seconds / static_cast<double>(run.iterations) / run.counters.at("items").value);
            column.fCounted = run.counters.at("counted").value;
        };
        const bool isThroughput = section == Section::kThroughput;
        const bool isReal = isThroughput || section == Section::kShare;
        add(section, isReal ? run.real_accumulated_time : run.cpu_accumulated_time);
        if (isThroughput)
            add(Section::kWork, run.cpu_accumulated_time);
    }
}

void Report::Finalize()
{
    ConsoleReporter::Finalize();
    std::ofstream out(fFile);
    for (const SectionText& section : kSections)
        if (fRows.contains(section.key))
            out << Table(section.key);
    if (!out.flush())
        throw std::runtime_error(fFile + " can't be written");
}

std::string Report::Table(const std::string& key) const
{
    const SectionText& section = *std::ranges::find(kSections, key, &SectionText::key);
    const auto& rows = fRows.at(key);
    const bool compares
        = std::ranges::any_of(rows, [](const auto& row) { return !row.second.fReference.fSeconds.empty(); });
    const bool counts = *section.counted != 0;
    const bool isRatio = section.compared != Compared::kDifference;
    const bool hasBudget = section.compared == Compared::kRatioAndBudget;

    std::string text = fmt::format("### {}\n\n| | {} |", section.title, section.measured);
    std::string rule = "| --- | ---: |";
    const auto addColumn = [&](bool shown, std::string_view name) {
        if (shown) {
            text += fmt::format(" {} |", name);
            rule += " ---: |";
        }
    };
    addColumn(compares, section.reference);
    addColumn(compares, isRatio ? "ratio" : "difference");
    addColumn(hasBudget, "past 1 ns of dispatch");
    addColumn(counts, section.counted);
    text += "\n" + rule + "\n";

    const auto number = [&](const Column& column) { return InUnit(column.Median(), section.unit); };
    const auto cell = [&](const Column& column) {
        return column.fSeconds.empty()
            ? std::string()
            : fmt::format("{} ± {:.0f} %", Number(number(column)), 100 * column.Spread());
    };
    for (const auto& [order, row] : rows) {
        text += fmt::format("| {} | {} |", row.fName, cell(row.fMeasured));
        if (compares) {
            const bool both = !row.fMeasured.fSeconds.empty() && !row.fReference.fSeconds.empty();
            const double left = both ? number(row.fMeasured) : 0, right = both ? number(row.fReference) : 1;
            text += fmt::format(" {} | {} |", cell(row.fReference),
                both ? Number(isRatio ? left / right : left - right) : "");
            if (hasBudget)
                text += fmt::format(" {} |", both ? Number((left - kDispatchBudget) / right) : "");
        }
        text += counts ? fmt::format(" {:.0f} |\n", row.fMeasured.fCounted) : "\n";
    }
    return text + "\n";
}
