#include "duel.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double secondsOf(const std::function<void()>& i_call)
{
    const auto start = Clock::now();
    i_call();
    benchmark::ClobberMemory();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double>& io_times)
{
    std::nth_element(
        io_times.begin(), io_times.begin() + std::ptrdiff_t(io_times.size() / 2), io_times.end());
    return io_times[io_times.size() / 2];
}

/** A plain memory copy that moves as many bytes, reading half of them and writing half. */
struct MemoryCopy {
    explicit MemoryCopy(std::size_t i_bytes)
        : half(i_bytes / 2),
          from(new unsigned char[half]()),
          to(new unsigned char[half]())
    {
    }
    void operator()() const { std::memcpy(to.get(), from.get(), half); }

    std::size_t half;
    std::unique_ptr<unsigned char[]> from;
    std::unique_ptr<unsigned char[]> to;
};

void run(benchmark::State& io_state, const std::function<Duel()>& i_make)
{
    const Duel duel = i_make();
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int warmUp = 0; warmUp < 2; ++warmUp) {
        duel.ours();
        duel.theirs();
    }
    // Who begins changes from round to round: the second finds the sources in the cache.
    bool weBegin = false;
    for (auto _ : io_state) {
        weBegin = !weBegin;
        if (weBegin)
            ours.push_back(secondsOf(duel.ours));
        theirs.push_back(secondsOf(duel.theirs));
        if (!weBegin)
            ours.push_back(secondsOf(duel.ours));
        io_state.SetIterationTime(ours.back() + theirs.back());
    }
    const MemoryCopy copy(duel.bytes);
    const std::function<void()> copyCall = std::cref(copy);
    std::vector<double> copies;
    for (std::size_t round = 0; round < ours.size(); ++round)
        copies.push_back(secondsOf(copyCall));
    const double ourTime = median(ours);
    io_state.counters["ratio"] = median(theirs) / ourTime;
    io_state.counters["GB/s"] = double(duel.bytes) / ourTime * 1e-9;
    io_state.counters["of memcpy"] = median(copies) / ourTime;
}

} // namespace

void registerDuel(const std::string& i_group, const std::string& i_name, unsigned i_width, unsigned i_height,
    std::function<Duel()> i_make)
{
    const std::string name
        = i_group + "|" + i_name + "|" + std::to_string(i_width) + "x" + std::to_string(i_height);
    benchmark::RegisterBenchmark(name.c_str(), run, std::move(i_make))->UseManualTime()->MinTime(0.25);
}
