// The command as its users meet it: the real program, its exit codes, and what it writes where.

#include "CommandTest.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <csignal>

namespace {

using command = CommandTest;

/** The summary's time and rate differ from run to run. */
QString withoutTimes(QString i_text)
{
    return i_text.replace(
        QRegularExpression(QStringLiteral(" in [0-9.]+ s \\([0-9.]+/s\\)")), QStringLiteral(" in T"));
}

// ---- run ----

TEST_F(command, RunsAGraphInOneLine)
{
    writeFrames(QStringLiteral("in"), 3);
    const Result result = run("files in/*.png ! save out/{stem}.tif");
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.output, QString());
    EXPECT_EQ(withoutTimes(result.errors), QStringLiteral("3 of 3 frames in T, 3 files written, 0 failed\n"));
    EXPECT_EQ(filesIn(QStringLiteral("out")),
        (QStringList {QStringLiteral("f0.tif"), QStringLiteral("f1.tif"), QStringLiteral("f2.tif")}));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(samePixels(host::readImage(path(QStringLiteral("out/f%1.tif").arg(i))),
            host::readImage(path(QStringLiteral("in/f%1.png").arg(i)))));
}

TEST_F(command, RunsAGraphFileWithVariables)
{
    writeFrames(QStringLiteral("in"), 2);
    write(QStringLiteral("g.tarn"),
        "# two ways\nfiles ${from} name=a\n  ! save ${to}/{index}.png\n\na. ! d.img1 a. ! d.img2\n"
        "difference name=d\n! save ${to}/d{stem}.png # zero\n");
    const Result result = tarn("run g.tarn -D from=in -D to=out");
    EXPECT_EQ(result.exit, 0) << result.errors.toStdString();
    EXPECT_EQ(filesIn(QStringLiteral("out")),
        (QStringList {QStringLiteral("0000.png"), QStringLiteral("0001.png"), QStringLiteral("df0.png"),
            QStringLiteral("df1.png")}));
    const cImg zero = host::readImage(path(QStringLiteral("out/df1.png")));
    EXPECT_TRUE(samePixels(
        zero, generateImage(cImgType::UInt8, 12, 8, [](unsigned, unsigned) { return quint8(0); })));
}

TEST_F(command, SixteenBitsGoThroughWithoutLoss)
{
    writeFrames(QStringLiteral("in"), 1, cImgType::UInt16);
    EXPECT_EQ(run("files in ! save out/{stem}.png").exit, 0);
    EXPECT_TRUE(samePixels(
        host::readImage(path(QStringLiteral("out/f0.png"))), makeRandomImage(cImgType::UInt16, 12, 8, 1, 0)));
}

TEST_F(command, SubtractsTheFirstInputFromTheSecond)
{
    host::writeImage(path(QStringLiteral("a.png")), makeImage<quint8>(cImgType::UInt8, {{10, 200}}));
    host::writeImage(path(QStringLiteral("b.png")), makeImage<quint8>(cImgType::UInt8, {{30, 50}}));
    EXPECT_EQ(run("files a.png ! s.img1   files b.png ! s.img2   subtract name=s ! save c.png").exit, 0);
    EXPECT_TRUE(samePixels(
        host::readImage(path(QStringLiteral("c.png"))), makeImage<quint8>(cImgType::UInt8, {{20, 0}})));
}

TEST_F(command, ReadsAListOfFilesFromStandardInput)
{
    writeFrames(QStringLiteral("in"), 11);
    const Result result
        = tarn({QStringLiteral("run"), QStringLiteral("-e"), QStringLiteral("files - ! save out/{stem}.png")},
            "in/f10.png\nin/f2.png\n");
    EXPECT_EQ(result.exit, 0) << result.errors.toStdString();
    EXPECT_EQ(
        filesIn(QStringLiteral("out")), (QStringList {QStringLiteral("f10.png"), QStringLiteral("f2.png")}));
    EXPECT_EQ(
        tarn({QStringLiteral("run"), QStringLiteral("-e"), QStringLiteral("files - ! save out/{stem}.png")})
            .exit,
        2);
}

