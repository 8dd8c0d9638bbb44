// VELL: data-driven hierarchical state machines.
// tools/author/Collect.cpp: reading the files of a source, and the states and parameters in them.
#include <durm/DURMBaseLib.h>

#include "tools/author/Machine.h"
#include "tools/check/Check.h"
#include "tools/check/DocumentModel.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace vell::author
{
namespace
{

using namespace DURMBaseLib;
using source::Member;
using source::Value;

namespace fs = std::filesystem;

constexpr const char* kTypeWords[] = {"bool",   "integer", "float",  "float2",
                                      "float3", "float4",  "message"};

/// The path of a file that `from` names, as `base` sees it.
std::string PathFrom(const std::string& base, const std::string& name)
{
    const fs::path path = fs::u8path(base).parent_path() / fs::u8path(name);
    return path.lexically_normal().generic_u8string();
}

class Collector
{
public:
    Collector(Machine& filledMachine, const FileReader& fileReader)
        : machine(filledMachine), reader(fileReader)
    {
    }

    bool Run(const std::string& path)
    {
        const std::optional<std::size_t> file = Load(path, nullptr);
        if (!file)
        {
            return false;
        }
        open.push_back(fs::u8path(path).lexically_normal().generic_u8string());
        machine.root = {&machine.files[*file].text.root, *file, SourceKind::Machine};
        CheckMembers(machine, machine.root);
        if (!Find(machine.root, "machine"))
        {
            Add(WhereOf(machine.root), "a machine needs a name",
                "add \"machine\": \"NAME\"; a file without one is only included");
        }
        ReadPart(machine.root, machine.top);
        AddRaw(Find(machine.root, "globalNodes"), machine.rawGlobalNodes);
        ReadGlobal();
        return isComplete;
    }

private:
    void Add(const Origin& where, const std::string& message, const std::string& hint = {})
    {
        machine.problems.Add(where, message, hint);
    }

    /// The opening bracket of an object.
    static Origin WhereOf(const Piece& piece)
    {
        source::Span bracket{piece.value->span.begin, piece.value->span.begin};
        ++bracket.end.column;
        ++bracket.end.offset;
        return {piece.file, bracket, true};
    }

    // Files.

    std::optional<std::size_t> Load(const std::string& path, const Found* by)
    {
        const auto known = loaded.find(path);
        if (known != loaded.end())
        {
            return known->second;
        }
        FileContent content = reader(path);
        if (!content.error.empty())
        {
            machine.problems.Add(by == nullptr ? Origin() : by->Where(),
                                 "cannot read " + path + ": " + content.error, "",
                                 check::Code::SourceFile);
            isComplete = false;
            return std::nullopt;
        }
        const std::size_t file = machine.files.size();
        machine.files.push_back({path, source::ReadText(std::move(content.bytes), kSourceOptions)});
        const source::Text& text = machine.files.back().text;
        AddText(file, text);
        if (text.isWhole && !text.root.IsObject())
        {
            Add({file, text.root.span, true}, "a source is an object: { }");
        }
        const bool isRead = text.isWhole && text.root.IsObject();
        isComplete = isComplete && isRead;
        loaded[path] = isRead ? std::optional<std::size_t>(file) : std::nullopt;
        return loaded[path];
    }

    /// Of two members of one name a document has the first; a source must not leave that open.
    void AddText(std::size_t file, const source::Text& text)
    {
        check::Findings findings;
        check::CheckText({text, text.root}, findings);
        for (check::Finding& finding : findings.list)
        {
            if (finding.code == check::Code::LostCharacter)
            {
                continue;
            }
            const bool isTwice = finding.code == check::Code::DuplicateMember;
            finding.code = isTwice ? check::Code::SourceTwice : finding.code;
            finding.file = file;
            finding.otherFile = file;
            machine.problems.list.push_back(std::move(finding));
        }
    }

    /// Loads a file that a member names, and calls `read` with its root. A file that is open
    /// already would never end.
    template <class Read>
    void ReadFile(const Found& name, const Value& text, SourceKind kind, Read read)
    {
        const std::string path = PathFrom(machine.files[name.file].path, text.text);
        const Found place{name.member, name.file};
        if (std::find(open.begin(), open.end(), path) != open.end())
        {
            std::string chain;
            for (const std::string& each : open)
            {
                chain += each + " -> ";
            }
            machine.problems.Add({name.file, text.span, true},
                                 "the file contains itself: " + chain + path, "",
                                 check::Code::SourceFile);
            isComplete = false;
            return;
        }
        if (const std::optional<std::size_t> file = Load(path, &place))
        {
            open.push_back(path);
            const Piece root{&machine.files[*file].text.root, *file, kind};
            if (checked.insert({*file, kind}).second)
            {
                CheckMembers(machine, root);
            }
            read(root);
            open.pop_back();
        }
    }

    // Parts.

    void ReadPart(const Piece& piece, State& level)
    {
        ReadParameters(piece);
        ReadIncludes(piece, level);
        ReadStates(piece, level);
        ReadTransitions(piece, "interrupts", nullptr, machine.interrupts);
        AddRaw(Find(piece, "nodes"), machine.rawNodes);
    }

    void ReadIncludes(const Piece& piece, State& level)
    {
        const Found include = Find(piece, "include");
        if (!include)
        {
            return;
        }
        for (const Value& name : include->elements)
        {
            ReadFile(include, name, SourceKind::Part,
                     [this, &level](const Piece& root)
                     {
                         if (included.insert({root.file, &level}).second)
                         {
                             ReadPart(root, level);
                         }
                     });
        }
    }

    static void AddRaw(const Found& nodes, std::vector<Found>& list)
    {
        if (nodes)
        {
            list.push_back(nodes);
        }
    }

    void ReadGlobal()
    {
        const Found global = Find(machine.root, "global");
        // The library logs an error when it starts a machine without one.
        machine.hasGlobal = !global || global->IsObject() || !machine.interrupts.empty();
        machine.global.name = "Interrupts";
        machine.global.path = "(interrupts)";
        machine.global.origin = WhereOf(machine.root);
        if (const Found list = Find(machine.root, "interrupts"))
        {
            machine.global.origin = {list.file, list.member->nameSpan, true};
        }
        if (global && global->IsObject())
        {
            machine.global.origin = {global.file, global.member->nameSpan, true};
            machine.global.pieces.push_back(
                {&global.member->value, global.file, SourceKind::Global});
            CheckMembers(machine, machine.global.pieces.back());
        }
    }

    // Parameters.

    void ReadParameters(const Piece& piece)
    {
        const Found all = Find(piece, "parameters");
        if (!all)
        {
            return;
        }
        for (const Member& member : all->members)
        {
            if (!member.isRepeated)
            {
                ReadParameter(member, all.file);
            }
        }
    }

    void ReadParameter(const Member& member, std::size_t file)
    {
        const Origin origin{file, member.nameSpan, true};
        const auto known = machine.parametersByName.find(member.name);
        if (known != machine.parametersByName.end())
        {
            if (known->second->value != &member.value)
            {
                machine.problems.AddTwice(
                    origin, "the parameter '" + member.name + "' is there twice",
                    "remove one of them; a file of parameters can be included by "
                    "several",
                    known->second->origin, "the first is here");
            }
            return;
        }
        Parameter parameter;
        parameter.name = member.name;
        parameter.value = &member.value;
        parameter.file = file;
        parameter.origin = origin;
        parameter.id = check::CrcOf(member.name);
        parameter.type = TypeOf(parameter);
        if (member.name.empty())
        {
            Add(origin, "a parameter needs a name");
        }
        machine.parameters.push_back(parameter);
        machine.parametersByName[member.name] = &machine.parameters.back();
    }

    /// Gives the number of the parameter's type, after checking what is written of it.
    int TypeOf(Parameter& parameter)
    {
        const Value& value = *parameter.value;
        const Origin where{parameter.file, value.span, true};
        if (value.IsObject())
        {
            return TypeOfObject(parameter);
        }
        if (value.IsString())
        {
            Add(where, "a text alone is no parameter",
                "write { \"message\": " +
                    machine.Bytes(parameter.file)
                        .substr(value.span.begin.offset,
                                value.span.end.offset - value.span.begin.offset) +
                    " } for the text that it takes when it is fired");
            return 0;
        }
        if (value.IsArray() || value.kind == source::Kind::Null)
        {
            Add(where, "a parameter is a value, or an object such as { \"float2\": [0, 0] }");
            return 0;
        }
        return value.IsBool() ? PARAM_Bool : value.IsInteger() ? PARAM_Integer : PARAM_Float;
    }

    int TypeOfObject(Parameter& parameter)
    {
        const Piece piece{parameter.value, parameter.file, SourceKind::Parameter};
        CheckMembers(machine, piece);
        if (const Found id = Find(piece, "id"))
        {
            parameter.id = id->ReadUInt();
        }
        const char* word = nullptr;
        for (const char* const candidate : kTypeWords)
        {
            const Member* const member = parameter.value->FindMember(candidate);
            if (member != nullptr && word != nullptr)
            {
                Add({parameter.file, member->nameSpan, true},
                    "a parameter has one type, and '" + std::string(word) + "' is there already");
            }
            word = member != nullptr ? candidate : word;
        }
        if (word == nullptr)
        {
            Add(WhereOf(piece), "the parameter '" + parameter.name + "' has no type",
                "write its type with its default, such as { \"float\": 0.0 }");
            return 0;
        }
        return GetParameterTypeByName(word);
    }

    // States.

    void ReadStates(const Piece& piece, State& level)
    {
        const Found states = Find(piece, "states");
        if (!states)
        {
            return;
        }
        for (const Member& member : states->members)
        {
            if (!member.isRepeated)
            {
                ReadState(member, states.file, level);
            }
        }
    }

    void ReadState(const Member& member, std::size_t file, State& level)
    {
        const Origin origin{file, member.nameSpan, true};
        State& state = machine.states.emplace_back();
        state.origin = origin;
        state.name = member.name;
        state.parent = &level == &machine.top ? nullptr : &level;
        state.path = (state.parent == nullptr ? "" : level.path + "/") + member.name;
        state.layer = level.layer;
        const auto [known, isNew] = level.byName.emplace(member.name, &state);
        if (member.name.empty() || member.name.find('/') != std::string::npos)
        {
            Add(origin,
                member.name.empty() ? "a state needs a name" : "a state's name has no '/' here",
                "write the other name as \"name\" in the state");
        }
        if (!isNew)
        {
            machine.problems.AddTwice(origin, "the state '" + state.path + "' is there twice",
                                      "give it another name", known->second->origin,
                                      "the first is here");
            state.isDouble = true;
        }
        if (!member.value.IsObject())
        {
            Add({file, member.value.span, true}, "a state is an object: { }");
            return;
        }
        level.children.push_back(&state);
        ReadStateObject(state, {&member.value, file, SourceKind::State});
    }

    void ReadStateObject(State& state, const Piece& piece)
    {
        CheckMembers(machine, piece);
        state.pieces.push_back(piece);
        if (const Found from = Find(piece, "from"))
        {
            ReadFile(from, from.member->value, SourceKind::Level,
                     [this, &state](const Piece& root)
                     {
                         state.pieces.push_back(root);
                         ReadPieces(state);
                     });
            return;
        }
        ReadPieces(state);
    }

    void ReadPieces(State& state)
    {
        if (const Found layer = Find(state.pieces, "layer"))
        {
            state.layer = layer->text;
        }
        for (const Piece& piece : state.pieces)
        {
            ReadTransitions(piece, "go", &state, state.transitions);
        }
        // Reading states makes no piece, so the pieces stay where they are.
        for (std::size_t i = 0; i < state.pieces.size(); ++i)
        {
            ReadParameters(state.pieces[i]);
            ReadIncludes(state.pieces[i], state);
            ReadStates(state.pieces[i], state);
        }
    }

    // Transitions.

    void ReadTransitions(const Piece& piece, const char* name, State* owner,
                         std::vector<Transition*>& list)
    {
        const Found all = Find(piece, name);
        if (!all)
        {
            return;
        }
        for (const Value& value : all->elements)
        {
            Transition& transition = machine.transitions.emplace_back();
            const Piece own{&value, all.file, SourceKind::Transition};
            transition.pieces.push_back(own);
            transition.owner = owner;
            transition.origin = WhereOf(own);
            CheckMembers(machine, own);
            list.push_back(&transition);
        }
    }

    Machine& machine;
    const FileReader& reader;
    std::map<std::string, std::optional<std::size_t>> loaded; ///< by path; none for a bad file
    std::vector<std::string> open;                            ///< the files that are being read
    std::set<std::pair<std::size_t, SourceKind>> checked;
    std::set<std::pair<std::size_t, const State*>> included;
    bool isComplete = true;
};

} // namespace

bool Collect(Machine& machine, const std::string& path, const FileReader& reader)
{
    return Collector(machine, reader).Run(path);
}

} // namespace vell::author
