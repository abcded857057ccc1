#include <cFileFormat.h>
#include <cPipelineBuilder.h>
#include <hostStations.h>
#include <support/guiApplication.h>
#include <support/qtPrinters.h>

#include <gtest/gtest.h>
#include <tarnflow/cGraph.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

namespace {

/** A graph built from a text, with the variables x and op. "@" in the texts is a file that nobody reads. */
class cBuilt {
public:
    explicit cBuilt(const char* i_text)
    {
        guiApplication();
        host::registerFileFormats();
        host::registerStations();
        const cParsedPipeline parsed = host::parsePipeline(QString::fromUtf8(i_text), QStringLiteral("g"));
        for (const cDiagnostic& error : parsed.errors)
            ADD_FAILURE() << error.toString().toStdString();
        cPipelineBuilder builder(graph,
            {{QStringLiteral("x"), QStringLiteral("2")}, {QStringLiteral("op"), QStringLiteral("add")}});
        good = builder.build(parsed.pipeline);
        QStringList lines;
        for (const cDiagnostic& error : builder.getErrors())
            lines.append(error.toString());
        errors = lines.join(u'\n');
    }

    /** The links as "from.port > to.port", sorted, with the names of stations that have none of their own as
     * they are. */
    QStringList links(const cGraph* i_graph = nullptr) const
    {
        QStringList result;
        for (const cGraph::cLink& link : (i_graph ? i_graph : &graph)->getLinks())
            result.append(link.from->getPortPath() + QStringLiteral(" > ") + link.to->getPortPath());
        result.sort();
        return result;
    }

