#include <cFileFormat.h>
#include <filePatterns.h>
#include <support/qtPrinters.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

TEST(naturalOrder, CountsRunsOfDigitsAsNumbers)
{
    const char* ordered[] = {"", "a", "a1", "a01", "a1b", "a2", "a02", "a10", "a10b2", "a10b11", "ab", "b",
        "img1.png", "img2.png", "img10.png", "img10x.png", "x99999999999999999998", "x99999999999999999999",
        "x100000000000000000000"};
    for (const char* const& a : ordered)
        for (const char* const& b : ordered)
            EXPECT_EQ(host::naturalLess(QString::fromLatin1(a), QString::fromLatin1(b)), &a < &b)
                << a << " " << b;
}

class filePatterns : public testing::Test {
protected:
    void SetUp() override
    {
        host::registerFileFormats();
        ASSERT_TRUE(m_folder.isValid());
        for (const char* name : {"img10.png", "img2.png", "img1.png", "note.txt", "b.TIF", ".hidden.png",
                 "odd[1].png", "s1/c.png", "s2/c.png", "s10/c.png", "s10/d.jpg"}) {
            const QString path = m_folder.filePath(QString::fromLatin1(name));
            QDir().mkpath(QFileInfo(path).path());
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        }
        QDir().mkpath(m_folder.filePath(QStringLiteral("empty")));
    }
    /** The names that a pattern below the folder gives, without the folder; or the error. */
    QString expand(const char* i_pattern) const
    {
        const QString folder = m_folder.path() + u'/';
        host::cExpansion result
            = host::expandPattern(QString::fromLatin1(i_pattern).replace(QLatin1String("@"), folder));
        QString text = result.error.isEmpty() ? result.files.join(u' ') : result.error;
        return text.replace(folder, QLatin1String("@"));
    }
    QTemporaryDir m_folder;
};

TEST_F(filePatterns, AFolderStandsForTheFilesInItThatCanBeRead)
{
    EXPECT_EQ(expand("@"), QStringLiteral("@b.TIF @img1.png @img2.png @img10.png @odd[1].png"));
    EXPECT_EQ(expand("@s10"), QStringLiteral("@s10/c.png @s10/d.jpg"));
    EXPECT_EQ(expand("@empty"),
        QStringLiteral(
            "no file that can be read in the folder '@empty', expected files with one of the extensions bmp, "
            "jpeg, jpg, npy, pam, pbm, pfm, pgm, png, pnm, ppm, tif, tiff, tis"));
}

TEST_F(filePatterns, WildcardsStandForNamesInEveryPartOfThePath)
{
    EXPECT_EQ(expand("@img*.png"), QStringLiteral("@img1.png @img2.png @img10.png"));
    EXPECT_EQ(expand("@img?.png"), QStringLiteral("@img1.png @img2.png"));
    EXPECT_EQ(expand("@img[1-2]*"), QStringLiteral("@img1.png @img2.png @img10.png"));
    EXPECT_EQ(expand("@s*/c.png"), QStringLiteral("@s1/c.png @s2/c.png @s10/c.png"));
    EXPECT_EQ(expand("@s1*/*.png"), QStringLiteral("@s1/c.png @s10/c.png"));
    EXPECT_EQ(expand("@IMG*.png"), QStringLiteral("no file matches '@IMG*.png'"));
    EXPECT_EQ(expand("@x*/y.png"), QStringLiteral("no file matches '@x*/y.png'"));
}

TEST_F(filePatterns, ANameStandsForItselfWhetherItExistsOrNot)
{
    EXPECT_EQ(expand("@img2.png"), QStringLiteral("@img2.png"));
    EXPECT_EQ(expand("@missing.png"), QStringLiteral("@missing.png"));
    EXPECT_EQ(expand("@odd[1].png"), QStringLiteral("@odd[1].png"));
    EXPECT_EQ(expand("@.hidden.png"), QStringLiteral("@.hidden.png"));
}

TEST_F(filePatterns, SeveralAreSeparatedByCommas)
{
    EXPECT_EQ(expand("@img2.png,@s1,@img1*"), QStringLiteral("@img2.png @s1/c.png @img1.png @img10.png"));
    EXPECT_EQ(expand("@img2.png,@zz*"), QStringLiteral("no file matches '@zz*'"));
    EXPECT_EQ(expand(","), QStringLiteral("no file is named in ','"));
    EXPECT_EQ(expand(""),
        QStringLiteral("no file is named, expected a file, a folder or a pattern such as in/*.png"));
}

TEST(fileList, HasOneNameInALine)
{
    QString text = QStringLiteral("a.png\n\nmy b.png\r\nc.png");
    QTextStream stream(&text);
    EXPECT_EQ(host::readFileList(stream),
        (QStringList {QStringLiteral("a.png"), QStringLiteral("my b.png"), QStringLiteral("c.png")}));
}

} // namespace
