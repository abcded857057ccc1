#include "cConsole.h"
#include "cGraphInput.h"
#include "cRunner.h"
#include "commands.h"

#include <tarnflow/cGraph.h>
#include <unistd.h>

namespace host {
namespace {

const QString s_name = QStringLiteral("check");

QString usage(const cOptions& i_options)
{
    return QStringLiteral("usage: tarn check [options] FILE\n"
                          "       tarn check [options] -e TEXT\n\n")
        + i_options.usage()
        + QStringLiteral("\nTells what keeps a graph from working, as 'tarn run' would before it starts: "
                         "names, links, parameters,\n"
                         "and the pixel types that the first file leads to. Nothing is run or written.\n\n"
                         "exit codes: 0 the graph can run, 2 bad graph or usage\n");
}

} // namespace

EExit checkCommand(const QStringList& i_words)
{
    cOptions options(cGraphInput::options());
    if (const auto end = readWords(s_name, i_words, options, usage))
        return *end;
    cGraphInput input;
    const QString problem = input.read(options, s_name);
    if (!problem.isEmpty())
        return refuse(s_name, problem);
    cConsole console(stderr, isatty(STDERR_FILENO));
    cGraph graph;
    return input.build(graph, console) ? EExit::Good : EExit::BadUsage;
}

} // namespace host