TEST_F(command, LimitsTheFramesOfEachSource)
{
    writeFrames(QStringLiteral("in"), 5);
    EXPECT_EQ(run("files in name=a ! save a{index}.png  files in limit=4 name=b ! save b{index}.png",
                  {QStringLiteral("--limit"), QStringLiteral("2")})
                  .exit,
        0);
    EXPECT_EQ(filesIn(QString()),
        (QStringList {QStringLiteral("a0000.png"), QStringLiteral("a0001.png"), QStringLiteral("b0000.png"),
            QStringLiteral("b0001.png")}));
}

TEST_F(command, OneBadFileDoesNotEndTheRunAndIsNamed)
{
    writeFrames(QStringLiteral("in"), 4);
    write(QStringLiteral("in/f1.png"), "this is no picture");
    const Result result = run("files in/*.png,in/missing.png ! save out/{stem}.png");
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(withoutTimes(result.errors),
        QStringLiteral("failed:\n"
                       "  files1: in/f1.png: PNG: Not a PNG file\n"
                       "  files1: in/missing.png: No such file or directory\n"
                       "5 of 5 frames in T, 3 files written, 2 failed\n"));
    EXPECT_EQ(filesIn(QStringLiteral("out")),
        (QStringList {QStringLiteral("f0.png"), QStringLiteral("f2.png"), QStringLiteral("f3.png")}));
}

TEST_F(command, ABadFileOfOneSourceLeavesItsPartnerIncomplete)
{
    writeFrames(QStringLiteral("a"), 3);
    writeFrames(QStringLiteral("b"), 3);
    write(QStringLiteral("b/f1.png"), "this is no picture");
    const Result result = run("files a ! d.   files b ! d.   difference name=d ! save out/{stem}.png name=s");
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(withoutTimes(result.errors),
        QStringLiteral("port    arrived     used  incomplete\n"
                       "d.img1        3        2           1\n"
                       "failed:\n"
                       "  files2: b/f1.png: PNG: Not a PNG file\n"
                       "6 of 6 frames in T, 2 files written, 1 failed\n"));
    EXPECT_EQ(
        filesIn(QStringLiteral("out")), (QStringList {QStringLiteral("f0.png"), QStringLiteral("f2.png")}));
}

TEST_F(command, AFailedStepIsNamedWithItsFrame)
{
    host::writeImage(path(QStringLiteral("a/x.png")), makeRandomImage(cImgType::UInt8, 4, 4));
    host::writeImage(path(QStringLiteral("b/y.png")), makeRandomImage(cImgType::UInt8, 5, 4));
    const Result result = run("files a ! d.   files b ! d.   difference name=d ! save out/{stem}.png");
    EXPECT_EQ(result.exit, 1);
    EXPECT_TRUE(result.errors.contains(QStringLiteral("d: a/x.png (frame 0): "))
        && result.errors.contains(QStringLiteral("Image sizes must be equal.")))
        << result.errors.toStdString();
}

TEST_F(command, AFailedStepLeavesTheOtherBranchesAlone)
{
    writeFrames(QStringLiteral("a"), 3);
    writeFrames(QStringLiteral("b"), 3);
    host::writeImage(path(QStringLiteral("b/f1.png")), makeRandomImage(cImgType::UInt8, 5, 4));
    const Result result = run("files a name=f ! save whole/{stem}.png   f. ! d.img1   files b ! d.img2   "
                              "difference name=d ! save out/{stem}.png");
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(filesIn(QStringLiteral("whole")).size(), 3);
    EXPECT_EQ(
        filesIn(QStringLiteral("out")), (QStringList {QStringLiteral("f0.png"), QStringLiteral("f2.png")}));
}

TEST_F(command, StopsReadingAtTheFirstFailureIfAsked)
{
    writeFrames(QStringLiteral("in"), 1);
    write(QStringLiteral("in/a.png"), "this is no picture");
    const Result result = run("files in/a.png,in/f0.png repeat=100000 ! save out/{index}.png",
        {QStringLiteral("--on-error"), QStringLiteral("stop")});
    EXPECT_EQ(result.exit, 1);
    EXPECT_LT(filesIn(QStringLiteral("out")).size(), 50000);
    EXPECT_TRUE(result.errors.contains(QStringLiteral("in/a.png: PNG: Not a PNG file")))
        << result.errors.toStdString();
}

