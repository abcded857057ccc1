// What the host writes and reads besides the graph: options, progress, the table of fates, suggestions.

#include <cConsole.h>
#include <cDiagnostic.h>
#include <cOptions.h>
#include <cProgress.h>
#include <fateTable.h>
#include <support/qtPrinters.h>

#include <gtest/gtest.h>

namespace {

cOptions makeOptions()
{
    return cOptions({{QStringLiteral("-e"), QStringLiteral("TEXT"), QStringLiteral("the graph")},
        {QStringLiteral("--limit"), QStringLiteral("N"), QStringLiteral("the most frames")},
        {QStringLiteral("--quiet"), QString(), QStringLiteral("silence"), QStringLiteral("-q")}});
}

TEST(cOptions, SortsWordsIntoOptionsAndTheRest)
{
    cOptions options = makeOptions();
    EXPECT_EQ(options.parse({QStringLiteral("a"), QStringLiteral("-e"), QStringLiteral("x"),
                  QStringLiteral("-ey"), QStringLiteral("--limit=3"), QStringLiteral("-q"),
                  QStringLiteral("-"), QStringLiteral("--"), QStringLiteral("-z")}),
        QString());
    EXPECT_EQ(options.getAll(QStringLiteral("-e")), (QStringList {QStringLiteral("x"), QStringLiteral("y")}));
    EXPECT_EQ(options.get(QStringLiteral("--limit")), QStringLiteral("3"));
    EXPECT_TRUE(options.has(QStringLiteral("--quiet")));
    EXPECT_EQ(
        options.getRest(), (QStringList {QStringLiteral("a"), QStringLiteral("-"), QStringLiteral("-z")}));
}

TEST(cOptions, RefusesWhatIsNotDeclared)
{
    EXPECT_EQ(makeOptions().parse({QStringLiteral("--limt"), QStringLiteral("3")}),
        QStringLiteral("unknown option, found '--limt'\ndid you mean '--limit'?"));
    EXPECT_EQ(makeOptions().parse({QStringLiteral("--realtime")}),
        QStringLiteral("unknown option, found '--realtime'\nknown: -e, --limit, --quiet, -q, --help, -h"));
    EXPECT_EQ(makeOptions().parse({QStringLiteral("--limit")}),
        QStringLiteral("the option --limit needs a value, expected --limit N"));
    EXPECT_EQ(makeOptions().parse({QStringLiteral("--quiet=yes")}),
        QStringLiteral("the option --quiet takes no value, found '--quiet=yes'"));
}

TEST(cOptions, DescribesThemAndHelp)
{
    EXPECT_EQ(makeOptions().usage(),
        QStringLiteral("  -e TEXT      the graph\n"
                       "  --limit N    the most frames\n"
                       "  -q, --quiet  silence\n"
                       "  -h, --help   this text\n"));
}

TEST(cProgress, TellsRateAndTimeLeft)
{
    EXPECT_EQ(cProgress::format(0, 0, 10, 0), QStringLiteral("0/10 frames"));
    EXPECT_EQ(cProgress::format(2000, 4, 10, 0), QStringLiteral("4/10 frames, 2.0/s, 3 s left"));
    EXPECT_EQ(
        cProgress::format(1000, 1, 100, 2), QStringLiteral("1/100 frames, 1.0/s, 1 min 39 s left, 2 failed"));
    EXPECT_EQ(cProgress::format(1000, 1, 10000, 0), QStringLiteral("1/10000 frames, 1.0/s, 2 h 46 min left"));
    EXPECT_EQ(cProgress::format(1000, 10, 10, 0), QStringLiteral("10/10 frames, 10.0/s"));
}

/** What a console has written. */
class cConsoleOutput {
public:
    cConsoleOutput() : m_file(std::tmpfile()) {}
    ~cConsoleOutput() { std::fclose(m_file); }
    std::FILE* file() { return m_file; }
    std::string text()
    {
        std::string all(std::size_t(std::ftell(m_file)), '\0');
        std::rewind(m_file);
        EXPECT_EQ(std::fread(all.data(), 1, all.size(), m_file), all.size());
        return all;
    }

private:
    std::FILE* m_file;
};

TEST(cProgress, IsDrawnOverOnATerminal)
{
    cConsoleOutput output;
    cConsole console(output.file(), true);
    cProgress progress(console);
    progress.update(50, 1, 4, 0); // too early
    progress.update(100, 1, 4, 0);
    console.writeLine(QStringLiteral("a line"));
    progress.finish();
    EXPECT_EQ(output.text(),
        "\r\033[K1/4 frames, 10.0/s, 1 s left"
        "\r\033[Ka line\n1/4 frames, 10.0/s, 1 s left"
        "\r\033[K");
}

TEST(cProgress, IsALinePerIntervalElsewhere)
{
    cConsoleOutput output;
    cConsole console(output.file(), false);
    cProgress progress(console);
    progress.update(9999, 1, 4, 0);
    progress.update(10000, 2, 4, 0);
    progress.update(15000, 3, 4, 0);
    progress.update(20000, 4, 4, 0);
    progress.finish();
    EXPECT_EQ(output.text(), "2/4 frames, 0.2/s, 10 s left\n4/4 frames, 0.2/s\n");
}

TEST(fateTable, HasTheColumnsInWhichSomethingHappened)
{
    cFates good;
    good.arrived = good.used = 12;
    cFates bad;
    bad.arrived = 12;
    bad.used = 9;
    bad.refused = 2;
    bad.waiting = 1;
    cFates sent;
    sent.arrived = 100;
    QList<cPortFates> fates {{QStringLiteral("add0"), QStringLiteral("img1"), false, good},
        {QStringLiteral("add0"), QStringLiteral("img2"), false, bad},
        {QStringLiteral("a"), QStringLiteral("img"), true, sent}};
    EXPECT_TRUE(host::isAnyUnused(fates));
    EXPECT_EQ(host::fateTable(fates, true),
        QStringLiteral("port       arrived     used  refused  waiting\n"
                       "add0.img1       12       12        0        0\n"
                       "add0.img2       12        9        2        1"));
    EXPECT_EQ(host::fateTable(fates, false),
        QStringLiteral("port       arrived     used  refused  waiting\n"
                       "add0.img2       12        9        2        1"));
    fates.removeAt(1);
    EXPECT_FALSE(host::isAnyUnused(fates));
    fates[1].fates.lost = 1;
    EXPECT_TRUE(host::isAnyUnused(fates));
    EXPECT_EQ(host::fateTable(fates, true),
        QStringLiteral("port            arrived     used     lost\n"
                       "add0.img1            12       12        0\n"
                       "a.img (output)      100        -        1"));
}

TEST(suggestions, NameWhatIsNear)
{
    const QStringList names {QStringLiteral("ipp/image/arithmetic/add"),
        QStringLiteral("ipp/image/arithmetic/abs"), QStringLiteral("host/files")};
    EXPECT_EQ(host::nearest(QStringLiteral("fiels"), names), QStringLiteral("host/files"));
    EXPECT_EQ(host::nearest(QStringLiteral("FILES"), names), QStringLiteral("host/files"));
    EXPECT_EQ(host::nearest(QStringLiteral("ad"), names), QStringLiteral("ipp/image/arithmetic/add"));
    EXPECT_EQ(host::nearest(QStringLiteral("zzzzzz"), names), QString());
    EXPECT_EQ(host::nearest(QString(100000, u'a'), names), QString());
    EXPECT_EQ(host::suggest(QStringLiteral("zzzzzz"), {QStringLiteral("a1"), QStringLiteral("b1")}),
        QStringLiteral("known: a1, b1"));
    EXPECT_EQ(host::suggest(QStringLiteral("x"), {}), QString());
}

} // namespace
