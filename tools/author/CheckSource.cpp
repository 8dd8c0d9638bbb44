// VELL: data-driven hierarchical state machines.
// tools/author/CheckSource.cpp: from places in a document to those in its source.
#include "tools/author/CheckSource.h"

#include "tools/check/Check.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vell::author
{
namespace
{

using source::Value;

/// A piece of the document, and what it is made from.
struct Piece
{
    std::uint32_t begin;
    std::uint32_t end;
    Origin origin;
};

/// Finds the places of a source for those of its document.
class Positions
{
public:
    Positions(const Made& made, const Value& value)
    {
        Add(made, value);
    }

    /// Gives the origin of the innermost piece around an offset that has one.
    Origin Find(std::uint32_t offset) const
    {
        const auto behind = std::upper_bound(pieces.begin(), pieces.end(), offset,
                                             [](std::uint32_t at, const Piece& piece)
                                             {
                                                 return at < piece.begin;
                                             });
        for (auto piece = behind; piece != pieces.begin();)
        {
            --piece;
            if (offset < piece->end)
            {
                return piece->origin;
            }
        }
        return {};
    }

private:
    /// Both have the same members and elements in the same order.
    void Add(const Made& made, const Value& value)
    {
        if (made.origin.isKnown)
        {
            pieces.push_back({value.span.begin.offset, value.span.end.offset, made.origin});
        }
        for (std::size_t i = 0; i < made.members.size() && i < value.members.size(); ++i)
        {
            const Made& inner = made.members[i].value;
            const source::Member& member = value.members[i];
            if (inner.origin.isKnown)
            {
                const std::uint32_t end = member.nameSpan.end.offset;
                pieces.push_back({member.nameSpan.begin.offset, end, inner.origin});
            }
            Add(inner, member.value);
        }
        for (std::size_t i = 0; i < made.elements.size() && i < value.elements.size(); ++i)
        {
            Add(made.elements[i], value.elements[i]);
        }
    }

    std::vector<Piece> pieces; ///< in the order of their beginnings, an outer one first
};

void MoveToSource(const Compiled& compiled, const Value& root, check::Findings* findings)
{
    const Positions positions(compiled.document, root);
    for (check::Finding& finding : findings->list)
    {
        const Origin where = positions.Find(finding.where.begin.offset);
        finding.where = where.span;
        finding.file = where.file;
        if (finding.hasOther)
        {
            const Origin other = positions.Find(finding.other.begin.offset);
            finding.other = other.span;
            finding.otherFile = other.file;
            // Both places are often made from one.
            finding.hasOther =
                other.isKnown &&
                (other.file != where.file || other.span.begin.offset != where.span.begin.offset);
        }
        finding.fixes.clear();
    }
}

} // namespace

check::CheckedDocument CheckSource(const std::string& path, const Compiled& compiled)
{
    check::CheckedDocument document;
    document.path = path;
    for (std::size_t i = 0; i < compiled.files.size(); ++i)
    {
        const SourceFile& file = compiled.files[i];
        if (i == 0)
        {
            document.text.bytes = file.text.bytes;
        }
        else
        {
            document.parts.push_back({file.path, file.text.bytes});
        }
    }
    if (!compiled.IsGood())
    {
        document.findings.list = compiled.problems.list;
        return document;
    }
    const source::Text text = source::ReadText(compiled.bytes);
    document.findings = check::CheckDocument(text);
    MoveToSource(compiled, text.root, &document.findings);
    return document;
}

} // namespace vell::author
