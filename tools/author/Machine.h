// VELL: data-driven hierarchical state machines.
// tools/author/Machine.h: a machine as its source writes it, with its names resolved.
#pragma once

#include "tools/author/Source.h"
#include "tools/author/SourceTable.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vell::author
{

struct State;

/// An object of the source.
struct Piece
{
    const source::Value* value = nullptr;
    std::size_t file = 0;
    SourceKind kind = SourceKind::State;
};

/// A member of one or several pieces.
struct Found
{
    const source::Member* member = nullptr; ///< null when there is none
    std::size_t file = 0;

    const source::Value* operator->() const
    {
        return &member->value;
    }
    explicit operator bool() const
    {
        return member != nullptr;
    }
    Origin Where() const
    {
        return {file, member->value.span, true};
    }
};

/// Gives a member that has the shape that its rule says; of several pieces that of the first.
Found Find(const Piece& piece, std::string_view name);
Found Find(const std::vector<Piece>& pieces, std::string_view name);
/// Gives the text of a member; empty without one.
std::string TextOf(const Found& found);

/// The members that a node may have whatever its kind, and what stands for it.
struct Node
{
    std::vector<Piece> pieces; ///< none for a node that is made without any
    std::string name;          ///< the default name; `name` of the pieces may say another
    std::string path;          ///< its CRC is the default id
    unsigned int id = 0;
    Origin origin;
};

struct Transition : Node
{
    State* owner = nullptr; ///< null for an interrupt
    State* target = nullptr;
    unsigned int targetId = 0; ///< when the source gives an id
};

struct State : Node
{
    State* parent = nullptr; ///< null at the top
    std::vector<State*> children;
    std::vector<Transition*> transitions;
    std::unordered_map<std::string_view, State*> byName; ///< the children
    bool isLevel = false;                                ///< it has states, or an end node
    bool isDouble = false;                               ///< an earlier one has its name
    std::string layer;
    int builder = 0; ///< number of a standard builder, or of the host's
    std::string builderText;
    State* start = nullptr;
    unsigned int startId = 0;
    bool hasEnter = false;          ///< it gets an enter node
    bool hasExit = false;           ///< it gets an exit node
    State* end = nullptr;           ///< the child that is its exit node, if it gets none
    State* exitConnector = nullptr; ///< null also when the source gives an id
    Node enter;
    Node exit;
};

struct Parameter
{
    std::string name;
    const source::Value* value = nullptr;
    std::size_t file = 0;
    Origin origin;
    int type = 0; ///< 0 when it is not known
    unsigned int id = 0;
};

/// A machine.
struct Machine
{
    std::deque<SourceFile>& files;
    Problems& problems;

    Piece root;
    std::deque<Parameter> parameters;
    std::unordered_map<std::string, Parameter*> parametersByName;
    std::deque<State> states;           ///< in the order of the source
    std::deque<Transition> transitions; ///< in the order of the source
    State top;                          ///< around the states that have no parent
    std::vector<Transition*> interrupts;
    std::vector<Found> rawNodes;       ///< arrays
    std::vector<Found> rawGlobalNodes; ///< arrays
    Node global;
    bool hasGlobal = false;

    Machine(std::deque<SourceFile>& newFiles, Problems& newProblems)
        : files(newFiles), problems(newProblems)
    {
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    const std::string& Bytes(std::size_t file) const
    {
        return files[file].text.bytes;
    }
};

/// Reads the main file and all that it names, and fills `machine` with what they say. `files` gets
/// all of them. False when one of them cannot be read, so that names would be unknown only for
/// that.
bool Collect(Machine& machine, const std::string& path, const FileReader& reader);

/// Finds the states that names mean, and gives each node its id.
void Resolve(Machine& machine);

/// Checks the members of an object by the table, and reports what is wrong.
void CheckMembers(const Machine& machine, const Piece& piece);

} // namespace vell::author
