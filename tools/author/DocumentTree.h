// VELL: data-driven hierarchical state machines.
// tools/author/DocumentTree.h: the levels of a document, as a source would nest them.
#pragma once

#include "tools/check/DocumentModel.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace vell::author
{

/// What a node becomes in a source.
enum class Role
{
    Raw, ///< it is copied
    State,
    Enter, ///< the enter node that a level gets
    Exit,  ///< the exit node that a level gets
    Transition,
    Global
};

/// A state of the tree, or the top.
struct Branch
{
    const check::NodeModel* node = nullptr; ///< null at the top
    Branch* parent = nullptr;
    std::string key;  ///< its name in the source
    std::string path; ///< of keys
    std::vector<Branch*> children;
    std::vector<const check::NodeModel*> transitions;
    const check::NodeModel* enter = nullptr; ///< when it is one that the level gets
    const check::NodeModel* exit = nullptr;
};

/// The nodes of a document in their places. The document must outlive this.
class DocumentTree
{
public:
    explicit DocumentTree(const source::Value& root);
    DocumentTree(const DocumentTree&) = delete;
    DocumentTree& operator=(const DocumentTree&) = delete;

    Role RoleOf(const check::NodeModel& node) const;
    /// Gives the place of a state; null for another node.
    const Branch* FindBranch(const check::NodeModel* node) const;
    /// Gives the layer of a node, by a name that no other layer has.
    const std::string& LayerOf(const check::NodeModel& node) const
    {
        return layers[static_cast<std::size_t>(node.array)];
    }

    const check::DocumentModel model;
    Branch top;
    const check::NodeModel* global = nullptr; ///< the node of the interrupts, or null
    std::vector<const check::NodeModel*> interrupts;
    std::vector<std::string> layers; ///< the names, and one for `global` at the end

private:
    static constexpr std::size_t kMostLevels = 400; ///< a source nests no deeper

    void NameLayers();
    void FindGlobal();
    void FindStates();
    bool IsState(const check::NodeModel& node) const;
    bool HasSoundParents(const check::NodeModel& node) const;
    void FindEnds();
    /// Tells whether a node comes before all states of a level that are in its layer, but for
    /// the enter node.
    bool IsFirstIn(const check::NodeModel& level, const check::NodeModel& end) const;
    void FindTransitions();
    void FindTransitionsOf(const check::NodeModel& owner,
                           std::vector<const check::NodeModel*>& list);
    void Grow();
    void NameChildren(Branch& branch);

    std::unordered_map<const check::NodeModel*, Role> roles;
    std::unordered_map<const check::NodeModel*, Branch> branches;
    std::unordered_set<unsigned int> targets; ///< what transitions and nodes lead to
};

} // namespace vell::author