TEST_F(command, RefusedFramesAreCountedAndMakeTheRunFail)
{
    writeFrames(QStringLiteral("in"), 3, cImgType::UInt16);
    host::writeImage(path(QStringLiteral("in/g.png")), makeRandomImage(cImgType::UInt16, 12, 8, 3));
    const Result result
        = run("files in name=f ! d.img1   f. ! d.img2   difference name=d ! save out/{stem}.png");
    EXPECT_EQ(result.exit, 1);
    EXPECT_TRUE(result.errors.startsWith(
        QStringLiteral("port    arrived     used  refused\n"
                       "d.img1        4        3        1\n"
                       "d.img2        4        3        1\n"
                       "d.img1 refused 1 frames: it takes image: UInt8 of 1 channel, ")))
        << result.errors.toStdString();
}

TEST_F(command, TwoFramesNeverWriteOneFile)
{
    writeFrames(QStringLiteral("a"), 1);
    writeFrames(QStringLiteral("b"), 1);
    const Result result = run("files a/f0.png,b/f0.png ! save out/{stem}.png name=s");
    EXPECT_EQ(result.exit, 1);
    EXPECT_TRUE(result.errors.contains(
        QStringLiteral("s: b/f0.png (frame 1): out/f0.png: the file was written by frame 0 of s already")))
        << result.errors.toStdString();
    EXPECT_TRUE(samePixels(host::readImage(path(QStringLiteral("out/f0.png"))),
        host::readImage(path(QStringLiteral("a/f0.png")))));
    const Result two = run("files a name=f ! save o.png name=s   f. ! save ./o.png name=t");
    EXPECT_EQ(two.exit, 1);
    EXPECT_TRUE(two.errors.contains(QStringLiteral("the file was written by frame 0 of ")))
        << two.errors.toStdString();
}

TEST_F(command, AnInputIsNotWrittenOver)
{
    writeFrames(QStringLiteral("in"), 1);
    const QByteArray before = [&] {
        QFile f(path(QStringLiteral("in/f0.png")));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }();
    const Result result
        = run("files in name=f ! d.img1  f. ! d.img2  difference name=d ! save in/{stem}.png");
    EXPECT_EQ(result.exit, 1);
    EXPECT_TRUE(result.errors.contains(
        QStringLiteral("in/f0.png: the file is an input of this run and is not written over")))
        << result.errors.toStdString();
    QFile after(path(QStringLiteral("in/f0.png")));
    ASSERT_TRUE(after.open(QIODevice::ReadOnly));
    EXPECT_EQ(after.readAll(), before);
}

TEST_F(command, StatsTellTheFatesAndTimesOfAll)
{
    writeFrames(QStringLiteral("in"), 2);
    const Result result = run("files in ! save out/{stem}.png name=s", {QStringLiteral("--stats")});
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.output, QString());
    EXPECT_TRUE(QRegularExpression(
        QStringLiteral(
            "^port   arrived     used\ns.img        2        2\ns  2 steps, [0-9.]+ ms each\n2 of 2 frames"))
                    .match(result.errors)
                    .hasMatch())
        << result.errors.toStdString();
}

TEST_F(command, QuietTellsFailuresOnly)
{
    writeFrames(QStringLiteral("in"), 2);
    EXPECT_EQ(run("files in ! save out/{stem}.png", {QStringLiteral("-q")}).errors, QString());
    write(QStringLiteral("in/f1.png"), "this is no picture");
    EXPECT_EQ(run("files in ! save out/{stem}.png name=s", {QStringLiteral("-q")}).errors,
        QStringLiteral("failed:\n  files1: in/f1.png: PNG: Not a PNG file\n"));
}

TEST_F(command, VerboseTellsFailuresAsTheyHappenAndTheTrace)
{
    write(QStringLiteral("in/f1.png"), "this is no picture");
    const Result result = run("files in ! save out/{stem}.png", {QStringLiteral("-v")});
    EXPECT_TRUE(result.errors.startsWith(QStringLiteral("error: files1: in/f1.png: PNG: Not a PNG file\n"))
        || result.errors.startsWith(QStringLiteral("trace: ")))
        << result.errors.toStdString();
    EXPECT_TRUE(result.errors.contains(QStringLiteral("error: files1: in/f1.png")));
}

// ---- what is refused ----

struct Usage {
    const char* words; ///< parted by '|'
    const char* errors;
};

