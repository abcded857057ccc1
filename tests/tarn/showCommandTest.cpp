// `tarn show` as its users meet it: the real program, its words, its pictures.

#include <cFileFormat.h>
#include <displaySheet.h>
#include <support/guiApplication.h>
#include <support/images.h>
#include <support/qtPrinters.h>
#include <support/skipUnderTsan.h>

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <limits>

namespace {

struct Result {
    int exit;
    QString output;
    QString errors;
};

class showCommand : public testing::Test {
protected:
    void SetUp() override
    {
        guiApplication();
        host::registerFileFormats();
        ASSERT_TRUE(m_folder.isValid());
    }

    QString path(const char* i_name) const { return m_folder.filePath(QString::fromLatin1(i_name)); }
    void write(const char* i_name, const cImg& i_image) const { host::writeImage(path(i_name), i_image); }
    QImage picture(const char* i_name) const { return QImage(path(i_name)); }

    /** Words without blanks, after "show". */
    Result show(const char* i_words) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        environment.remove(QStringLiteral("DISPLAY"));
        // Under the sanitizers notes of libraries cannot be held back before they are loaded.
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*.debug=false"));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_folder.path());
        process.start(QStringLiteral(TARN_COMMAND),
            QStringList(QStringLiteral("show")) + QString::fromUtf8(i_words).split(u' ', Qt::SkipEmptyParts));
        if (!process.waitForFinished(120000))
            ADD_FAILURE() << "the program does not end";
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
    }
    /** Expects a refusal with these words and nothing else. */
    void expectRefusal(const char* i_words, const char* i_message, int i_exit = 2) const
    {
        const Result result = show(i_words);
        EXPECT_EQ(result.exit, i_exit) << i_words;
        EXPECT_EQ(result.errors, QStringLiteral("tarn show: error: ") + QString::fromUtf8(i_message))
            << i_words;
        EXPECT_EQ(result.output, QString()) << i_words;
    }

    QTemporaryDir m_folder;
};

cImg ramp16() { return makeImage<quint16>(cImgType::UInt16, {{100, 200, 300, 400}}); }

std::vector<int> greysOf(const QImage& i_picture)
{
    std::vector<int> greys;
    for (int y = 0; y < i_picture.height(); ++y)
        for (int x = 0; x < i_picture.width(); ++x)
            greys.push_back(qGray(i_picture.pixel(x, y)));
    return greys;
}

} // namespace

TEST_F(showCommand, DescribesAnImage)
{
    write("a.png", makeRandomImage(cImgType::RGB24, 7, 5));
    const Result result = show("a.png");
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.errors, QString());
    EXPECT_EQ(result.output,
        QStringLiteral("a.png: RGB24, 3 channels, 7x5, range 0 to 255\n"
                       "styles: Default, Red, Green, Blue, Intensity, Hue, Value, Saturation\n"));
}

TEST_F(showCommand, WritesThePictureOfTheRange)
{
    write("a.png", ramp16());
    EXPECT_EQ(show("a.png -o out.png --range 100,400").exit, 0);
    EXPECT_EQ(greysOf(picture("out.png")), std::vector<int>({0, 85, 170, 255}));
    EXPECT_EQ(show("a.png -o out.png --range 200,300").exit, 0);
    EXPECT_EQ(greysOf(picture("out.png")), std::vector<int>({0, 0, 255, 255}));
}

TEST_F(showCommand, GammaSpreadsDarkValues)
{
    write("a.png", makeImage<quint8>(cImgType::UInt8, {{0, 64, 255}}));
    EXPECT_EQ(show("a.png -o out.png --gamma 2").exit, 0);
    EXPECT_EQ(greysOf(picture("out.png")), std::vector<int>({0, 128, 255}));
}

TEST_F(showCommand, AStyleIsOneComponentInItsColour)
{
    write("a.png", makeImage<quint8>(cImgType::RGB24, {{10, 20, 30, 40, 50, 60}}));
    EXPECT_EQ(show("a.png -o out.png --style Green").exit, 0);
    EXPECT_EQ(picture("out.png").pixel(0, 0), qRgb(0, 20, 0));
    EXPECT_EQ(picture("out.png").pixel(1, 0), qRgb(0, 50, 0));
}

TEST_F(showCommand, AnyPixelTypeBecomesAPicture)
{
    for (const auto type :
        {cImgType::RGB24, cImgType::RGB32, cImgType::UInt8, cImgType::UInt16, cImgType::UInt32,
            cImgType::SInt8, cImgType::SInt16, cImgType::SInt32, cImgType::SInt64, cImgType::Float32,
            cImgType::Float64, cImgType::Gradient16, cImgType::Gradient32, cImgType::Complex}) {
        cImg image = makeRandomImage(type, 9, 6);
        write("a.tif", image);
        ASSERT_EQ(show("a.tif -o out.png").exit, 0) << type;
        cImg read = host::readImage(path("a.tif"));
        const QImage expected = read.imgType().makeDisplayImage(read).convertToFormat(QImage::Format_ARGB32);
        EXPECT_EQ(picture("out.png").convertToFormat(QImage::Format_ARGB32), expected) << type;
    }
}

