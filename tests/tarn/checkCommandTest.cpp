// 'tarn check', and the same errors before 'tarn run' starts.

#include "CommandTest.h"

namespace {

using checkCommand = CommandTest;

TEST_F(checkCommand, SaysNothingOfAGraphThatCanRunAndRunsNothing)
{
    writeFrames(QStringLiteral("in"), 3);
    write(QStringLiteral("g.tarn"),
        "files ${from} name=f\nf. ! save ${to}/{stem}.tif\nf. ! meanStdDev name=m   m.mean ! print\n");
    const Result result = tarn("check g.tarn -D from=in -D to=out --limit 2");
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(result.errors, QString());
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("out"))));
}

TEST_F(checkCommand, TellsWhatTheTextAloneTells)
{
    writeFrames(QStringLiteral("in"), 1);
    const Result result = tarn({QStringLiteral("check"), QStringLiteral("-e"),
        QStringLiteral("files in ! nosuch"), QStringLiteral("-e"), QStringLiteral("abs colour=2")});
    EXPECT_EQ(result.exit, 2);
    EXPECT_EQ(result.output, QString());
    EXPECT_TRUE(result.errors.startsWith(QStringLiteral("-e:1:12: error: unknown station, "))
        && result.errors.contains(QStringLiteral("\n-e:2:5: error: abs1: unknown parameter, ")))
        << result.errors.toStdString();
}

TEST_F(checkCommand, TellsWhichPixelTypesCannotMeetAndSoDoesARun)
{
    writeFrames(QStringLiteral("in"), 2, cImgType::UInt16);
    const QString graph = QStringLiteral(
        "files in ! addConstant constant=70000 name=a ! countInRange name=c ! print values.jsonl");
    const QString errors = QStringLiteral(
        "-e:1:24: error: a.constant: does not fit into 16-bit pixels, expected a number from 0 to 65535, "
        "found 70000, which would act as 4464 (frame of in/f0.png)\n"
        "  help: give a number of this range, or convert the images to a type that holds it\n"
        "-e:1:48: error: c.img: does not take the images that reach it, expected UInt8 of 1 channel, "
        "Float32 of 1 channel, found UInt16 of 1 channel (frame of in/f0.png)\n"
        "  help: they come from a.img: put a station between that gives what is expected\n");
    for (const char* verb : {"check", "run"}) {
        const Result result = tarn({QString::fromLatin1(verb), QStringLiteral("-e"), graph});
        EXPECT_EQ(result.exit, 2) << verb;
        EXPECT_EQ(result.output, QString()) << verb;
        EXPECT_EQ(result.errors, errors) << verb;
    }
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("values.jsonl"))));
}

TEST_F(checkCommand, ReadsAListOfFilesFromStandardInputOnce)
{
    writeFrames(QStringLiteral("in"), 2, cImgType::UInt16);
    const QByteArray list = "in/f1.png\nin/f0.png\n";
    const QStringList bad {QStringLiteral("-e"), QStringLiteral("files - ! countInRange ! print")};
    EXPECT_EQ(tarn(QStringList {QStringLiteral("check")} + bad, list).exit, 2);
    const QStringList good {QStringLiteral("-e"), QStringLiteral("files - ! norm ! print")};
    EXPECT_EQ(tarn(QStringList {QStringLiteral("check")} + good, list).exit, 0);
    const Result result = tarn(QStringList {QStringLiteral("run")} + good, list);
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.output.count(u'\n'), 2) << result.output.toStdString();
}

TEST_F(checkCommand, RefusesWhatItDoesNotUnderstand)
{
    EXPECT_EQ(tarn("check").errors,
        QStringLiteral(
            "tarn check: error: no graph, expected a file or -e 'text'\n  help: 'tarn check --help' tells "
            "more\n"));
    const Result option = tarn("check --stats -e abs");
    EXPECT_EQ(option.exit, 2);
    EXPECT_EQ(option.errors,
        QStringLiteral("tarn check: error: unknown option, found '--stats'\n  help: known: -e, -D, --limit, "
                       "--help, -h\n"));
    EXPECT_EQ(tarn("check missing.tarn").errors,
        QStringLiteral("tarn check: error: missing.tarn: No such file or directory\n"));
    const Result help = tarn("check --help");
    EXPECT_EQ(help.exit, 0);
    EXPECT_TRUE(help.output.startsWith(QStringLiteral("usage: tarn check [options] FILE\n")));
}

TEST_F(checkCommand, AValueThatSomeFramesCutIsAWarningAtTheEndOfARun)
{
    writeFrames(QStringLiteral("in"), 1);
    host::writeImage(path(QStringLiteral("in/g.png")), makeRandomImage(cImgType::UInt16, 12, 8));
    const Result result = run("files in ! addConstant name=a constant=300 ! save out/{stem}.png");
    EXPECT_EQ(result.exit, 0);
    EXPECT_TRUE(result.errors.startsWith(
        QStringLiteral("warning: a.constant: does not fit into 8-bit pixels, expected a number from 0 to "
                       "255, found 300, which would act as 44\n2 of 2 frames")))
        << result.errors.toStdString();
}

} // namespace
