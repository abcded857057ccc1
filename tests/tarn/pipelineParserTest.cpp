#include <cPipeline.h>

#include <gtest/gtest.h>

namespace {

/** The pipeline in a form that shows every detail: kinds of elements and pieces, in the order of the text. */
QString show(const cWord& i_word)
{
    QStringList pieces;
    for (const cWordPiece& piece : i_word.pieces) {
        const char* format[] = {"%1", "<%1>", "$%1"};
        pieces.append(QString::fromLatin1(format[piece.kind]).arg(piece.text));
    }
    return pieces.join(u'|');
}

QString show(const cElement& i_element)
{
    if (i_element.kind == cElement::Reference)
        return QStringLiteral("@%1:%2").arg(i_element.node, i_element.port);
    QString text = show(i_element.station);
    if (i_element.main)
        text += QStringLiteral("(%1)").arg(show(*i_element.main));
    for (const cArgument& argument : i_element.arguments)
        text += QStringLiteral("[%1=%2]").arg(argument.key, show(argument.value));
    return text;
}

QString show(const cPipeline& i_pipeline)
{
    QStringList parts;
    for (const cPipeline& graph : i_pipeline.graphs)
        parts.append(QStringLiteral("%1{%2}").arg(graph.name, show(graph)));
    for (const cChain& chain : i_pipeline.chains) {
        QStringList elements;
        for (const cElement& element : chain.elements)
            elements.append(show(element));
        parts.append(elements.join(QStringLiteral(" ! ")));
    }
    return parts.join(QStringLiteral(" ; "));
}

cParsedPipeline parse(const char* i_text)
{
    return host::parsePipeline(QString::fromUtf8(i_text), QStringLiteral("g.tarn"));
}

struct Accepted {
    const char* name;
    const char* text;
    const char* shown;
};
void PrintTo(const Accepted& i_row, std::ostream* o_stream) { *o_stream << i_row.text; }

class pipelineParserAccepts : public testing::TestWithParam<Accepted> {};

constexpr Accepted s_accepted[] = {
    {"Nothing", "", ""},
    {"OnlyBlanksAndComments", "  # nothing\n\n\t# here\n", ""},
    {"OneStation", "abs", "abs"},
    {"FullIdentifier", "ipp/image/arithmetic/abs", "ipp/image/arithmetic/abs"},
    {"Chain", "files in/*.png ! abs ! save out/{stem}.png", "files(in/*.png) ! abs ! save(out/{stem}.png)"},
    {"Arguments", "boxFilter maskSize=5,5 name=b", "boxFilter[maskSize=5,5][name=b]"},
    {"MainParameterAndArguments", "files in repeat=3", "files(in)[repeat=3]"},
    {"BranchAfterMainParameter", "files a ! threshold otsu=true ! save o.png   b. ! view",
        "files(a) ! threshold[otsu=true] ! save(o.png) ; @b: ! view"},
    {"BranchAfterAStationWithoutMainParameter", "files a ! view   b. ! view", "files(a) ! view ; @b: ! view"},
    {"BranchFromAPortOfANamedStation", "meanStdDev name=m   m.mean ! print   m.stdDev ! print 'm.txt'",
        "meanStdDev[name=m] ; @m:mean ! print ; @m:stdDev ! print(<m.txt>)"},
    {"FileNamedLikeNoStation", "meanStdDev name=m   m.mean ! print n.txt",
        "meanStdDev[name=m] ; @m:mean ! print(n.txt)"},
    {"JoinByPortName", "a. ! d.img1   b. ! d.img2   difference name=d ! save o.png",
        "@a: ! @d:img1 ; @b: ! @d:img2 ; difference[name=d] ! save(o.png)"},
    {"ReferenceWithPortAfterArguments", "abs name=x b.img ! view", "abs[name=x] ; @b:img ! view"},
    {"FileNameThatLooksLikeAPort", "files in.png ! save out.png", "files(in.png) ! save(out.png)"},
    {"FoldersOfDots", "files . ! save ../o.png", "files(.) ! save(../o.png)"},
    {"PortParameter", "difference img2.delay=1 AutoRange/Use=true",
        "difference[img2.delay=1][AutoRange/Use=true]"},
    {"NodeInASubgraph", "a/b.img ! view", "@a/b:img ! view"},
    {"EmptyValue", "save prefix= name=x", "save[prefix=][name=x]"},
    {"ValueWithASignOfEquality", "save path=a=b", "save[path=a=b]"},
    {"QuotedSignIsNoParameter", "files 'a=b.png'", "files(<a=b.png>)"},
    {"QuotedBlanks", "files \"my files/a b.png\"", "files(<my files/a b.png>)"},
    {"QuotedInPart", "files path=\"my files\"/*.png", "files[path=<my files>|/*.png]"},
    {"Escapes", R"(save "a\"b\\c\$d\ne\tf")", "save(<a\"b\\c$d\ne\tf>)"},
    {"SingleQuotesKeepEverything", R"(save 'a\n"${x}')", "save(<a\\n\"${x}>)"},
    {"EmptyQuotes", "save \"\"", "save(<>)"},
    {"QuotedBangIsAWord", "save '!'", "save(<!>)"},
    {"Variables", "files ${in}/*.png a=${x}", "files($in|/*.png)[a=$x]"},
    {"VariableInQuotes", "files \"${in} x\"", "files(<>|$in|< x>)"},
    {"VariableAsStation", "${op} name=a", "$op[name=a]"},
    {"DollarAlone", "save $x{stem}$", "save($x{stem}$)"},
    {"LinesAreChains", "files a name=a\nfiles b name=b\n", "files(a)[name=a] ; files(b)[name=b]"},
    {"LineEndsWithBang", "files a !\n  abs !\n\n # comment\n save x", "files(a) ! abs ! save(x)"},
    {"LineStartsWithBang", "files a\n  ! abs # halfway\n # comment\n\n  ! save x",
        "files(a) ! abs ! save(x)"},
    {"CommentNeedsABlankBefore", "save colour=#ff0000 # red", "save[colour=#ff0000]"},
    {"CarriageReturns", "files a\r\nsave b\r\n", "files(a) ; save(b)"},
    {"Graph", "graph g { in.a ! abs ! out.b }\nfiles x ! g.a", "g{@in:a ! abs ! @out:b} ; files(x) ! @g:a"},
    {"GraphInAGraph", "graph g {\n graph h {\n abs\n }\n sqr\n}", "g{h{abs} ; sqr}"},
    {"AStationCalledGraph", "graph name=x", "graph[name=x]"},
    {"OtherAlphabets", "files \xc3\xa4/\xe6\x97\xa5.png", "files(\xc3\xa4/\xe6\x97\xa5.png)"},
};

TEST_P(pipelineParserAccepts, TheTextMeansThis)
{
    const cParsedPipeline parsed = parse(GetParam().text);
    for (const cDiagnostic& error : parsed.errors)
        ADD_FAILURE() << error.toString().toStdString();
    EXPECT_EQ(show(parsed.pipeline).toStdString(), GetParam().shown);
}

TEST_P(pipelineParserAccepts, PrintedAndReadAgainItIsTheSame)
{
    const cPipeline first = parse(GetParam().text).pipeline;
    const QString printed = host::printPipeline(first);
    const cParsedPipeline again = host::parsePipeline(printed, QStringLiteral("printed"));
    EXPECT_TRUE(again.errors.isEmpty()) << printed.toStdString();
    EXPECT_EQ(show(again.pipeline).toStdString(), show(first).toStdString());
    EXPECT_EQ(host::printPipeline(again.pipeline), printed);
}

INSTANTIATE_TEST_SUITE_P(Texts, pipelineParserAccepts, testing::ValuesIn(s_accepted),
    [](const auto& i_row) { return i_row.param.name; });

struct Refused {
    const char* name;
    const char* text;
    const char* errors; ///< one line per error, help lines included
};
void PrintTo(const Refused& i_row, std::ostream* o_stream) { *o_stream << i_row.text; }

class pipelineParserRefuses : public testing::TestWithParam<Refused> {};

constexpr Refused s_refused[] = {
    {"BeginsWithBang", "! abs",
        "g.tarn:1:1: error: a chain begins with '!', expected a station or a reference before it"},
    {"EndsWithBang", "files a ! abs !",
        "g.tarn:1:15: error: expected a station or a reference after '!', found the end of the text"},
    {"TwoBangs", "files a !\n ! abs",
        "g.tarn:1:9: error: expected a station or a reference after '!', found '!'"},
    {"BraceAfterBang", "a ! { b",
        "g.tarn:1:3: error: expected a station or a reference after '!', found '{'\n"
        "g.tarn:1:5: error: '{' opens nothing, expected 'graph name {'"},
    {"BangWithoutBlanks", "abs! save x",
        "g.tarn:1:1: error: expected a station, a reference 'name.' or 'name.port', or "
        "'!', found 'abs!'\n  help: put blanks round '!'"},
    {"StrayWord", "files a b.* ! abs",
        "g.tarn:1:9: error: expected a station, a reference 'name.' or 'name.port', or "
        "'!', found 'b.*'"},
    {"ParameterWithoutStation", "files a\n path=x",
        "g.tarn:2:2: error: a parameter needs its station before it on the same line, found 'path=x'"},
    {"ParameterOfAReference", "abs name=a\na. x=1 ! view",
        "g.tarn:2:4: error: a reference takes no parameters, found 'x=1' after 'a.'\n"
        "  help: write the parameter where the station is named"},
    {"ParameterTwice", "abs a=1 b=2 a=3", "g.tarn:1:13: error: abs: 'a' is given twice"},
    {"LoneReference", "abs name=a\n  a.img",
        "g.tarn:2:3: error: 'a.img' stands alone, expected '!' and what it is linked with"},
    {"ReferenceInside", "abs ! a.img ! view",
        "g.tarn:1:7: error: 'a.img' stands inside a chain, a reference begins or ends one\n"
        "  help: end the chain here and begin another with 'a.'"},
    {"OpenDoubleQuotes", "files \"a b\nabs",
        "g.tarn:1:7: error: a text in quotes is not closed, expected \" before the end of the line"},
    {"OpenSingleQuotes", "files 'a b",
        "g.tarn:1:7: error: a text in quotes is not closed, expected ' before the end of "
        "the line"},
    {"BackslashAtTheEnd", "files \"a\\",
        "g.tarn:1:7: error: a text in quotes is not closed, expected \" before the end of the line"},
    {"UnknownEscape", R"(files "a\qb")",
        "g.tarn:1:9: error: unknown escape, expected \\\", \\\\, \\$, \\n or \\t, found \\q\n"
        "  help: write \\\\ for a backslash, or use '...', where nothing is special"},
    {"OpenVariable", "files ${in",
        "g.tarn:1:7: error: bad variable, expected ${name} of letters, digits and '_'\n"
        "  help: write '${' in single quotes if it is meant as it stands"},
    {"NumberAsVariable", "files ${1}x",
        "g.tarn:1:7: error: bad variable, expected ${name} of letters, digits and '_'\n"
        "  help: write '${' in single quotes if it is meant as it stands"},
    {"ControlCharacter", "abs \x01", "g.tarn:1:5: error: a graph is text, found the control character 0x01"},
    {"CloseWithoutOpen", "abs }", "g.tarn:1:5: error: '}' closes nothing, expected 'graph name {' before it"},
    {"GraphNotClosed", "graph g {\nabs",
        "g.tarn:1:7: error: g: the graph is not closed, expected '}' before the end"},
    {"GraphWithABadName", "graph a/b { abs }",
        "g.tarn:1:7: error: a graph's name is of letters, digits, '_' and '-', found 'a/b'"},
    {"ColumnsCountCharacters", "files '\xf0\x9f\x98\x80\xc3\xa4' x=1 x=2",
        "g.tarn:1:16: error: files: 'x' is given twice"},
    {"SeveralErrorsInOrder", "! abs\nx=1\nabs !",
        "g.tarn:1:1: error: a chain begins with '!', expected a station or a reference before it\n"
        "g.tarn:2:1: error: a parameter needs its station before it on the same line, found 'x=1'\n"
        "g.tarn:3:5: error: expected a station or a reference after '!', found the end of the text"},
};

TEST_P(pipelineParserRefuses, WithPlaceTextAndHelp)
{
    QStringList errors;
    for (const cDiagnostic& error : parse(GetParam().text).errors)
        errors.append(error.toString());
    EXPECT_EQ(errors.join(u'\n').toStdString(), GetParam().errors);
}

INSTANTIATE_TEST_SUITE_P(Texts, pipelineParserRefuses, testing::ValuesIn(s_refused),
    [](const auto& i_row) { return i_row.param.name; });

TEST(pipelineParser, KnowsTheColumnOfEveryPart)
{
    const cParsedPipeline parsed = parse("files a ! blur size=\"5\"x name=b ! save o.png\n  b.img ! view");
    const cChain& chain = parsed.pipeline.chains.at(0);
    EXPECT_EQ(chain.elements[1].pos.column, 11);
    EXPECT_EQ(chain.elements[1].arguments[0].pos.column, 16);
    EXPECT_EQ(chain.elements[1].arguments[0].value.pos.column, 21);
    EXPECT_EQ(chain.elements[2].main->pos.column, 40);
    EXPECT_EQ(parsed.pipeline.chains.at(1).elements[0].pos.line, 2);
    EXPECT_EQ(parsed.pipeline.chains.at(1).elements[0].pos.column, 3);
}

TEST(pipelineParser, GraphsNestSixteenDeepAndNoDeeper)
{
    const auto nested = [](int i_depth) {
        QString text;
        for (int i = 0; i < i_depth; ++i)
            text += QStringLiteral("graph g {\n");
        return text + QStringLiteral("abs\n") + QStringLiteral("}\n").repeated(i_depth);
    };
    EXPECT_TRUE(host::parsePipeline(nested(16), QStringLiteral("g")).errors.isEmpty());
    const cParsedPipeline parsed = host::parsePipeline(nested(100000), QStringLiteral("g"));
    ASSERT_FALSE(parsed.errors.isEmpty());
    EXPECT_EQ(parsed.errors.last().toString(),
        QStringLiteral("g:17:7: error: g: graphs are nested deeper than 16"));
}

TEST(pipelineParser, ManyErrorsAreCutToFifty)
{
    EXPECT_EQ(
        host::parsePipeline(QStringLiteral("x=1\n").repeated(1000), QStringLiteral("g")).errors.size(), 50);
}

} // namespace
