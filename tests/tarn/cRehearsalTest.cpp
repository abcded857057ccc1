#include "cHoardingStation.h"

#include <cConsole.h>
#include <cFileFormat.h>
#include <cPipelineBuilder.h>
#include <cRehearsal.h>
#include <cRunner.h>
#include <hostStations.h>
#include <support/guiApplication.h>
#include <support/images.h>
#include <support/qtPrinters.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <gtest/gtest.h>
#include <tarnbase/cTracer.h>
#include <tarnbase/cTracerManager.h>
#include <tarnflow/cGraph.h>
#include <tarnimg/imagePortGroups.h>

namespace {

/** Sends more images than its pool has buffers. */
class cBurstStation : public cStation {
public:
    cBurstStation()
        : m_group(this, &cBurstStation::process, QStringLiteral("img")),
          m_out(this, QStringLiteral("img"), 2)
    {
    }
    ~cBurstStation() override { stop(); }

private:
    void process(cBufferT<cImg>* i_buffer)
    {
        for (int i = 0; i < 3; ++i) {
            const cBufferStamp stamp(i_buffer->getStamp().getStamp() + i);
            m_out.send(i_buffer->getValue(), stamp);
            m_out.sendFinish(stamp);
        }
    }
    cPortGroup<cImg> m_group;
    cOPort<cImg> m_out;
};

/** A folder of pictures, and graphs that read them. "@" in the texts of errors stands for the folder. */
class cRehearsalTest : public testing::Test {
protected:
    void SetUp() override
    {
        guiApplication();
        host::registerFileFormats();
        host::registerStations();
        cStation::registercStation(
            QStringLiteral("test/keep"), []() -> cStation* { return new cHoardingStation; });
        cStation::registercStation(
            QStringLiteral("test/burst"), []() -> cStation* { return new cBurstStation; });
        write("grey.png", cImgType::UInt8);
        write("deep.png", cImgType::UInt16);
        write("colour.png", cImgType::RGB24);
        write("signed.tif", cImgType::SInt16);
        write("float.tif", cImgType::Float32);
    }