    cGraph graph;
    bool good = false;
    QString errors;
};

TEST(cPipelineBuilder, LinksAChainThroughTheOnlyPorts)
{
    const cBuilt built("files @ name=a ! abs name=b ! save o.png name=c");
    EXPECT_TRUE(built.good) << built.errors.toStdString();
    EXPECT_EQ(
        built.links(), (QStringList {QStringLiteral("a.img > b.img"), QStringLiteral("b.img > c.img")}));
    EXPECT_EQ(built.graph.getParam(QStringLiteral("c.path")), QStringLiteral("o.png"));
}

TEST(cPipelineBuilder, ReferencesLookAheadAndTakeTheFirstFreePort)
{
    const cBuilt built("files @ name=a ! d.   files @ name=b ! d.   difference name=d ! save o.png name=s");
    EXPECT_TRUE(built.good) << built.errors.toStdString();
    EXPECT_EQ(built.links(),
        (QStringList {QStringLiteral("a.img > d.img1"), QStringLiteral("b.img > d.img2"),
            QStringLiteral("d.img > s.img")}));
}

TEST(cPipelineBuilder, ReferencesNamePorts)
{
    const cBuilt built("files @ name=a ! d.img2\nfiles @ name=b\nb.img ! d.img1\ndifference name=d "
                       "img2.delay=${x}\nd. ! save o.png name=s");
    EXPECT_TRUE(built.good) << built.errors.toStdString();
    EXPECT_EQ(built.links(),
        (QStringList {QStringLiteral("a.img > d.img2"), QStringLiteral("b.img > d.img1"),
            QStringLiteral("d.img > s.img")}));
    EXPECT_EQ(built.graph.getParam(QStringLiteral("d.img2.delay")), QStringLiteral("2"));
}

TEST(cPipelineBuilder, PutsVariablesIntoStationsNamesAndValues)
{
    const cBuilt built(
        "files @ name=f ! n2.img1   f. ! n2.img2   ${op} name=n${x} ! save \"o${x}.png\" name=s");
    EXPECT_TRUE(built.good) << built.errors.toStdString();
    EXPECT_EQ(built.links(),
        (QStringList {QStringLiteral("f.img > n2.img1"), QStringLiteral("f.img > n2.img2"),
            QStringLiteral("n2.img > s.img")}));
    EXPECT_EQ(built.graph.getParam(QStringLiteral("s.path")), QStringLiteral("o2.png"));
    // A reference is read before values are known.
    EXPECT_EQ(cBuilt("files @ ! n${x}.").errors,
        QStringLiteral("g:1:11: error: unknown station, expected an identifier or the unique end of one, "
                       "found 'n2.'\n  help: ")
            + host::suggest(QStringLiteral("n2."), cStation::getIdentifiers()));
}

TEST(cPipelineBuilder, AStationIsNamedByAnyUniqueEndOfItsIdentifier)
{
    for (const char* text :
        {"abs name=s", "arithmetic/abs name=s", "ipp/image/arithmetic/abs name=s", "${op} name=s"}) {
        const cBuilt built(text);
        ASSERT_TRUE(built.graph.findNode(QStringLiteral("s"))) << text;
    }
}

TEST(cPipelineBuilder, SubgraphsHavePortsOfTheirOwn)
{
    const cBuilt built(
        "graph edge {\n  in.picture ! d.img1\n  in.other ! d.img2\n  difference name=d ! out.result\n}\n"
        "files @ name=a ! edge.picture\nfiles @ name=b ! edge.other\nedge. ! save o.png name=s");
    EXPECT_TRUE(built.good) << built.errors.toStdString();
    EXPECT_EQ(built.links(),
        (QStringList {QStringLiteral("a.img > edge.picture"), QStringLiteral("b.img > edge.other"),
            QStringLiteral("edge.result > s.img")}));
}

struct Refused {
    const char* name;
    const char* text;
    const char* errors;
};
void PrintTo(const Refused& i_row, std::ostream* o_stream) { *o_stream << i_row.text; }

class cPipelineBuilderRefuses : public testing::TestWithParam<Refused> {};

constexpr Refused s_refused[] = {
    {"Nothing", "# nothing", "g:1:1: error: the graph is empty, expected at least one station"},
    {"UnknownStation", "files @ ! abss ! save o.png",
        "g:1:11: error: unknown station, expected an identifier or the unique end of one, found 'abss'\n"
        "  help: did you mean 'ipp/image/arithmetic/abs'?"},
    {"UnknownParameter", "files @ repaet=2 ! save o.png",
        "g:1:9: error: files1: unknown parameter, found 'repaet'\n  help: did you mean 'repeat'?"},
    {"ValueOfTheWrongType", "files @ name=f repeat=often ! save o.png",
        "g:1:16: error: f.repeat: expected an integer from 0 to 4294967295, found \"often\""},
    {"NoMainParameter", "files @ ! abs x ! save o.png",
        "g:1:15: error: abs1: the station has no main parameter, expected '!' or key=value, found 'x'\n"
        "  help: begin another chain on a line of its own"},
    {"UnknownReference", "files @ name=frames ! save o.png\nframs. ! save p.png",
        "g:2:1: error: unknown station, found 'frams.'\n  help: did you mean 'frames'?"},
    {"UnknownPort", "files @ ! d.img3\ndifference name=d",
        "g:1:11: error: d: unknown port, found 'img3'\n  help: did you mean 'img1'?"},
    {"UnknownVariable", "files ${xx} ! save o.png",
        "g:1:7: error: the variable ${xx} has no value\n  help: did you mean 'x'?"},
    {"VariableWithoutANeighbour", "files ${somewhere} ! save o.png",
        "g:1:7: error: the variable ${somewhere} has no value\n  help: give it one with -D somewhere=..."},
    {"EmptyName", "abs name=\"\"",
        "g:1:5: error: a station's name is empty, expected letters, digits, '_' and '-'"},
    {"SeveralAtOnce", "files @ foo=1 ! abss ! save o.png\nb. ! abs",
        "g:1:9: error: files1: unknown parameter, found 'foo'\n  help: known: path, repeat, limit\n"
        "g:1:17: error: unknown station, expected an identifier or the unique end of one, found 'abss'\n"
        "  help: did you mean 'ipp/image/arithmetic/abs'?\n"
        "g:2:1: error: unknown station, found 'b.'\n  help: known: files1, save1, abs1"},
    {"PatternWithoutFiles", "files nowhere/*.png name=f ! save o{index}.png",
        "g:1:7: error: f.path: no file matches 'nowhere/*.png'"},
    {"SinkWithoutAPath", "files @ ! save name=s",
        "g:1:11: error: s.path: no file is named, expected a path such as out/{stem}.png"},
    {"UnknownPlaceholder", "files @ ! save o/{name}.png name=s",
        "g:1:16: error: s.path: unknown placeholder, expected {stem}, {index}, {stamp} or {port}, found "
        "{name}"},
    {"UnknownFormat", "files @ ! save o.gif name=s",
        "g:1:16: error: s.path: unknown file format, expected one of the extensions bmp, jpeg, jpg, npy, "
        "pam, pfm, pgm, png, pnm, ppm, tif, tiff, tis, found '.gif'"},
    {"ManyFramesForOneFile", "files @ repeat=3 ! save o.png name=s",
        "g:1:25: error: s.path: 3 frames would write the one file 'o.png'\n"
        "  help: put {stem} or {index} into the name"},
    {"ReservedName", "graph g { abs name=in }",
        "g:1:15: error: 'in' stands for a graph's own ports and names nothing else"},
    {"BoundaryTheWrongWay", "graph g { abs name=x\n out.a ! x. }",
        "g:2:10: error: a chain begins with 'in.' and ends with 'out.', found the reverse, or both at once"},
    {"InIsNothingOutside", "in.a ! abs", "g:1:1: error: unknown station, found 'in.'\n  help: known: abs1"},
};

TEST_P(cPipelineBuilderRefuses, WithPlaceTextAndHelp)
{
    const cBuilt built(GetParam().text);
    EXPECT_FALSE(built.good);
    EXPECT_EQ(built.errors.toStdString(), GetParam().errors);
}

INSTANTIATE_TEST_SUITE_P(Texts, cPipelineBuilderRefuses, testing::ValuesIn(s_refused),
    [](const auto& i_row) { return i_row.param.name; });

} // namespace
