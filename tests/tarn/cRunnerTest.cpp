#include "cHoardingStation.h"

#include <cConsole.h>
#include <cFileFormat.h>
#include <cFilesStation.h>
#include <cPipelineBuilder.h>
#include <cRunner.h>
#include <hostStations.h>
#include <support/guiApplication.h>
#include <support/images.h>
#include <support/qtPrinters.h>

#include <QTemporaryDir>
#include <cstdio>
#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>
#include <tarnimg/imagePortGroups.h>

namespace {

/** Throws on its second frame what nobody expects. */
class cDyingStation : public cStation {
public:
    cDyingStation() : m_group(this, &cDyingStation::process, QStringLiteral("img")) {}
    ~cDyingStation() override { stop(); }

private:
    void process(cBufferT<cImg>*)
    {
        if (++m_steps == 2)
            throw 42;
    }
    int m_steps = 0;
    cPortGroup<cImg> m_group;
};

/** Looks at each frame's attributes. */
class cLookingStation : public cStation {
public:
    cLookingStation() : m_group(this, &cLookingStation::process, QStringLiteral("img")) {}
    ~cLookingStation() override { stop(); }
    static QStringList s_seen;

private:
    void process(cBufferT<cImg>* i_buffer)
    {
        const cImg& image = i_buffer->getValue();
        QString source;
        image.getImgAttr(QStringLiteral("source"))->getValue(source);
        s_seen.append(QStringLiteral("%1 %2 %3/%4 %5")
                          .arg(i_buffer->getStamp().getStamp())
                          .arg(image.getName())
                          .arg(image.getFrameIndex())
                          .arg(image.getNumFrames())
                          .arg(source.section(u'/', -1)));
    }
    cPortGroup<cImg> m_group;
};
QStringList cLookingStation::s_seen;

class cRunnerTest : public testing::Test {
protected:
    void SetUp() override
    {
        guiApplication();
        host::registerFileFormats();
        host::registerStations();
        cStation::registercStation(
            QStringLiteral("test/die"), []() -> cStation* { return new cDyingStation; });
        cStation::registercStation(
            QStringLiteral("test/hoard"), []() -> cStation* { return new cHoardingStation; });
        cStation::registercStation(
            QStringLiteral("test/look"), []() -> cStation* { return new cLookingStation; });
        for (const char* name : {"f1.png", "f2.png", "f10.png"})
            host::writeImage(
                m_folder.filePath(QString::fromLatin1(name)), makeRandomImage(cImgType::UInt8, 4, 3));
    }

    /** "@" stands for the folder of the pictures. */
    EExit run(
        const char* i_text, const std::function<int()>& i_interrupts = [] { return 0; })
    {
        const QString text = QString::fromUtf8(i_text).replace(u'@', m_folder.path());
        cGraph graph;
        cPipelineBuilder builder(graph, {});
        EXPECT_TRUE(builder.build(host::parsePipeline(text, QStringLiteral("g")).pipeline));
        std::FILE* file = std::tmpfile();
        cConsole console(file, false);
        const EExit exit = cRunner(graph, {}, console).run(i_interrupts);
        m_errors.resize(int(std::ftell(file)));
        std::rewind(file);
        EXPECT_EQ(
            std::fread(m_errors.data(), 1, std::size_t(m_errors.size()), file), std::size_t(m_errors.size()));
        std::fclose(file);
        return exit;
    }

