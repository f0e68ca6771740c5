// Runs all rows in random turns and prints one table: the library, its peer, the ratio of their
// throughputs by medians of CPU time, and the ratio that is asked for.
// Usage: orvo_bench [Google Benchmark's options, such as --benchmark_filter=REGEX]

#include "Row.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace
{

struct Contender {
    std::string who;
    double target = 0;
    std::vector<double> nanoseconds;

    double GetMedian() const
    {
        std::vector<double> sorted = nanoseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
};

class TableReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                Find(run.run_name.function_name)
                    .nanoseconds.push_back(run.cpu_accumulated_time * 1e9 /
                                           static_cast<double>(run.iterations));
            }
        }
    }

    void Finalize() override
    {
        std::printf("%-54s %12s  %-33s %12s %7s %7s\n", "work", "orvobase ns", "peer", "peer ns",
                    "ratio", "target");
        for (const std::string& work : Row::Order()) {
            PrintRow(work);
        }
    }

private:
    Contender& Find(const std::string& name)
    {
        const std::size_t first = name.find('|');
        const std::size_t second = name.find('|', first + 1);
        const std::string work = name.substr(0, first);
        const std::string who = name.substr(first + 1, second - first - 1);
        std::vector<Contender>& contenders = m_rows[work];
        for (Contender& contender : contenders) {
            if (contender.who == who) {
                return contender;
            }
        }
        contenders.push_back({who, std::atof(name.c_str() + second + 1), {}});
        return contenders.back();
    }

    void PrintRow(const std::string& work)
    {
        const std::vector<Contender>& contenders = m_rows[work];
        const auto library = std::find_if(contenders.begin(), contenders.end(),
                                          [](const auto& c) { return c.who == "orvobase"; });
        if (library == contenders.end()) {
            return;
        }
        const double own = library->GetMedian();
        for (const Contender& peer : contenders) {
            if (peer.who == "orvobase") {
                continue;
            }
            const double ratio = peer.GetMedian() / own;
            std::printf("%-54s %12.1f  %-33s %12.1f %7.2f %7.2f%s\n", work.c_str(), own,
                        peer.who.c_str(), peer.GetMedian(), ratio, peer.target,
                        ratio < peer.target ? "  missed" : "");
        }
    }

    std::map<std::string, std::vector<Contender>> m_rows;
};

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> options = {argv[0], "--benchmark_repetitions=21",
                                        "--benchmark_min_time=0.01",
                                        "--benchmark_enable_random_interleaving=true"};
    options.insert(options.end(), argv + 1, argv + argc);
    std::vector<char*> arguments;
    for (std::string& option : options) {
        arguments.push_back(option.data());
    }
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
}