TEST_F(command, RefusesWhatItDoesNotUnderstand)
{
    writeFrames(QStringLiteral("in"), 1);
    const Usage usages[] = {
        {"run",
            "tarn run: error: no graph, expected a file or -e 'text'\n  help: 'tarn run --help' tells "
            "more\n"},
        {"run|missing.tarn", "tarn run: error: missing.tarn: No such file or directory\n"},
        {"run|a|b", "tarn run: error: expected one graph file, found 2\n"},
        {"run|-e|abs|g.tarn",
            "tarn run: error: a graph is given by -e, and there is 'g.tarn' besides\n"
            "  help: quote the whole graph: -e 'files in/*.png ! ...'\n"},
        {"run|--realtime|-e|abs",
            "tarn run: error: unknown option, found '--realtime'\n"
            "  help: known: -e, -D, --limit, --on-error, --stats, --quiet, -q, --verbose, -v, --help, -h\n"},
        {"run|--statz|-e|abs",
            "tarn run: error: unknown option, found '--statz'\n  help: did you mean '--stats'?\n"},
        {"run|-e", "tarn run: error: the option -e needs a value, expected -e TEXT\n"},
        {"run|--limit|0|-e|abs", "tarn run: error: --limit expects a number above 0, found '0'\n"},
        {"run|--limit|many|-e|abs", "tarn run: error: --limit expects a number above 0, found 'many'\n"},
        {"run|--on-error|retry|-e|abs", "tarn run: error: --on-error expects skip or stop, found 'retry'\n"},
        {"run|-D|1=2|-e|abs", "tarn run: error: -D expects KEY=VALUE, found '1=2'\n"},
        {"run|-e|files in ! nosuch",
            "-e:1:12: error: unknown station, expected an identifier or the unique end of one, "
            "found 'nosuch'\n"},
        {"run|-e|files in !",
            "-e:1:10: error: expected a station or a reference after '!', found the end of the text\n"},
        {"run|-e|files in ! d.img1|-e|difference name=d", nullptr},
        {"rum", "tarn: error: unknown command, found 'rum'\n  help: did you mean 'run'?\n"},
        {"list|a|b", "tarn list: error: expected one text to look for, found 2\n"},
        {"inspect", "tarn inspect: error: expected one station, found 0\n  help: 'tarn list' names them\n"},
        {"inspect|ad",
            "tarn inspect: error: unknown station, found 'ad'\n  help: did you mean "
            "'ipp/image/arithmetic/add'?\n"},
    };
    for (const Usage& usage : usages) {
        const Result result = tarn(QString::fromUtf8(usage.words).split(u'|'));
        EXPECT_EQ(result.exit, 2) << usage.words;
        EXPECT_EQ(result.output, QString()) << usage.words;
        if (usage.errors) {
            EXPECT_TRUE(result.errors.startsWith(QString::fromUtf8(usage.errors)))
                << usage.words << "\n"
                << result.errors.toStdString();
        }
    }
}

TEST_F(command, ARequiredInputWithoutASenderIsNamedWithItsPlace)
{
    writeFrames(QStringLiteral("in"), 1);
    write(QStringLiteral("g.tarn"), "files in ! d.img1\n\n  difference name=d ! save o.png\n");
    const Result result = tarn("run g.tarn");
    EXPECT_EQ(result.exit, 2);
    EXPECT_TRUE(result.errors.startsWith(QStringLiteral("g.tarn:3:3: error: d.img2: ")))
        << result.errors.toStdString();
}

TEST_F(command, ACycleIsRefused)
{
    writeFrames(QStringLiteral("in"), 1);
    const Result result = run("files in ! d.img1   d. ! d.img2   difference name=d ! save o.png");
    EXPECT_EQ(result.exit, 2);
    EXPECT_TRUE(result.errors.startsWith(QStringLiteral("-e:1:"))) << result.errors.toStdString();
}

// ---- values ----

TEST_F(command, ReadsValuesFromStandardInput)
{
    writeFrames(QStringLiteral("in"), 1);
    const Result result = tarn({QStringLiteral("run"), QStringLiteral("-e"),
                                   QStringLiteral("values - ! m.value   files in/*.png ! m.img   "
                                                  "subtractConstant name=m ! save out/{stem}.tif")},
        "255\n");
    EXPECT_EQ(result.exit, 0) << result.errors.toStdString();
    EXPECT_TRUE(samePixels(host::readImage(path(QStringLiteral("out/f0.tif"))),
        generateImage(cImgType::UInt8, 12, 8, [](unsigned, unsigned) { return quint8(0); })));
}

