#include "allocations.h"
#include "cFileFormat.h"
#include "cPipeline.h"
#include "cPipelineBuilder.h"
#include "hostStations.h"

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <tarnflow/tarnflow.h>
#include <tarnimg/tarnimg.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

/** Sends one image again and again; on request it waits until the last one has arrived at the end. */
class cRepeatStation : public cSourceStation {
public:
    cRepeatStation(const cImg& i_image, int i_frames, bool i_oneAtATime)
        : cSourceStation(QStringLiteral("source")),
          m_image(i_image),
          m_frames(i_frames),
          m_oneAtATime(i_oneAtATime)
    {
    }

    void noteArrival()
    {
        const std::lock_guard lock(m_mutex);
        ++m_arrived;
        m_condition.notify_one();
    }

protected:
    bool produce() override
    {
        m_out.send(m_image, m_sent);
        m_out.sendFinish(m_sent);
        ++m_sent;
        if (m_oneAtATime) {
            std::unique_lock lock(m_mutex);
            m_condition.wait(lock, [this] { return m_arrived == m_sent; });
        }
        return m_sent < m_frames;
    }

private:
    cOPort<cImg> m_out {this, QStringLiteral("img"), 5};
    cImg m_image;
    int m_frames;
    int m_sent = 0;
    bool m_oneAtATime;
    std::mutex m_mutex;
    std::condition_variable m_condition;
    int m_arrived = 0;
};

/** Sends on what it gets. */
class cPassStation : public cStation {
public:
    explicit cPassStation(const QString& i_name) : cStation(i_name) {}

private:
    void process(cBufferT<cImg>* i_buffer) { m_out.send(i_buffer->getValue(), i_buffer->getStamp()); }

    cPortGroup<cImg> m_group {this, &cPassStation::process, QStringLiteral("img")};
    cOPort<cImg> m_out {this, QStringLiteral("img"), 5};
};

/** Takes everything. */
class cEndStation : public cStation {
public:
    explicit cEndStation(cRepeatStation& i_source) : cStation(QStringLiteral("end")), m_source(i_source) {}

private:
    void process(cBufferT<cImg>*) { m_source.noteArrival(); }

    cRepeatStation& m_source;
    cPortGroup<cImg> m_group {this, &cEndStation::process, QStringLiteral("img")};
};

struct Result {
    double seconds;
    Allocations allocations;
};

/** Runs a number of frames through a chain of stations that do nothing. */
Result runChain(int i_stations, int i_frames, bool i_oneAtATime)
{
    cGraph graph;
    auto* source = new cRepeatStation(cImg(cImgType::UInt8, 640, 480, 1), i_frames, i_oneAtATime);
    graph.addNode(source);
    QString last = QStringLiteral("source");
    for (int i = 0; i < i_stations; ++i) {
        const QString name = QStringLiteral("pass%1").arg(i);
        graph.addNode(new cPassStation(name));
        graph.link(last, name);
        last = name;
    }
    graph.addNode(new cEndStation(*source));
    graph.link(last, QStringLiteral("end"));

    const Allocations before = Allocations::now();
    const auto start = Clock::now();
    graph.launch();
    graph.waitForFlow();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const Allocations allocations = Allocations::now() - before;
    graph.stop();
    return {seconds, allocations};
}

/** The time and the allocations of one frame: what the second half of the frames adds to the first. */
void chain(benchmark::State& io_state, int i_stations, bool i_oneAtATime)
{
    const int frames = i_stations >= 100 ? 500 : 5000;
    std::vector<double> times;
    Allocations perRun;
    for (auto _ : io_state) {
        const Result half = runChain(i_stations, frames, i_oneAtATime);
        const Result whole = runChain(i_stations, 2 * frames, i_oneAtATime);
        times.push_back((whole.seconds - half.seconds) / frames);
        perRun = whole.allocations - half.allocations;
        io_state.SetIterationTime(whole.seconds);
    }
    std::nth_element(times.begin(), times.begin() + std::ptrdiff_t(times.size() / 2), times.end());
    const double perFrame = times[times.size() / 2] * 1e6;
    io_state.counters["us/frame"] = perFrame;
    io_state.counters["us/hop"] = perFrame / (i_stations + 1);
    for (std::size_t i = 0; i < perRun.count.size(); ++i)
        io_state.counters[std::string("allocations/frame ") + Allocations::s_names[i]]
            = double(std::int64_t(perRun.count[i])) / frames;
}

/** The demo graph as users run it: pictures are read, pass through all stations, and the results are written.
 */
void demo(benchmark::State& io_state)
{
    QFile file(QStringLiteral(TARN_SAMPLES_DIR "/demo.tarn"));
    if (!file.open(QIODevice::ReadOnly)) {
        io_state.SkipWithError("the demo graph cannot be read");
        return;
    }
    const cParsedPipeline parsed = host::parsePipeline(QString::fromUtf8(file.readAll()), file.fileName());
    quint64 frames = 0;
    for (auto _ : io_state) {
        const QTemporaryDir out;
        cGraph graph;
        cPipelineBuilder builder(graph,
            {{QStringLiteral("in"), QStringLiteral(TARN_SAMPLES_DIR)}, {QStringLiteral("out"), out.path()}});
        if (!builder.build(parsed.pipeline) || !graph.launch()) {
            io_state.SkipWithError("the demo graph cannot be built");
            return;
        }
        graph.waitForFlow();
        for (const cPortFates& port : graph.getFates()) {
            if (!port.output && port.node.startsWith(QStringLiteral("save")))
                frames += port.fates.used;
        }
        graph.stop();
    }
    io_state.counters["pictures written/s"] = benchmark::Counter(double(frames), benchmark::Counter::kIsRate);
}

} // namespace

void registerGraph()
{
    host::registerFileFormats();
    host::registerStations();
    benchmark::RegisterBenchmark("graph|the demo graph, from files to files", demo)
        ->UseRealTime()
        ->MinTime(2);
    for (const int stations : {1, 10, 100}) {
        for (const bool oneAtATime : {true, false}) {
            const std::string name = "graph|chain of " + std::to_string(stations)
                + (oneAtATime ? ", one frame at a time" : ", frames in flight");
            benchmark::RegisterBenchmark(name.c_str(), chain, stations, oneAtATime)
                ->UseManualTime()
                ->Iterations(5);
        }
    }
}