    void write(const char* i_name, cImgType::ImageTypes i_type, unsigned i_width = 12) const
    {
        host::writeImage(m_folder.filePath(QString::fromLatin1(i_name)), makeRandomImage(i_type, i_width, 8));
    }
    void writeText(const char* i_name, const QByteArray& i_text) const
    {
        QFile file(m_folder.filePath(QString::fromLatin1(i_name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(i_text);
    }

    /** What is wrong with a graph; ${in} in it is the folder. */
    std::string rehearse(const char* i_text, cGraph& io_graph) const
    {
        const QMap<QString, QString> variables {{QStringLiteral("in"), m_folder.path()}};
        const cParsedPipeline parsed = host::parsePipeline(QString::fromUtf8(i_text), QStringLiteral("g"));
        cPipelineBuilder builder(io_graph, variables);
        if (builder.build(parsed.pipeline))
            builder.report(cRehearsal(io_graph, parsed.pipeline, variables).run());
        else
            ADD_FAILURE() << i_text;
        QStringList lines;
        for (const cDiagnostic& error : builder.getErrors())
            lines.append(error.toString());
        return lines.join(u'\n').replace(m_folder.path(), QStringLiteral("@")).toStdString();
    }
    std::string rehearse(const char* i_text) const
    {
        cGraph graph;
        return rehearse(i_text, graph);
    }

    QTemporaryDir m_folder;
};

// ---- pixel types ----

TEST_F(cRehearsalTest, AGraphThatFitsHasNoErrors)
{
    EXPECT_EQ(rehearse("files ${in}/grey.png ! addConstant constant=255 ! countInRange ! print"), "");
    EXPECT_EQ(rehearse("files ${in}/signed.tif ! abs ! save ${in}/out/{stem}.tif"), "");
}

TEST_F(cRehearsalTest, ATypeIsFollowedThroughTheStations)
{
    EXPECT_EQ(rehearse("files ${in}/deep.png\n"
                       "  ! addConstant constant=1\n"
                       "  ! multiplyConstant name=m\n"
                       "  ! countInRange name=c ! print"),
        "g:4:5: error: c.img: does not take the images that reach it, expected UInt8 of 1 channel, Float32 "
        "of 1 channel, found UInt16 of 1 channel (frame of @/deep.png)\n"
        "  help: they come from m.img: put a station between that gives what is expected");
}

TEST_F(cRehearsalTest, ATypeThatAStationChangesIsFollowedToo)
{
    // The sum of squares of 8-bit pixels is a float image, which 'norm' takes and 'YUV422ToRGB' does not.
    EXPECT_EQ(rehearse("files ${in}/grey.png ! addSquare ! norm ! print"), "");
    EXPECT_EQ(rehearse("files ${in}/grey.png ! addSquare name=s\n! YUV422ToRGB name=y ! save o.png"),
        "g:2:3: error: y.img: does not take the images that reach it, expected UInt8 of 1 channel, found "
        "Float32 of 1 channel (frame of @/grey.png)\n"
        "  help: they come from s.img: put a station between that gives what is expected");
}

TEST_F(cRehearsalTest, TheHelpNamesATypeThatTheFilesConvertTo)
{
    const auto helpOf = [this](const char* i_text) {
        const std::string errors = rehearse(i_text);
        return errors.substr(std::min(errors.find("  help: "), errors.size()));
    };
    EXPECT_EQ(helpOf("files ${in}/colour.png ! abs ! save o.tif"),
        "  help: convert the files, as in: tarn convert --type SInt16 INPUT... OUTPUT");
    write("complex.tif", cImgType::Complex);
    EXPECT_EQ(helpOf("files ${in}/complex.tif ! RGBToHSV ! save o.tif"),
        "  help: take a station for such images, or other files");
}

TEST_F(cRehearsalTest, ASecondInputThatRefusesIsNamedWithItsOwnFile)
{
    EXPECT_EQ(rehearse("files ${in}/grey.png ! d.img1\n"
                       "files ${in}/signed.tif ! d.img2\n"
                       "difference name=d ! save ${in}/out/o.png"),
        "g:3:1: error: d.img2: does not take the images that reach it, expected UInt8 of 1 channel, UInt16 "
        "of 1 channel, Float32 of 1 channel, RGB24, found SInt16 of 1 channel (frame of @/signed.tif)\n"
        "  help: convert the files, as in: tarn convert --type UInt8 INPUT... OUTPUT");
}

TEST_F(cRehearsalTest, TypesThatCannotMeetAreFound)
{
    EXPECT_EQ(rehearse("files ${in}/grey.png ! d.img1\n"
                       "files ${in}/deep.png ! d.img2\n"
                       "difference name=d ! save ${in}/out/o.png"),
        "g:3:1: error: d: the images that meet in it differ, expected one pixel type, found UInt8 of 1 "
        "channel and UInt16 of 1 channel (frame of @/grey.png)\n"
        "  help: let images of one type meet; 'tarn convert --type' converts files");
}

TEST_F(cRehearsalTest, AFormatThatCannotHoldTheTypeIsFound)
{
    EXPECT_EQ(rehearse("files ${in}/grey.png ! addSquare\n! save ${in}/out/o.png name=s"),
        "g:2:8: error: s.path: PNG cannot hold Float32 with 1 channel, formats that can: NPY, PFM, TIFF, "
        "TIS (frame of @/grey.png)\n"
        "  help: name a file of one of these formats, or let images of another type come in");
}

TEST_F(cRehearsalTest, AStationInASubgraphIsNamedWithItsPath)
{
    EXPECT_EQ(rehearse("graph sub {\n  in.x ! countInRange name=c\n  c. ! out.n\n}\n"
                       "files ${in}/deep.png ! sub.x\nsub.n ! print"),
        "g:2:10: error: sub/c.img: does not take the images that reach it, expected UInt8 of 1 channel, "
        "Float32 of 1 channel, found UInt16 of 1 channel (frame of @/deep.png)\n"
        "  help: they come from sub.x: put a station between that gives what is expected");
}

// ---- values that the pixels cut ----

TEST_F(cRehearsalTest, AConstantThatThePixelsCutIsFoundWhereItStands)
{
    EXPECT_EQ(rehearse("files ${in}/grey.png\n! addConstant name=a constant=300 ! save ${in}/out/o.png"),
        "g:2:22: error: a.constant: does not fit into 8-bit pixels, expected a number from 0 to 255, found "
        "300, which would act as 44 (frame of @/grey.png)\n"
        "  help: give a number of this range, or convert the images to a type that holds it");
    EXPECT_EQ(rehearse("files ${in}/deep.png\n! addConstant name=a constant=300 ! save ${in}/out/o.png"), "");
}

TEST_F(cRehearsalTest, NegativeAndBrokenConstantsAreJudgedAsTheyAct)
{
    EXPECT_NE(rehearse("files ${in}/grey.png ! subtractConstant constant=-1 ! save ${in}/out/o.png")
                  .find("expected a number from 0 to 255, found -1, which would act as 255"),
        std::string::npos);
    // A fraction that is lost is not cut.
    EXPECT_EQ(rehearse("files ${in}/grey.png ! addConstant constant=1.9 ! save ${in}/out/o.png"), "");
    // A factor with a fraction is an integer divided by a power of two, and has less room.
    EXPECT_NE(rehearse("files ${in}/grey.png ! multiplyConstant constant=200.5 ! save ${in}/out/o.png")
                  .find("expected a number from 0 to 127.5, found 200.5, which would act as 72.5"),
        std::string::npos);
    EXPECT_NE(rehearse("files ${in}/signed.tif ! multiplyConstant constant=1.3 ! save ${in}/out/o.tif")
                  .find("does not fit into 16-bit pixels, expected a number from -1 to 0.9999695, found 1.3, "
                        "which would act as -0.7000122"),
        std::string::npos);
    EXPECT_EQ(rehearse("files ${in}/float.tif ! multiplyConstant constant=1e9 ! save ${in}/out/o.tif"), "");
}

TEST_F(cRehearsalTest, AFractionThatLeavesOthersNoRoomIsToldFromANumberThatIsTooLarge)
{
    // 0.3 needs a power of 512, in which 1 is more than a byte. The other two are not in the text.
    EXPECT_EQ(
        rehearse("files ${in}/colour.png\n"
                 "! multiplyConstantRGB name=m constantRed=0.3 constantGreen=0.25 ! save ${in}/out/o.png"),
        "g:2:3: error: m.constantBlue: does not fit into 8-bit pixels, expected a number from 0 to "
        "0.4980469, found 1, which would act as 0 (frame of @/colour.png)\n"
        "  help: give short binary fractions, such as 1.25, which leave more room");
    EXPECT_EQ(rehearse("files ${in}/colour.png ! multiplyConstantRGB constantRed=0.25 constantGreen=1.3 ! "
                       "save ${in}/out/o.png"),
        "");
}

TEST_F(cRehearsalTest, EachBoundThatIsCutIsFoundEvenWhereTheStepFails)
{
    // 256 acts as 0, so that the range is empty.
    EXPECT_EQ(rehearse("files ${in}/grey.png\n! countInRange name=c lowerBound=-2 upperBound=256 ! print"),
        "g:2:23: error: c.lowerBound: does not fit into 8-bit pixels, expected a number from 0 to 255, "
        "found -2, which would act as 254 (frame of @/grey.png)\n"
        "  help: give a number of this range, or convert the images to a type that holds it\n"
        "g:2:37: error: c.upperBound: does not fit into 8-bit pixels, expected a number from 0 to 255, "
        "found 256, which would act as 0 (frame of @/grey.png)\n"
        "  help: give a number of this range, or convert the images to a type that holds it");
}

TEST_F(cRehearsalTest, ValuesOfSourcesAreThoseOfTheRun)
{
    const std::string cut = "g:2:1: error: a.constant: does not fit into 8-bit pixels, expected a number "
                            "from 0 to 255, found 300, which would act as 44 (frame of @/grey.png)\n"
                            "  help: give a number of this range, or convert the images to a type that "
                            "holds it";
    EXPECT_EQ(rehearse("constant 300 ! a.value\naddConstant name=a ! save ${in}/out/o.png\n"
                       "files ${in}/grey.png ! a.img"),
        cut);
    EXPECT_EQ(rehearse("constant 30 ! a.value\naddConstant name=a constant=300 ! save ${in}/out/o.png\n"
                       "files ${in}/grey.png ! a.img"),
        "");
    writeText("gain.jsonl", "300\n1\n");
    EXPECT_EQ(rehearse("values ${in}/gain.jsonl ! a.value\naddConstant name=a ! save ${in}/out/o.png\n"
                       "files ${in}/grey.png ! a.img"),
        cut);
    // No frame has this stamp.
    writeText("gain.jsonl", "{\"stamp\":1,\"value\":300}\n");
    EXPECT_EQ(rehearse("values ${in}/gain.jsonl ! a.value\naddConstant name=a ! save ${in}/out/o.png\n"
                       "files ${in}/grey.png ! a.img"),
        "");
}

TEST_F(cRehearsalTest, AComputedValueSaysNothing)
{
    // The sum of some pixels exceeds 255, that of others may not.
    EXPECT_EQ(rehearse("files ${in}/grey.png name=f ! norm name=n   n. ! a.value   f. ! a.img\n"
                       "addConstant name=a ! save ${in}/out/o.png"),
        "");
}

// ---- which frames are asked ----

TEST_F(cRehearsalTest, FilesOfDifferentTypesAreRefusedOnlyIfNoneWorks)
{
    const char* const count = "files ${in}/deep.png,${in}/grey.png ! countInRange ! print";
    EXPECT_EQ(rehearse(count), "");
    const std::string none = rehearse("files ${in}/deep.png,${in}/signed.tif,${in}/colour.png\n"
                                      "! countInRange name=c ! print");
    EXPECT_EQ(none,
        "g:2:3: error: c.img: does not take the images that reach it, expected UInt8 of 1 channel, Float32 "
        "of 1 channel, found UInt16 of 1 channel (frame of @/deep.png)\n"
        "  help: convert the files, as in: tarn convert --type UInt8 INPUT... OUTPUT");
    // Beyond the limit there is no frame that would work.
    EXPECT_NE(rehearse("files ${in}/deep.png,${in}/grey.png limit=1 ! countInRange ! print"), "");
    // A constant that some files hold is no error either.
    EXPECT_EQ(rehearse("files ${in}/grey.png,${in}/deep.png ! addConstant constant=300 ! "
                       "save ${in}/out/{stem}.png"),
        "");
}

TEST_F(cRehearsalTest, FramesOfTwoSourcesAreAskedAsTheyMeet)
{
    const char* const same = "files ${in}/grey.png,${in}/deep.png ! d.img1\n"
                             "files ${in}/grey.png,${in}/deep.png ! d.img2\n"
                             "difference name=d ! save ${in}/out/{stem}.png";
    const char* const crossed = "files ${in}/grey.png,${in}/deep.png ! d.img1\n"
                                "files ${in}/deep.png,${in}/grey.png ! d.img2\n"
                                "difference name=d ! save ${in}/out/{stem}.png";
    EXPECT_EQ(rehearse(same), "");
    EXPECT_NE(rehearse(crossed), "");
    // Two files against three: the fifth pair is the first that fits.
    EXPECT_EQ(rehearse("files ${in}/grey.png,${in}/deep.png repeat=3 ! d.img1\n"
                       "files ${in}/float.tif,${in}/float.tif,${in}/float.tif,${in}/float.tif,${in}/grey.png "
                       "! d.img2\n"
                       "difference name=d ! save ${in}/out/{index}.png"),
        "");
}

TEST_F(cRehearsalTest, MisfitsOfDifferentFilesInDifferentPlacesAreNone)
{
    EXPECT_EQ(rehearse("files ${in}/deep.png,${in}/grey.png name=f ! countInRange ! print\n"
                       "f. ! addConstant constant=300 ! save ${in}/out/{stem}.png"),
        "");
}

TEST_F(cRehearsalTest, AFileThatCannotBeReadIsPassedOver)
{
    writeText("bad.png", "this is no picture");
    EXPECT_EQ(rehearse("files ${in}/bad.png ! countInRange ! print"), "");
    EXPECT_EQ(rehearse("files ${in}/bad.png,${in}/missing.png,${in}/deep.png\n! countInRange name=c ! print"),
        "g:2:3: error: c.img: does not take the images that reach it, expected UInt8 of 1 channel, Float32 "
        "of 1 channel, found UInt16 of 1 channel (frame of @/deep.png)\n"
        "  help: convert the files, as in: tarn convert --type UInt8 INPUT... OUTPUT");
}

TEST_F(cRehearsalTest, AFileWithASoundHeaderAndDamagedPixelsIsPassedOver)
{
    QFile whole(m_folder.filePath(QStringLiteral("grey.png")));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    writeText("cut.png", whole.readAll().chopped(60));
    EXPECT_EQ(
        host::peekImage(m_folder.filePath(QStringLiteral("cut.png"))), QStringLiteral("UInt8 of 1 channel"));
    EXPECT_NE(rehearse("files ${in}/deep.png,${in}/cut.png ! countInRange ! print"), "");
    EXPECT_EQ(rehearse("files ${in}/deep.png,${in}/cut.png,${in}/grey.png ! countInRange ! print"), "");
}

TEST_F(cRehearsalTest, ALongListIsJudgedByItsHeaders)
{
    // Together their pixels take some time: 400 times a million.
    host::writeImage(
        m_folder.filePath(QStringLiteral("large.png")), makeRandomImage(cImgType::UInt16, 1024, 1024));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("many")));
    for (int i = 0; i < 400; ++i)
        ASSERT_TRUE(QFile::link(m_folder.filePath(QStringLiteral("large.png")),
            m_folder.filePath(QStringLiteral("many/%1.png").arg(i))));
    EXPECT_NE(rehearse("files ${in}/many ! countInRange ! print"), "");
    EXPECT_NE(rehearse("files ${in}/deep.png repeat=1000000000 ! countInRange ! print"), "");
}

TEST_F(cRehearsalTest, ADelayedInputHoldsNothingUp)
{
    EXPECT_EQ(rehearse("files ${in}/deep.png name=f repeat=9   f. ! d.img1   f. ! d.img2\n"
                       "difference name=d img2.delay=2\n! countInRange name=c img.delay=1000 ! print"),
        "g:3:3: error: c.img: does not take the images that reach it, expected UInt8 of 1 channel, Float32 "
        "of 1 channel, found UInt16 of 1 channel (frame of @/deep.png)\n"
        "  help: they come from d.img: put a station between that gives what is expected");
}

TEST_F(cRehearsalTest, AStepThatFailsForAnotherReasonSaysNothing)
{
    write("wide.png", cImgType::UInt8, 13);
    EXPECT_EQ(rehearse("files ${in}/grey.png ! d.img1   files ${in}/wide.png ! d.img2\n"
                       "difference name=d ! addSquare ! save ${in}/out/o.png"),
        "");
}

TEST_F(cRehearsalTest, WhatNobodyWantsIsNotAsked)
{
    EXPECT_EQ(rehearse("files ${in}/missing.png"), "");
    EXPECT_EQ(rehearse("files ${in}/grey.png ! addConstant constant=300"), "");
}

// ---- what a rehearsal leaves behind ----

TEST_F(cRehearsalTest, NothingIsWrittenPrintedOrTraced)
{
    QStringList lines;
    const int listener = cTracerManager::instance().addListener(
        [&](const cTracerManager::Info& i_info) { lines.append(i_info.text); });
    writeText("bad.png", "this is no picture");
    const auto before = cTracer::cerr.getState();
    const QStringList files = QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    testing::internal::CaptureStdout();
    cGraph graph;
    EXPECT_NE(rehearse("files ${in}/bad.png,${in}/grey.png,${in}/deep.png name=f\n"
                       "f. ! save ${in}/out/{stem}.png   f. ! save ${in}/{stem}.tif\n"
                       "f. ! meanStdDev name=m   m.mean ! print   m.stdDev ! print ${in}/values.jsonl\n"
                       "f. ! abs ! save ${in}/abs/{stem}.png",
                  graph),
        "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    cTracerManager::instance().removeListener(listener);
    EXPECT_EQ(lines, QStringList());
    EXPECT_EQ(cTracer::cerr.getState(), before);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), files);
    for (const cPortFates& port : graph.getFates())
        EXPECT_EQ(port.fates.arrived, 0u) << port.node.toStdString();
}

TEST_F(cRehearsalTest, TheRunTakesTheFileThatWasRead)
{
    cGraph graph;
    ASSERT_EQ(rehearse("files ${in}/grey.png ! save ${in}/copy.png", graph), "");
    const cImg image = host::readImage(m_folder.filePath(QStringLiteral("grey.png")));
    ASSERT_TRUE(QFile::remove(m_folder.filePath(QStringLiteral("grey.png"))));
    std::FILE* file = std::tmpfile();
    cConsole console(file, false);
    EXPECT_EQ(cRunner(graph, {}, console).run([] { return 0; }), EExit::Good);
    std::fclose(file);
    EXPECT_TRUE(samePixels(host::readImage(m_folder.filePath(QStringLiteral("copy.png"))), image));
}

TEST_F(cRehearsalTest, AFlowThatStallsEndsIt)
{
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(rehearse("files ${in}/grey.png ! burst ! keep"), "");
    EXPECT_LT(timer.elapsed(), 30000);
}

} // namespace
