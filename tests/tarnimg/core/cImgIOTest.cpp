#include "support/TraceLines.h"
#include "support/images.h"
#include "support/qtPrinters.h"

#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>
#include <tarnimg/cImgIO.h>

namespace {

/** A handler that forwards to the base operations and counts its clones. */
class TestHandler : public cImgIO {
public:
    TestHandler(
        const QString& i_name, const QString& i_filter, QFlags<EFileIOFlag> i_flags, int* io_clones = nullptr)
        : cImgIO(i_name, i_filter, i_flags),
          m_clones(io_clones)
    {
    }
    ~TestHandler() override
    {
        if (m_clones)
            --*m_clones;
    }
    cImgIO* clone() const override
    {
        if (m_clones)
            ++*m_clones;
        return m_refusing ? nullptr : new TestHandler(getName(), getFilter(), getFlags(), m_clones);
    }
    void refuse() { m_refusing = true; }

private:
    int* m_clones;
    bool m_refusing = false;
};

/** Begins without handlers, and forgets those that a test has registered. */
class cImgIOFixture : public ::testing::Test {
protected:
    cImgIOFixture() { cImgIO::getImgIOSet().swap(m_before); }
    ~cImgIOFixture() override
    {
        qDeleteAll(cImgIO::getImgIOSet());
        cImgIO::getImgIOSet().swap(m_before);
    }

    static TestHandler* add(
        const char* i_filter, QFlags<cImgIO::EFileIOFlag> i_flags, int* io_clones = nullptr)
    {
        auto* handler = new TestHandler(
            QStringLiteral("Test"), QString::fromLatin1(i_filter), i_flags, io_clones ? io_clones : nullptr);
        EXPECT_TRUE(cImgIO::registerFileIO(handler));
        return handler;
    }
    QString path(const char* i_name) const { return m_folder.filePath(QString::fromLatin1(i_name)); }

    static constexpr auto s_both = cImgIO::FileIOFlags(cImgIO::Read | cImgIO::Write);

private:
    QTemporaryDir m_folder;
    QSet<cImgIO*> m_before;
};

} // namespace

using cImgIOHandlers = cImgIOFixture;
using cImgIODialog = cImgIOFixture;
using cImgIOFiles = cImgIOFixture;

TEST_F(cImgIOHandlers, AreFoundByTheExtensionAnywhereInTheirFilter)
{
    add("*.png *.tiff", s_both);
    EXPECT_TRUE(cImgIO::findReadHandler(QStringLiteral("a/b.png")));
    EXPECT_TRUE(cImgIO::findReadHandler(QStringLiteral("a/b.PNG")));
    EXPECT_TRUE(cImgIO::findReadHandler(QStringLiteral("a/b.if"))); // within "tiff"
    EXPECT_TRUE(cImgIO::findReadHandler(QStringLiteral("a/b"))); // nothing is within everything
    EXPECT_FALSE(cImgIO::findReadHandler(QStringLiteral("a/b.jpg")));
}

TEST_F(cImgIOHandlers, ExtensionsAreLowerCaseAndFiltersAreNot)
{
    add("*.PNG", s_both);
    EXPECT_FALSE(cImgIO::findReadHandler(QStringLiteral("b.png")));
    EXPECT_FALSE(cImgIO::findReadHandler(QStringLiteral("b.PNG")));
}

TEST_F(cImgIOHandlers, ServeTheirFlagsOnly)
{
    add("*.rrr", cImgIO::Read);
    add("*.www", cImgIO::Write);
    EXPECT_TRUE(cImgIO::findReadHandler(QStringLiteral("x.rrr")));
    EXPECT_FALSE(cImgIO::findSaveHandler(QStringLiteral("x.rrr")));
    EXPECT_FALSE(cImgIO::findReadHandler(QStringLiteral("x.www")));
    EXPECT_TRUE(cImgIO::findSaveHandler(QStringLiteral("x.www")));
}

