// Runs the benchmarks and, where the first part of several names is the same, prints the time of
// each as a ratio to the first of them: machines differ and are shared, ratios of one run compare.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
            const std::string& name = run.run_name.function_name;
            const std::string subject = name.substr(0, name.find('/'));
            const double seconds = secondsOf(run);
            const double base = baseOf_.try_emplace(subject, seconds).first->second;
            ratios_.emplace_back(name, seconds / base);
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        std::printf("\ntime an item, as a ratio to the first of its kind\n");
        for (const auto& [name, ratio] : ratios_) std::printf("%8.2f  %s\n", ratio, name.c_str());
    }

private:
    /// Seconds of an item, or of an iteration where no items are counted; of the processor, or of
    /// the clock where the benchmark uses more than one thread.
    static double secondsOf(const Run& run) {
        const auto rate = run.counters.find("items_per_second");
        if (rate != run.counters.end()) return 1 / rate->second.value;
        return run.cpu_accumulated_time / static_cast<double>(run.iterations);
    }

    std::map<std::string, double> baseOf_;
    std::vector<std::pair<std::string, double>> ratios_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
}