TEST_F(showCommand, PrintsPixelsByTheStyle)
{
    write("a.png", makeImage<quint8>(cImgType::RGB24, {{10, 20, 30, 255, 0, 0}}));
    EXPECT_EQ(
        show("a.png --at 0,0 --at 1,0").output, QStringLiteral("0,0: r:10 g:20 b:30\n1,0: r:255 g:0 b:0\n"));
    EXPECT_EQ(show("a.png --at 1,0 --style Hue").output, QStringLiteral("1,0: h:0 s:255 v:255\n"));
}

TEST_F(showCommand, PrintsPixelsBesideThePicture)
{
    write("a.png", ramp16());
    const Result result = show("a.png --at 2,0 -o out.png");
    EXPECT_EQ(result.output, QStringLiteral("2,0: 300\n"));
    EXPECT_FALSE(picture("out.png").isNull());
}

TEST_F(showCommand, AutomaticRanges)
{
    write("a.png", ramp16());
    EXPECT_EQ(show("a.png -o out.png --auto").exit, 0);
    EXPECT_EQ(greysOf(picture("out.png")), std::vector<int>({0, 85, 170, 255}));
    // A hundred values without the tenth at either end.
    cImg many(cImgType::UInt16, 100, 1);
    for (unsigned x = 0; x < 100; ++x)
        many.setPixel<quint16>(x, 0, quint16(1000 + x));
    write("b.png", many);
    EXPECT_EQ(show("b.png -o out.png --quantile 0.1").exit, 0);
    const std::vector<int> greys = greysOf(picture("out.png"));
    EXPECT_EQ(greys[10], 0);
    EXPECT_GT(greys[12], 0);
    EXPECT_LT(greys[88], 255);
    EXPECT_EQ(greys[91], 255);
}

TEST_F(showCommand, AutomaticRangesOfTypesWhoseDescriptorFindsNone)
{
    write("a.tif", makeImage<quint32>(cImgType::UInt32, {{4000000000u, 4000000085u, 4000000255u}}));
    EXPECT_EQ(show("a.tif -o out.png --auto").exit, 0);
    EXPECT_EQ(greysOf(picture("out.png")), std::vector<int>({0, 85, 255}));
    write("b.tif", makeImage<qint8>(cImgType::SInt8, {{-50, 0, 1}}));
    EXPECT_EQ(show("b.tif -o out.png --auto").exit, 0);
    EXPECT_EQ(greysOf(picture("out.png")), std::vector<int>({0, 250, 255}));
    // A depth far from 0, and what is no number.
    write("c.tif",
        makeImage<float>(cImgType::Float32,
            {{1000.f, 1001.f, 1002.f, 1003.f, 1004.f, 1005.f, 9999.f, -9999.f,
                std::numeric_limits<float>::quiet_NaN()}}));
    EXPECT_EQ(show("c.tif -o out.png --quantile 0.125").exit, 0);
    const std::vector<int> greys = greysOf(picture("out.png"));
    EXPECT_EQ(greys[0], 0);
    EXPECT_EQ(greys[1], 51);
    EXPECT_EQ(greys[5], 255);
    EXPECT_EQ(greys[6], 255);
    EXPECT_EQ(greys[7], 0);
}

TEST_F(showCommand, AnAutomaticRangeIsThatOfAllChannelsButAlpha)
{
    write("a.png", makeImage<quint8>(cImgType::RGB24, {{100, 100, 50, 100, 150, 100}}));
    EXPECT_EQ(show("a.png -o out.png --auto").exit, 0);
    EXPECT_EQ(show("a.png -o range.png --range 50,150").exit, 0);
    EXPECT_EQ(picture("out.png"), picture("range.png"));
    write("b.png", makeImage<quint8>(cImgType::RGB32, {{100, 100, 50, 255, 100, 150, 100, 0}}));
    EXPECT_EQ(show("b.png -o out.png --auto").exit, 0);
    EXPECT_EQ(show("b.png -o range.png --range 50,150").exit, 0);
    EXPECT_EQ(picture("out.png"), picture("range.png"));
    cImg channels(cImgType::UInt16, 2, 1, 2);
    auto* values = reinterpret_cast<quint16*>(channels.getData());
    for (const int value : {500, 400, 500, 655})
        *values++ = quint16(value);
    write("c.tif", channels);
    EXPECT_EQ(show("c.tif -o out.png --auto").exit, 0);
    EXPECT_EQ(
        greysOf(picture("out.png")), std::vector<int>({100, 100})); // the first channel, from 400 to 655
}