TEST_F(cImgIOHandlers, AreClonedForEachLookup)
{
    int clones = 0;
    TestHandler* handler = add("*.png", s_both, &clones);
    {
        const auto first = cImgIO::findReadHandler(QStringLiteral("x.png"));
        const auto second = cImgIO::findReadHandler(QStringLiteral("x.png"));
        EXPECT_NE(first.data(), handler);
        EXPECT_NE(first.data(), second.data());
        EXPECT_EQ(clones, 2);
    }
    EXPECT_EQ(clones, 0);
    clones = 1; // for the handler itself
}

TEST_F(cImgIOHandlers, WithoutACloneArePassedOver)
{
    for (int i = 0; i < 30; ++i) // one of them is asked before any other handler
        add("*.png", s_both)->refuse();
    EXPECT_FALSE(cImgIO::findReadHandler(QStringLiteral("x.png")));
    add("*.png", s_both);
    EXPECT_TRUE(cImgIO::findReadHandler(QStringLiteral("x.png")));
    EXPECT_TRUE(cImgIO::registerFileIO(nullptr)); // adds nothing
    EXPECT_EQ(cImgIO::getImgIOSet().size(), 31);
}

TEST_F(cImgIODialog, HasNoEntriesWithoutHandlers)
{
    EXPECT_EQ(cImgIO::getDlgFilterStrings(cImgIO::Write, {}), QString());
    EXPECT_EQ(
        cImgIO::getDlgFilterStrings(cImgIO::Read, {}), QStringLiteral("All known Files ();;All Files (*.*)"));
}

TEST_F(cImgIODialog, ShowsAdditionalEntries)
{
    const QStringList additional(QStringLiteral("*.x;My format"));
    EXPECT_EQ(cImgIO::getDlgFilterStrings(cImgIO::Read, additional),
        QStringLiteral("All known Files (*.x);;My format(*.x);;All Files (*.*)"));
    EXPECT_EQ(cImgIO::getDlgFilterStrings(cImgIO::Write, additional), QStringLiteral("My format(*.x)"));
    EXPECT_EQ(cImgIO::getDlgFilterStrings(cImgIO::Write, QStringList(QStringLiteral("*.x"))),
        QStringLiteral("(*.x)"));
    EXPECT_EQ(cImgIO::getDlgFilterStrings(
                  cImgIO::Write, {QStringLiteral("*.x *.y;Mine;not shown"), QStringLiteral("*.z;Yours")}),
        QStringLiteral("Mine(*.x *.y);;Yours(*.z)"));
}

TEST_F(cImgIODialog, ShowsHandlersWithOneOfTheFlags)
{
    add("*.png", cImgIO::Read);
    EXPECT_EQ(cImgIO::getDlgFilterStrings(cImgIO::Read, QStringList(QStringLiteral("*.x;My format"))),
        QStringLiteral("All known Files (*.png *.x);;Test(*.png);;My format(*.x);;All Files (*.*)"));
    EXPECT_EQ(cImgIO::getDlgFilterStrings(cImgIO::Write, {}), QString());
    EXPECT_EQ(cImgIO::getDlgFilterStrings(s_both, {}),
        QStringLiteral("All known Files (*.png);;Test(*.png);;All Files (*.*)"));
}

TEST_F(cImgIOFiles, ThatCannotBeReadAreReported)
{
    TraceLines trace;
    EXPECT_FALSE(cImg::openImg(path("none.png")).isValid());
    EXPECT_EQ(trace.take(), QStringList(QStringLiteral("could not read: ") + path("none.png")));
    add("*.png", s_both);
    EXPECT_FALSE(cImg::openImg(path("none.png")).isValid());
    EXPECT_EQ(trace.take(), QStringList(QStringLiteral("could not read: ") + path("none.png")));
}

TEST_F(cImgIOFiles, AreNotWrittenWithoutAHandlerInSilence)
{
    TraceLines trace;
    EXPECT_FALSE(makeRandomImage(cImgType::UInt8, 2, 2).writeImg(path("a.png")));
    EXPECT_EQ(trace.take(), QStringList());
}