    QTemporaryDir m_folder;
    QByteArray m_errors;
};

TEST_F(cRunnerTest, AStationThatDiesEndsTheRunWithItsName)
{
    EXPECT_EQ(run("files @ repeat=100 ! die name=d"), EExit::Died);
    EXPECT_TRUE(m_errors.contains("error: d: the station died, the run ends\n")) << m_errors.constData();
    EXPECT_TRUE(m_errors.contains("failed:\n  d: ")) << m_errors.constData();
}

TEST_F(cRunnerTest, AFlowThatCannotMoveIsReportedWithWhoWaitsForWhom)
{
    EXPECT_EQ(run("files @ repeat=100 name=f ! hoard name=h"), EExit::Stalled);
    EXPECT_TRUE(m_errors.contains("error: nothing moves any more:\n  ")) << m_errors.constData();
    EXPECT_TRUE(m_errors.contains("f.img")) << m_errors.constData();
}

TEST_F(cRunnerTest, EveryEndHasItsNumber)
{
    EXPECT_EQ(int(EExit::Good), 0);
    EXPECT_EQ(int(EExit::SomeFailed), 1);
    EXPECT_EQ(int(EExit::BadUsage), 2);
    EXPECT_EQ(int(EExit::Stalled), 3);
    EXPECT_EQ(int(EExit::Died), 4);
    EXPECT_EQ(int(EExit::Interrupted), 130);
}

TEST_F(cRunnerTest, OneInterruptDrainsTwoStop)
{
    EXPECT_EQ(run("files @ repeat=100000 ! look", [] { return 1; }), EExit::Interrupted);
    EXPECT_TRUE(m_errors.contains("interrupted: finishing what is in flight")) << m_errors.constData();
    EXPECT_EQ(run("files @ repeat=100000 ! look", [] { return 2; }), EExit::Interrupted);
    EXPECT_TRUE(m_errors.contains("stopped: what was in flight is discarded")) << m_errors.constData();
}

TEST_F(cRunnerTest, FramesComeInNaturalOrderWithNameNumberAndSource)
{
    cLookingStation::s_seen.clear();
    EXPECT_EQ(run("files @ repeat=2 limit=5 ! look"), EExit::Good);
    EXPECT_EQ(cLookingStation::s_seen,
        (QStringList {QStringLiteral("0 f1 0/5 f1.png"), QStringLiteral("1 f2 1/5 f2.png"),
            QStringLiteral("2 f10 2/5 f10.png"), QStringLiteral("3 f1 3/5 f1.png"),
            QStringLiteral("4 f2 4/5 f2.png")}));
}

TEST_F(cRunnerTest, ASourceThatNobodyListensToReadsNothingAndEnds)
{
    EXPECT_EQ(run("files @/missing.png"), EExit::Good);
    EXPECT_TRUE(m_errors.contains("1 of 1 frames")) << m_errors.constData();
}

TEST_F(cRunnerTest, OneFileThatIsRepeatedIsReadOnce)
{
    cLookingStation::s_seen.clear();
    EXPECT_EQ(run("files @/f2.png repeat=3 ! look"), EExit::Good);
    EXPECT_EQ(cLookingStation::s_seen,
        (QStringList {QStringLiteral("0 f2 0/3 f2.png"), QStringLiteral("1 f2 1/3 f2.png"),
            QStringLiteral("2 f2 2/3 f2.png")}));
}

TEST(nameGivingFile, IsThatOfTheSourceWithTheMostFiles)
{
    guiApplication();
    host::registerFileFormats();
    host::registerStations();
    QTemporaryDir folder;
    for (const char* name : {"a/1.png", "a/2.png", "b/3.png", "b/4.png", "dark.png"})
        host::writeImage(folder.filePath(QString::fromLatin1(name)), makeRandomImage(cImgType::UInt8, 2, 2));
    cFilesStation dark, a, b;
    const auto set = [&](cFilesStation& io_station, const char* i_path, const char* i_repeat) {
        EXPECT_TRUE(io_station.getParams()[QStringLiteral("path")]->setFromText(
            folder.filePath(QString::fromLatin1(i_path))));
        EXPECT_TRUE(
            io_station.getParams()[QStringLiteral("repeat")]->setFromText(QString::fromLatin1(i_repeat)));
        EXPECT_TRUE(io_station.checkParams().isEmpty());
    };
    set(dark, "dark.png", "3");
    set(a, "a", "1");
    set(b, "b", "1");
    const QList<cFrameSource*> sources {&dark, &a, &b};
    EXPECT_EQ(host::nameGivingFile(sources, 1), folder.filePath(QStringLiteral("a/2.png")));
    EXPECT_EQ(host::nameGivingFile(sources, 2), folder.filePath(QStringLiteral("dark.png")));
    EXPECT_EQ(host::nameGivingFile(sources, 3), QString());
    EXPECT_EQ(host::nameGivingFile({}, 0), QString());
}

} // namespace