TEST_F(showCommand, RefusesWhatItCannotDo)
{
    write("a.png", ramp16());
    write("rgb.png", makeRandomImage(cImgType::RGB24, 4, 4));
    write("z.tif", makeRandomImage(cImgType::Complex, 4, 4));
    expectRefusal("", "expected one image, found 0\n  help: 'tarn show --help' tells more\n");
    expectRefusal("a.png b.png", "expected one image, found 2\n  help: 'tarn show --help' tells more\n");
    expectRefusal("rgb.png --style red",
        "unknown style of RGB24, found 'red'\n"
        "  help: expected one of: Default, Red, Green, Blue, Intensity, Hue, Value, Saturation\n");
    expectRefusal("a.png --range 5", "--range expects LOW,HIGH with LOW below HIGH, found '5'\n");
    expectRefusal("a.png --range 5,5", "--range expects LOW,HIGH with LOW below HIGH, found '5,5'\n");
    expectRefusal(
        "a.png --range 0,70000", "--range of UInt16: expected values from 0 to 65535, found '0,70000'\n");
    expectRefusal("z.tif --range 0,1",
        "Complex images have no range\n  help: leave --range out: values are stretched anyway\n");
    expectRefusal("z.tif --auto", "Complex images have no automatic range\n  help: leave --auto out\n");
    cImg nothing(cImgType::Float32, 2, 1);
    nothing.setPixel<float>(0, 0, std::numeric_limits<float>::quiet_NaN());
    nothing.setPixel<float>(1, 0, std::numeric_limits<float>::infinity());
    write("n.tif", nothing);
    expectRefusal(
        "n.tif --auto", "no value of the image is finite\n  help: give the range by --range LOW,HIGH\n");
    expectRefusal("a.png --quantile 0.5", "--quantile expects a number from 0 to below 0.5, found '0.5'\n");
    expectRefusal("a.png --gamma 0", "--gamma expects a number above 0, at most 100, found '0'\n");
    expectRefusal("a.png --gamma 2 --auto",
        "--gamma has no effect on an automatic range\n  help: give the range by --range LOW,HIGH\n");
    expectRefusal("a.png --auto --range 0,1",
        "--range sets the range, and --auto finds it\n  help: leave one of them out\n");
    expectRefusal("a.png --at 1", "--at expects X,Y, found '1'\n");
    expectRefusal("a.png --at 4,0", "--at: there is no such pixel, expected 0,0 to 3,0, found '4,0'\n");
    expectRefusal("a.png --at -1,0", "--at: there is no such pixel, expected 0,0 to 3,0, found '-1,0'\n");
    expectRefusal(
        "a.png -o a.png", "the picture would be written over the image 'a.png'\n  help: name another file\n");
    expectRefusal("a.png --sheet out.png", "--sheet draws its own images, and there is 'a.png' besides\n");
    expectRefusal("--sheet out.png --auto", "--sheet draws its own images, and there is --auto besides\n");
}

TEST_F(showCommand, RefusesAPictureOfAnUnknownFormat)
{
    write("a.png", ramp16());
    const Result result = show("a.png -o out.xyz");
    EXPECT_EQ(result.exit, 2);
    EXPECT_TRUE(result.errors.startsWith(QStringLiteral(
        "tarn show: error: unknown format of the picture 'out.xyz'\n  help: known extensions: ")))
        << qUtf8Printable(result.errors);
}

TEST_F(showCommand, AnImageThatCannotBeReadIsAFailureAndNoMisuse)
{
    const Result result = show("missing.png -o out.png");
    EXPECT_EQ(result.exit, 1);
    EXPECT_TRUE(result.errors.startsWith(QStringLiteral("tarn show: error: missing.png: ")))
        << qUtf8Printable(result.errors);
    EXPECT_FALSE(QFile::exists(path("out.png")));
}

TEST_F(showCommand, TheSheetHasEveryTypeAndNeedsNoScreen)
{
    SKIP_WITHOUT_SIGHT_OF_QTS_THREADS();
    const Result result = show("--sheet sheet.png");
    EXPECT_EQ(result.exit, 0) << qUtf8Printable(result.errors);
    const QImage sheet = picture("sheet.png");
    EXPECT_EQ(sheet.size(), host::drawDisplaySheet().size());
    EXPECT_GT(sheet.height(), 14 * 80);
    EXPECT_LT(QFile(path("sheet.png")).size(), 1 << 20);
}

TEST_F(showCommand, HelpNamesEveryOption)
{
    const Result result = show("--help");
    EXPECT_EQ(result.exit, 0);
    for (const char* option :
        {"--output", "--style", "--range", "--auto", "--quantile", "--gamma", "--at", "--sheet"})
        EXPECT_TRUE(result.output.contains(QString::fromLatin1(option))) << option;
}
