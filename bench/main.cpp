#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <opencv2/core.hpp>
#include <sstream>
#include <string>
#include <tarnbase/cTracer.h>
#include <vector>

namespace {

std::vector<std::string> split(const std::string& i_text, char i_separator)
{
    std::vector<std::string> parts;
    std::istringstream stream(i_text);
    for (std::string part; std::getline(stream, part, i_separator);)
        parts.push_back(part);
    return parts;
}

std::string processorName()
{
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);) {
        if (line.rfind("model name", 0) == 0)
            return line.substr(line.find(": ") + 2);
    }
    return "an unnamed processor";
}

/** Writes what docs/performance.md holds: tables of ratios, no absolute times but those of the graph. */
class MarkdownReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override
    {
        std::printf("Measured on %s, one thread, OpenCV %s.\n", processorName().c_str(), CV_VERSION);
        return true;
    }

    void ReportRuns(const std::vector<Run>& i_runs) override
    {
        for (const Run& run : i_runs) {
            const auto parts
                = split(run.benchmark_name().substr(0, run.benchmark_name().find("/min_time")), '|');
            if (run.counters.count("ratio") && parts.size() == 3)
                reportDuel(parts, run);
            else
                reportOther(run);
        }
        std::fflush(stdout);
    }

    void Finalize() override
    {
        endTable();
        if (m_all.count == 0)
            return;
        std::printf("\nGeometric mean of all %d ratios: %.2f; the smallest is %.2f (%s).\n", m_all.count,
            m_all.geometricMean(), m_smallest, m_smallestName.c_str());
    }

private:
    struct Mean {
        double logarithms = 0;
        int count = 0;
        void add(double i_value)
        {
            logarithms += std::log(i_value);
            ++count;
        }
        double geometricMean() const { return std::exp(logarithms / count); }
    };

    void reportDuel(const std::vector<std::string>& i_parts, const Run& i_run)
    {
        if (m_group != i_parts[0]) {
            endTable();
            m_group = i_parts[0];
            std::printf("\n### %s\n\n| Operation | Size | Times OpenCV | GB/s | Of a memory copy "
                        "|\n|---|---|---:|---:|---:|\n",
                m_group.c_str());
        }
        const double ratio = i_run.counters.at("ratio");
        std::printf("| %s | %s | %.2f | %.1f | %.0f %% |\n", i_parts[1].c_str(), i_parts[2].c_str(), ratio,
            double(i_run.counters.at("GB/s")), 100 * double(i_run.counters.at("of memcpy")));
        m_mean.add(ratio);
        m_all.add(ratio);
        if (m_all.count == 1 || ratio < m_smallest) {
            m_smallest = ratio;
            m_smallestName = i_parts[1] + ", " + i_parts[2];
        }
    }

    void endTable()
    {
        if (m_mean.count)
            std::printf("\nGeometric mean: %.2f\n", m_mean.geometricMean());
        m_mean = {};
        m_group.clear();
    }

    void reportOther(const Run& i_run)
    {
        if (!m_group.empty())
            endTable();
        if (!m_otherBegun)
            std::printf("\n### The graph\n\n");
        m_otherBegun = true;
        std::printf("- %s:", i_run.run_name.function_name.c_str());
        const char* separator = " ";
        for (const auto& [name, counter] : i_run.counters) {
            std::printf("%s%s %.4g", separator, name.c_str(), double(counter));
            separator = ", ";
        }
        std::printf("\n");
    }

    std::string m_group;
    Mean m_mean;
    Mean m_all;
    double m_smallest = 0;
    std::string m_smallestName;
    bool m_otherBegun = false;
};

} // namespace

void registerColour();
void registerArithmetic();
void registerConstants();
void registerConversion();
void registerDisplay();
void registerGraph();
void registerHistograms();
void registerStatistics();
void registerTemplateMatch();
void registerStatisticsLocal();

int main(int i_count, char** i_arguments)
{
    benchmark::Initialize(&i_count, i_arguments);
    if (benchmark::ReportUnrecognizedArguments(i_count, i_arguments))
        return 2;
    cv::setNumThreads(1);
    registerColour();
    registerArithmetic();
    registerConstants();
    registerConversion();
    registerDisplay();
    registerHistograms();
    registerStatistics();
    registerTemplateMatch();
    registerStatisticsLocal();
    registerGraph();
    MarkdownReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
