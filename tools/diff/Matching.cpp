// VELL: data-driven hierarchical state machines.
// tools/diff/Matching.cpp: three rounds of matching by a key.
#include "tools/diff/Matching.h"

#include <map>
#include <string>

namespace vell::diff
{
namespace
{

/// What a node or a parameter is matched by.
struct Identity
{
    std::string kind;
    std::string name;
    unsigned int id;
};

using Identities = std::vector<Identity>;

std::string KeyOfBoth(const Identity& one)
{
    return one.kind + std::to_string(one.id) + ' ' + one.name;
}

std::string KeyOfName(const Identity& one)
{
    return one.name.empty() ? "" : one.kind + one.name;
}

std::string KeyOfId(const Identity& one)
{
    return one.id == 0 ? "" : one.kind + std::to_string(one.id);
}

using Key = std::string (*)(const Identity& one);
using Groups = std::map<std::string, std::vector<std::size_t>>;

Groups GroupUnmatched(const Identities& all, const std::vector<std::size_t>& partners, Key key)
{
    Groups groups;
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        const std::string text = partners[i] == kUnmatched ? key(all[i]) : "";
        if (!text.empty())
        {
            groups[text].push_back(i);
        }
    }
    return groups;
}

/// Matches what has the same key, in order; with `isUnique` only where each side has one.
void MatchBy(Key key, bool isUnique, const Identities& before, const Identities& after,
             Matching* matching)
{
    const Groups left = GroupUnmatched(before, matching->before, key);
    const Groups right = GroupUnmatched(after, matching->after, key);
    for (const auto& [text, indices] : left)
    {
        const auto found = right.find(text);
        if (found == right.end() ||
            (isUnique && (indices.size() != 1 || found->second.size() != 1)))
        {
            continue;
        }
        for (std::size_t i = 0; i < indices.size() && i < found->second.size(); ++i)
        {
            matching->before[indices[i]] = found->second[i];
            matching->after[found->second[i]] = indices[i];
        }
    }
}

Matching Match(const Identities& before, const Identities& after)
{
    Matching matching;
    matching.before.resize(before.size(), kUnmatched);
    matching.after.resize(after.size(), kUnmatched);
    MatchBy(KeyOfBoth, false, before, after, &matching);
    MatchBy(KeyOfName, true, before, after, &matching);
    MatchBy(KeyOfId, false, before, after, &matching);
    return matching;
}

Identities IdentitiesOfNodes(const DocumentModel& model)
{
    Identities all;
    for (const Node& node : model.nodes)
    {
        all.push_back({node.IsTransition() ? "T" : "S", node.name, node.id});
    }
    return all;
}

Identities IdentitiesOfParameters(const DocumentModel& model)
{
    Identities all;
    for (const Parameter& parameter : model.parameters)
    {
        all.push_back({"P", parameter.name, parameter.id});
    }
    return all;
}

} // namespace

Matching MatchNodes(const DocumentModel& before, const DocumentModel& after)
{
    return Match(IdentitiesOfNodes(before), IdentitiesOfNodes(after));
}

Matching MatchParameters(const DocumentModel& before, const DocumentModel& after)
{
    return Match(IdentitiesOfParameters(before), IdentitiesOfParameters(after));
}

} // namespace vell::diff