TEST_F(command, SaysWhereABadValueStands)
{
    writeFrames(QStringLiteral("in"), 1);
    write(QStringLiteral("gain.jsonl"), "1\n{\"stamp\":1,\"value\":\"x\"}\n");
    const Result result
        = run("values gain.jsonl ! m.value   files in/*.png ! m.img   multiplyConstant name=m ! "
              "save out/{stem}.tif");
    EXPECT_EQ(result.exit, 2);
    EXPECT_EQ(result.errors,
        QStringLiteral("-e:1:8: error: values1.path: gain.jsonl:2:20: expected a number, \"nan\", \"inf\" or "
                       "\"-inf\", found \"x\"\n"));
}

// ---- list and inspect ----

TEST_F(command, ListsStationsWithTheirPurpose)
{
    const Result all = tarn("list");
    EXPECT_EQ(all.exit, 0);
    EXPECT_EQ(all.errors, QString());
    const QStringList lines = all.output.split(u'\n', Qt::SkipEmptyParts);
    EXPECT_GE(lines.size(), 12);
    for (const QString& line : lines)
        EXPECT_TRUE(QRegularExpression(QStringLiteral("^[A-Za-z0-9/]+  +[A-Z].*\\.$")).match(line).hasMatch())
            << line.toStdString();
    const Result some = tarn("list addProd");
    EXPECT_EQ(some.output,
        QStringLiteral(
            "ipp/image/arithmetic/addProduct  Running sum of products of two images, as a Float32 image.\n"));
    EXPECT_EQ(tarn("list nosuchthing").exit, 2);
}

TEST_F(command, InspectsAStation)
{
    const Result result = tarn("inspect arithmetic/subtract");
    EXPECT_EQ(result.exit, 0);
    EXPECT_TRUE(
        result.output.startsWith(QStringLiteral("ipp/image/arithmetic/subtract\n  Difference of two images: "
                                                "img2 - img1.\n\ninputs\n  img1  image: UInt8 of 1 channel")))
        << result.output.toStdString();
    for (const char* part : {"\noutputs\n  img", "\nparameters\n  img1.delay  ", "\nnotes\n  - ",
             "\nexample\n  tarn run -e 'files a/*.png ! x.img1   files b/*.png ! x.img2   subtract name=x ! "
             "save out/{stem}.tif'\n"})
        EXPECT_TRUE(result.output.contains(QString::fromUtf8(part))) << part;
    const Result files = tarn("inspect files");
    EXPECT_TRUE(files.output.contains(QStringLiteral("\n  repeat  uint    1   how many times")))
        << files.output.toStdString();
}

TEST_F(command, EveryStationsExampleIsUnderstood)
{
    writeFrames(QStringLiteral("in"), 2);
    writeFrames(QStringLiteral("a"), 2);
    writeFrames(QStringLiteral("b"), 2);
    writeFrames(QStringLiteral("c"), 2);
    write(QStringLiteral("gain.jsonl"), "2\n1.5\n");
    const QStringList lines = tarn("list").output.split(u'\n', Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        const QString id = line.section(u' ', 0, 0);
        const QString text = tarn({QStringLiteral("inspect"), id}).output;
        const QString example = text.section(QStringLiteral("tarn run -e '"), 1).section(u'\'', 0, 0);
        ASSERT_FALSE(example.isEmpty()) << id.toStdString();
        // Whether these 8-bit pictures suit the station is another matter.
        const Result result = tarn({QStringLiteral("run"), QStringLiteral("-e"), example});
        const bool unsuited = result.exit == 1 ? result.errors.contains(QStringLiteral(" failed"))
                                               : result.exit == 2
                && result.errors.contains(QStringLiteral("does not take the images that reach"));
        EXPECT_TRUE(result.exit == 0 || unsuited) << id.toStdString() << "\n" << result.errors.toStdString();
    }
}

