// VELL: data-driven hierarchical state machines.
// tools/author/Compile.cpp: the steps from a source to a document.
#include "tools/author/Compile.h"

#include "tools/author/Emit.h"
#include "tools/author/Machine.h"
#include "tools/layout/Layout.h"

#include <algorithm>

namespace vell::author
{
namespace
{

void Sort(Problems& problems)
{
    std::stable_sort(problems.list.begin(), problems.list.end(),
                     [](const check::Finding& left, const check::Finding& right)
                     {
                         return left.file != right.file
                                    ? left.file < right.file
                                    : left.where.begin.offset < right.where.begin.offset;
                     });
}

} // namespace

std::string LaidOut(const Made& document)
{
    return layout::LayOut(source::ReadText(ToJson(document)));
}

Compiled Compile(const std::string& path, const FileReader& reader)
{
    Compiled compiled;
    Machine machine(compiled.files, compiled.problems);
    if (Collect(machine, path, reader))
    {
        Resolve(machine);
        compiled.document = MakeDocument(machine);
    }
    Sort(compiled.problems);
    if (compiled.IsGood())
    {
        GiveMemory(machine, &compiled.document);
        compiled.bytes = LaidOut(compiled.document);
    }
    return compiled;
}

} // namespace vell::author