TEST_F(cImgIOFiles, GiveBackWhatWasWritten)
{
    add("*.png", s_both);
    TraceLines trace;
    for (auto type : {cImgType::UInt8, cImgType::RGB24, cImgType::RGB32}) {
        cImg image = makeRandomImage(type, 9, 4);
        EXPECT_TRUE(image.writeImg(path("a.png")));
        const cImg back = cImg::openImg(path("a.png"));
        if (type == cImgType::UInt8)
            EXPECT_TRUE(samePixels(back, image));
        else
            EXPECT_EQ(back.toQImage().convertToFormat(QImage::Format_ARGB32),
                image.toQImage().convertToFormat(QImage::Format_ARGB32));
    }
    EXPECT_EQ(trace.take(), QStringList());
}

TEST_F(cImgIOFiles, WithoutASuffixAreBmp)
{
    add("*.bmp", s_both);
    EXPECT_TRUE(makeRandomImage(cImgType::RGB24, 3, 3).writeImg(path("picture")));
    EXPECT_EQ(QImageReader::imageFormat(path("picture")), QByteArrayLiteral("bmp"));
}

TEST_F(cImgIOFiles, OfOtherTypesAreNarrowedToAByte)
{
    add("*.png", s_both);
    TraceLines trace;
    cImg image = makeImage<float>(cImgType::Float32, {{-1.0f, 0.0f, 1.0f, 5.0f}});
    EXPECT_TRUE(image.writeImg(path("a.png")));
    EXPECT_EQ(trace.take(),
        QStringList(QStringLiteral("Unsupported image type(Float32). File is converted to 8 bit.")));
    const cImg back = cImg::openImg(path("a.png"));
    EXPECT_TRUE(back.isKindOf(cImgType::UInt8));
    EXPECT_EQ(back.getPixel<quint8>(0, 0), 0);
    EXPECT_NEAR(back.getPixel<quint8>(1, 0), 127.5, 0.5);
    EXPECT_EQ(back.getPixel<quint8>(2, 0), 255);
    EXPECT_EQ(back.getPixel<quint8>(3, 0), 255);
}

TEST_F(cImgIOFiles, TellOfNarrowingOnTheStandardTraceAndOfFailuresOnThatOfErrors)
{
    add("*.png", s_both);
    QStringList channels;
    const int listener = cTracerManager::instance().addListener(
        [&channels](const cTracerManager::Info& info) { channels.append(info.channel); });
    EXPECT_TRUE(makeRandomImage(cImgType::Float32, 2, 2).writeImg(path("a.png")));
    EXPECT_FALSE(cImg::openImg(path("none.png")).isValid());
    cTracerManager::instance().removeListener(listener);
    EXPECT_EQ(channels, QStringList({QStringLiteral("cout"), QStringLiteral("cerr")}));
}

TEST_F(cImgIOFiles, OfInvalidImagesAreReportedAndNotWritten)
{
    add("*.png", s_both);
    TraceLines trace;
    EXPECT_FALSE(cImg().writeImg(path("a.png")));
    EXPECT_EQ(
        trace.take().first(), QStringLiteral("Unsupported image type(UInt8). File is converted to 8 bit."));
    EXPECT_FALSE(QFileInfo::exists(path("a.png")));
    EXPECT_FALSE(makeRandomImage(cImgType::SInt64, 2, 2).writeImg(path("a.png"))); // has no 8-bit form
    EXPECT_FALSE(QFileInfo::exists(path("a.png")));
}

TEST_F(cImgIOFiles, OfUnknownFormatsAreNotWritten)
{
    add("*.unknown", s_both);
    EXPECT_FALSE(makeRandomImage(cImgType::UInt8, 2, 2).writeImg(path("a.unknown")));
}

TEST_F(cImgIOFiles, AreNotReadFromMemoryByTheBase)
{
    TestHandler handler(QStringLiteral("Test"), QStringLiteral("*.png"), s_both);
    EXPECT_FALSE(handler.openImgFromMemory("abc", 3, cMapObj()).isValid());
    EXPECT_EQ(handler.getName(), QStringLiteral("Test"));
    EXPECT_EQ(handler.getFilter(), QStringLiteral("*.png"));
    EXPECT_EQ(handler.getFlags(), s_both);
}
