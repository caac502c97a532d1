#pragma once
#include <benchmark/benchmark.h>
#include <map>
#include <string>
#include <vector>

/// Shows each benchmark as it ends, and at last writes the tables of all as Markdown.
class Report : public benchmark::ConsoleReporter {
public:
    explicit Report(std::string file) : fFile(std::move(file)) { }

    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Column {
        std::vector<double> fSeconds; // per item, of each repetition
        double fCounted = 0;

        double Median() const;
        double Spread() const; // half of the distance from least to most, as a share of the median
    };
    struct Row {
        std::string fName;
        Column fMeasured;
        Column fReference; // may be empty
    };

    std::string fFile;
    std::map<std::string, std::map<int64_t, Row>> fRows; // by section and order of registration

    std::string Table(const std::string& section) const;
};
