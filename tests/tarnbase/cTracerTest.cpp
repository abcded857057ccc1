#include "TraceCapture.h"
#include "printing.h"

#include <tarnbase/cColour.h>
#include <tarnbase/cError.h>
#include <tarnbase/cMatrix.h>
#include <tarnbase/cTracer.h>

#include <QBuffer>
#include <QColor>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

/** What reaches the debug log while this lives. */
class DebugLogCapture {
public:
    DebugLogCapture()
    {
        const std::lock_guard lock(s_mutex);
        s_lines.clear();
        m_before = qInstallMessageHandler(
            [](QtMsgType i_type, const QMessageLogContext& i_context, const QString& i_text) {
                const std::lock_guard lock(s_mutex);
                if (i_type == QtDebugMsg)
                    s_lines.push_back({i_text, QString::fromUtf8(i_context.file)});
            });
    }
    ~DebugLogCapture() { qInstallMessageHandler(m_before); }

    QStringList texts() const
    {
        const std::lock_guard lock(s_mutex);
        QStringList texts;
        for (const auto& line : s_lines)
            texts.append(line.first);
        return texts;
    }

private:
    static inline std::mutex s_mutex;
    static inline std::vector<std::pair<QString, QString>> s_lines; // guarded by s_mutex
    QtMessageHandler m_before;
};

/** Puts a channel back as it was. */
class ChannelGuard {
public:
    explicit ChannelGuard(cTracer& io_channel) : m_channel(io_channel), m_state(io_channel.getState()) {}
    ~ChannelGuard()
    {
        m_channel.setState(m_state);
        m_channel.setDevice(nullptr);
    }

private:
    cTracer& m_channel;
    const QFlags<cTracer::ETracerState> m_state;
};

} // namespace

TEST(cTracer, ALineGoesToListenersAndDebugLogWithItsPlace)
{
    const TraceCapture trace;
    const DebugLogCapture log;
    const QDateTime before = QDateTime::currentDateTime();
    cTracer::cerr << "could not read: " << QStringLiteral("\u00e4.png") << ' ' << 5 << ' ' << 0.5
                  << cTracer::end();
    const int line = __LINE__ - 1;

    ASSERT_EQ(trace.lines().size(), 1u);
    const cTracerManager::Info& info = trace.lines()[0];
    EXPECT_EQ(info.location, QStringLiteral(" cTracerTest.cpp (%1)").arg(line));
    EXPECT_EQ(info.text, QStringLiteral("could not read: \u00e4.png 5 0.5"));
    EXPECT_EQ(info.channel, QStringLiteral("cerr"));
    EXPECT_TRUE(info.enabled);
    EXPECT_TRUE(info.toDevice);
    EXPECT_TRUE(info.toDebugLog);
    EXPECT_GE(info.time, before);
    EXPECT_LE(info.time, QDateTime::currentDateTime());
    EXPECT_EQ(log.texts(), QStringList {info.text});
}

TEST(cTracer, TheFileIsNamedWithoutItsFolder)
{
    const TraceCapture trace;
    cTracer::cout << "x" << cTracer::end("some/where/cImg.cpp", 12) << cTracer::end("cImg.cpp", 13);
    ASSERT_EQ(trace.lines().size(), 2u);
    EXPECT_EQ(trace.lines()[0].location, QStringLiteral(" cImg.cpp (12)"));
    EXPECT_EQ(trace.lines()[0].channel, QStringLiteral("cout"));
    EXPECT_EQ(trace.lines()[1].location, QStringLiteral(" cImg.cpp (13)"));
    EXPECT_EQ(trace.lines()[1].text, QString());
}

TEST(cTracer, PiecesAreWhateverATextStreamWrites)
{
    const TraceCapture trace;
    const float elements[] = {1.5f, 2.0f};
    cTracer::cerr << QColor(255, 128, 0) << ' ' << cMatrix<float>(1, 2, elements) << ' '
                  << cError(cError::UnknownFault, cError::Processing, QStringLiteral("broken"),
                         QStringLiteral("g/add"))
                  << cTracer::end();
    EXPECT_EQ(trace.texts(), QStringList {QStringLiteral("#ff8000 1, 2, 1.5, 2 g/add: broken")});
}

TEST(cTracer, TheChannelsBuildTheirLinesApart)
{
    const TraceCapture trace;
    cTracer::cerr << "a";
    cTracer::cout << "b";
    cTracer::cerr << "c" << cTracer::end();
    cTracer::cout << "d" << cTracer::end();
    const QStringList texts {QStringLiteral("ac"), QStringLiteral("bd")};
    EXPECT_EQ(trace.texts(), texts);
}

TEST(cTracer, AChannelThatIsOffIsSilent)
{
    const ChannelGuard guard(cTracer::cerr);
    const TraceCapture trace;
    const DebugLogCapture log;
    cTracer::cerr.setState({});
    cTracer::cerr << "lost" << cTracer::end();
    cTracer::cerr.setState(cTracer::Enabled);
    cTracer::cerr << "heard" << cTracer::end();
    EXPECT_EQ(cTracer::cerr.getState(), QFlags<cTracer::ETracerState>(cTracer::Enabled));
    EXPECT_EQ(trace.texts(), QStringList {QStringLiteral("heard")});
    EXPECT_FALSE(trace.lines()[0].toDebugLog);
    EXPECT_EQ(log.texts(), QStringList());
}