TEST_F(command, HelpAndVersionAreResults)
{
    for (const char* words :
        {"--help", "-h", "help", "run --help", "check --help", "list --help", "inspect -h", "--version"}) {
        const Result result = tarn(words);
        EXPECT_EQ(result.exit, 0) << words;
        EXPECT_FALSE(result.output.isEmpty()) << words;
        EXPECT_EQ(result.errors, QString()) << words;
    }
    QProcess process;
    start(process, {});
    const Result nothing = finish(process);
    EXPECT_EQ(nothing.exit, 2);
    EXPECT_TRUE(nothing.errors.startsWith(QStringLiteral("usage: tarn <command>")));
}

// ---- Ctrl-C ----

class interruption : public command {
protected:
    /** A long run whose frames take their time; returns when the first file is there. */
    void startLongRun(QProcess& io_process, unsigned i_side)
    {
        host::writeImage(path(QStringLiteral("big.tif")), makeRandomImage(cImgType::UInt16, i_side, i_side));
        start(io_process,
            {QStringLiteral("run"), QStringLiteral("-e"),
                QStringLiteral("files big.tif repeat=1000 ! save out/{index}.png name=s")});
        QElapsedTimer timer;
        timer.start();
        while (!QFile::exists(path(QStringLiteral("out/0000.png"))) && timer.elapsed() < 60000)
            io_process.waitForReadyRead(10);
    }
    static void interrupt(const QProcess& i_process) { ::kill(pid_t(i_process.processId()), SIGINT); }
    /** Reads on until a text has come. */
    QString waitForText(QProcess& io_process, const char* i_text)
    {
        QElapsedTimer timer;
        timer.start();
        while (!m_seen.contains(QString::fromUtf8(i_text)) && timer.elapsed() < 60000) {
            io_process.waitForReadyRead(20);
            m_seen += QString::fromUtf8(io_process.readAllStandardError());
        }
        return m_seen;
    }
    QString m_seen;
};

TEST_F(interruption, OnceFinishesWhatIsInFlight)
{
    QProcess process;
    startLongRun(process, 300);
    interrupt(process);
    const Result result = finish(process);
    EXPECT_EQ(result.exit, 130);
    EXPECT_TRUE(result.errors.contains(
        QStringLiteral("interrupted: finishing what is in flight; once more stops at once\n")))
        << result.errors.toStdString();
    const auto counts
        = QRegularExpression(QStringLiteral("(\\d+) of 1000 frames in .*, (\\d+) files written, 0 failed"))
              .match(result.errors);
    ASSERT_TRUE(counts.hasMatch()) << result.errors.toStdString();
    // Every frame that was read has been written, whole.
    EXPECT_EQ(counts.captured(1), counts.captured(2));
    EXPECT_LT(counts.captured(1).toInt(), 1000);
    EXPECT_EQ(filesIn(QStringLiteral("out")).size(), counts.captured(1).toInt());
    for (const QString& file : filesIn(QStringLiteral("out")))
        EXPECT_NO_THROW(host::readImage(path(QStringLiteral("out/") + file))) << file.toStdString();
}

TEST_F(interruption, TwiceDiscardsIt)
{
    QProcess process;
    startLongRun(process, 2500);
    interrupt(process);
    waitForText(process, "interrupted: ");
    interrupt(process);
    QString errors = waitForText(process, "frames in");
    const Result result = finish(process);
    errors += result.errors;
    EXPECT_EQ(result.exit, 130);
    EXPECT_TRUE(errors.contains(QStringLiteral("stopped: what was in flight is discarded\n")))
        << errors.toStdString();
    const auto counts
        = QRegularExpression(QStringLiteral("(\\d+) of 1000 frames in .*, (\\d+) files written"))
              .match(errors);
    ASSERT_TRUE(counts.hasMatch()) << errors.toStdString();
    EXPECT_LT(counts.captured(2).toInt(), counts.captured(1).toInt());
    // No half file stays.
    for (const QString& file : filesIn(QStringLiteral("out")))
        EXPECT_TRUE(file.endsWith(QStringLiteral(".png"))) << file.toStdString();
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(command, StandardErrorHoldsNoNotesOfLibraries)
{
    QProcess process;
    process.start(QStringLiteral(TARN_COMMAND), {QStringLiteral("--version")});
    EXPECT_EQ(finish(process).errors, QString());
}
#endif

} // namespace