TEST(cTracer, ADeviceGetsWholeLinesInUtf8)
{
    const ChannelGuard guard(cTracer::cout);
    const DebugLogCapture log;
    QBuffer device;
    ASSERT_TRUE(device.open(QIODevice::WriteOnly));
    cTracer::cout.setDevice(&device);
    cTracer::cout << "pre" << QStringLiteral("\u00e4");
    EXPECT_EQ(device.data(), QByteArray());
    cTracer::cout << cTracer::end();
    EXPECT_EQ(device.data(), QByteArray("pre\xc3\xa4\n"));
    cTracer::cout.setState(cTracer::Enabled);
    cTracer::cout << "not here" << cTracer::end();
    EXPECT_EQ(device.data(), QByteArray("pre\xc3\xa4\n"));
    cTracer::cout.setDevice(nullptr);
    cTracer::cout.setState(cTracer::Enabled | cTracer::ToDevice);
    cTracer::cout << "nowhere" << cTracer::end();
    EXPECT_EQ(device.data(), QByteArray("pre\xc3\xa4\n"));
}

TEST(cTracer, LinesOfSeveralThreadsNeverMix)
{
    constexpr int threadCount = 4;
    constexpr int lineCount = 300;
    const ChannelGuard guard(cTracer::cerr);
    cTracer::cerr.setState(cTracer::Enabled | cTracer::ToDevice);
    QBuffer device;
    ASSERT_TRUE(device.open(QIODevice::WriteOnly));
    cTracer::cerr.setDevice(&device);
    const TraceCapture trace;

    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([thread] {
            for (int line = 0; line < lineCount; ++line)
                cTracer::cerr << "thread " << thread << " piece " << line << " of "
                              << QString::number(lineCount) << cTracer::end();
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    QStringList expected;
    for (int thread = 0; thread < threadCount; ++thread)
        for (int line = 0; line < lineCount; ++line)
            expected.append(QStringLiteral("thread %1 piece %2 of %3").arg(thread).arg(line).arg(lineCount));
    expected.sort();
    QStringList heard = trace.texts();
    heard.sort();
    EXPECT_EQ(heard, expected);
    QStringList inDevice = QString::fromUtf8(device.data()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    inDevice.sort();
    EXPECT_EQ(inDevice, expected);
}

TEST(cTracer, TheDebugLogGetsTheLinesOfAllThreads)
{
    const DebugLogCapture log;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread)
        threads.emplace_back([] {
            for (int line = 0; line < 50; ++line)
                cTracer::cout << "a"
                              << "b" << cTracer::end();
        });
    for (std::thread& thread : threads)
        thread.join();
    QStringList expected;
    for (int line = 0; line < 150; ++line)
        expected.append(QStringLiteral("ab"));
    EXPECT_EQ(log.texts(), expected);
}

TEST(cTracerManager, ListenersComeAndGoWhileOthersTrace)
{
    const ChannelGuard guard(cTracer::cerr);
    cTracer::cerr.setState(cTracer::Enabled);
    std::atomic<bool> stop {false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back([&stop] {
            while (!stop)
                cTracer::cerr << "line" << cTracer::end();
        });
    for (int run = 0; run < 200; ++run) {
        // Not atomic on purpose: a listener runs for one line at a time, and never after its removal.
        int heard = 0;
        const int id
            = cTracerManager::instance().addListener([&heard](const cTracerManager::Info&) { ++heard; });
        std::this_thread::yield();
        cTracerManager::instance().removeListener(id);
        const int atRemoval = heard;
        std::this_thread::yield();
        EXPECT_EQ(heard, atRemoval);
    }
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
}

TEST(cTracerManager, AListenerMayTraceThrowAndRemoveItself)
{
    const ChannelGuard guard(cTracer::cerr);
    cTracer::cerr.setState(cTracer::Enabled);
    cTracerManager& manager = cTracerManager::instance();
    int calls = 0;
    int id = 0;
    id = manager.addListener([&](const cTracerManager::Info&) {
        ++calls;
        cTracer::cerr << "from within" << cTracer::end();
        manager.removeListener(id);
        throw 5;
    });
    const TraceCapture later;
    cTracer::cerr << "first" << cTracer::end();
    cTracer::cerr << "second" << cTracer::end();
    EXPECT_EQ(calls, 1);
    const QStringList texts {QStringLiteral("first"), QStringLiteral("second")};
    EXPECT_EQ(later.texts(), texts);
    manager.removeListener(id);
    manager.removeListener(-1);
    manager.removeListener(manager.addListener(nullptr));
}

TEST(cTracerManager, AMessageHandlerMayTrace)
{
    const QtMessageHandler before
        = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& i_text) {
              const ChannelGuard guard(cTracer::cout);
              cTracer::cout.setState(cTracer::Enabled);
              cTracer::cout << "handled " << i_text << cTracer::end();
          });
    const TraceCapture trace;
    cTracer::cerr << "line" << cTracer::end();
    qInstallMessageHandler(before);
    const QStringList texts {QStringLiteral("line"), QStringLiteral("handled line")};
    EXPECT_EQ(trace.texts(), texts);
}

TEST(cTracerManager, ALineCanBeFiredDirectly)
{
    const TraceCapture trace;
    cTracerManager::instance().fireNewText({QStringLiteral(" here (1)"), QStringLiteral("text"),
        QStringLiteral("own"), true, false, false, QDateTime()});
    ASSERT_EQ(trace.lines().size(), 1u);
    EXPECT_EQ(trace.lines()[0].channel, QStringLiteral("own"));
}
